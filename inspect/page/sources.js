// The left side of the picture: the command line, every file with its entries, the environment and
// what the launcher computes. Everything that an element can come from has a row here.
const kStates = {
    used: ['●', 'used'],
    overridden: ['◐', 'overridden'],
    unused: ['○', 'never looked at'],
};

class Sources {
    // `elementLink` makes a link to an element, `show` brings a row into view.
    constructor(data, elementLink, show) {
        this.data = data;
        this.elementLink = elementLink;
        this.show = show;
        this.files = this.allFiles();
        this.rows = new Map();   // by key(): the row of a source
        this.users = new Map();  // by key(): the elements that come from it
        this.marked = [];
        this.cards = [];
        (data.elements || []).forEach((element, index) => {
            const key = this.key(element.source);
            this.users.set(key, [...(this.users.get(key) || []), index]);
        });
    }

    // Every source that anything names, with the value that it gave where that is known.
    namedSources() {
        const named = [];
        const add = (source, value) => source && named.push({source, value});
        for (const element of this.data.elements || []) {
            add(element.source);
            (element.placeholders || []).forEach((one) => add(one.source, one.value));
            (element.instead || []).forEach((one) => add(one.source));
        }
        (this.data.environment || []).forEach((one) => add(one.source));
        return named;
    }

    // The files that were read, and lines of others that something nevertheless comes from.
    allFiles() {
        const files = (this.data.files || []).map((file) => ({...file, entries: [...file.entries || []]}));
        const lines = new Set(files.flatMap((file) =>
            file.entries.map((entry) => this.key({kind: 'file', file: file.path, line: entry.line}))));
        for (const {source} of this.namedSources()) {
            if (source.kind !== 'file' || lines.has(this.key(source))) {
                continue;
            }
            lines.add(this.key(source));
            let file = files.find((one) => one.path === source.file);
            if (!file) {
                file = {path: source.file, found: true, entries: []};
                files.push(file);
            }
            file.entries.push({...source, state: 'used'});
        }
        return files;
    }

    key(source) {
        switch (source && source.kind) {
        case 'file': return JSON.stringify(['file', source.file, source.line ?? 0]);
        case 'command line': return JSON.stringify(['argument', source.position]);
        case 'environment': return JSON.stringify(['environment', source.name]);
        default: return 'computed';
        }
    }

    // A source in a few words.
    name(source) {
        switch (source && source.kind) {
        case 'file': return shown(baseName(source.file)) + (source.line ? ':' + source.line : '');
        case 'command line': return 'command line ' + source.position;
        case 'environment': return 'environment ' + shown(source.name);
        default: return 'computed';
        }
    }

    words(source) {
        return source ? [source.file, source.key, source.value, this.name(source)] : ['computed'];
    }

    row(source) {
        return this.rows.get(this.key(source)) || this.rows.get(this.key({...source, line: 0}))
            || this.rows.get('computed');
    }

    link(source, show) {
        const full = source && source.kind === 'file'
            ? shown(shortPath(source.file, this.data.installation)) + (source.line ? ', line ' + source.line : '')
            : this.name(source);
        return make('button.jump', {type: 'button', onclick: () => show(this.row(source)),
            title: 'Show the source'}, '← ' + full);
    }

    // The text as it was written, with its key.
    written(source) {
        if (source && source.kind === 'file') {
            return make('div.written', null, code((source.key ?? '') + '=' + (source.value ?? '')));
        }
        if (source && source.kind === 'command line') {
            const given = (this.data.arguments || [])[source.position - 1];
            return given === undefined ? null : make('div.written', null, code(given));
        }
        return null;
    }

    mark(source, kind) {
        const row = this.row(source);
        const card = row.closest('details');
        if (card && kind === 'source') {
            card.open = true;
        }
        row.classList.add('is-' + kind);
        this.marked.push(row);
        return row;
    }

    clearMarks() {
        this.marked.forEach((row) => row.classList.remove('is-source', 'is-placeholder', 'is-instead'));
        this.marked = [];
    }

    hideEmptyCards() {
        const isSearching = document.body.classList.contains('is-searching');
        for (const card of this.cards) {
            card.hidden = isSearching && ![...card.querySelectorAll('.entry')].some((row) => !row.hidden);
        }
    }

    render(search) {
        return make('div.scroll', null, this.commandLine(search),
            this.files.map((file, index) => this.file(file, index, search)), this.environment(search),
            this.card('computed', 'Computed', 'by the launcher itself', [
                this.entry('computed', '', [make('span.note', null, 'decided or found out while starting')],
                    '', null, search, ['computed'])]));
    }

    card(kind, title, note, rows) {
        const card = make('details.card.' + kind, {open: true},
            make('summary', null, make('span.title', null, title), make('span.note', null, note)),
            rows.length === 0 ? null : make('ul.entries', null, rows));
        this.cards.push(card);
        return card;
    }

    entry(key, line, content, state, by, search, words) {
        const [glyph, label] = kStates[state] || ['', state];
        const users = this.users.get(key) || [];
        const isSaid = state === '' || (users.length > 0 && state === 'used');
        const row = make('li.entry' + (state && '.is-' + state.replace(/\W/g, '-')), {tabindex: '-1'},
            make('span.line', null, String(line)), make('span.content', null, content),
            make('span.users', null, users.map(this.elementLink)),
            isSaid ? null : make('span.state', null, make('span.glyph', {'aria-hidden': 'true'}, glyph),
                ' ', label, by ? [state === 'unused' ? ': ' : ' by ', this.user(by)] : null));
        if (!this.rows.has(key)) {
            this.rows.set(key, row);
        }
        search.add('lines', row, [...words, label, by]);
        return row;
    }

    // What an entry is used or overridden by: elements, the line of a file, or what it was looked up for.
    user(by) {
        const elements = /^element ([\d, ]+)$/.exec(by);
        if (elements) {
            return elements[1].split(',').map((index) => this.elementLink(Number(index)));
        }
        const line = /^(.*):(\d+)$/.exec(by);
        const source = line && {kind: 'file', file: line[1], line: Number(line[2])};
        return source && this.files.some((file) => file.path === source.file)
            ? make('button.jump', {type: 'button', onclick: () => this.show(this.row(source))}, this.name(source))
            : shown(by);
    }

    commandLine(search) {
        const dropped = new Map((this.data.dropped || []).map((one) => [one.position, one]));
        const given = this.data.arguments || [];
        return this.card('command-line', 'Command line', count(given.length, 'argument'),
            given.map((text, index) => {
                const key = this.key({kind: 'command line', position: index + 1});
                const drop = dropped.get(index + 1);
                const content = [code(text, 'span.value'),
                    drop ? make('div.why', null, shown(drop.why || '')) : null];
                const state = this.users.has(key) ? 'used' : drop ? 'not passed on' : 'read by the launcher';
                return this.entry(key, index + 1, content, state, null, search,
                    [text, 'command line', drop && drop.why]);
            }));
    }

    file(file, index, search) {
        const entries = file.entries || [];
        const path = shortPath(file.path, this.data.installation);
        const used = entries.filter((entry) => entry.state === 'used').length;
        const card = this.card(file.found ? 'file' : 'missing', shown(path), !file.found ? 'is not there'
            : entries.length === 0 ? 'no entries' : used + ' of ' + entries.length + ' used',
        entries.map((entry) => {
            const content = [code(entry.key ?? '', 'span.key'), make('span.equals', null, '='),
                code(entry.value ?? '', 'span.value')];
            return this.entry(this.key({kind: 'file', file: file.path, line: entry.line}), entry.line ?? '',
                content, entry.state || 'unused', entry.by, search, [file.path, entry.key, entry.value]);
        }));
        card.id = 'file-' + (index + 1);
        this.rows.set(this.key({kind: 'file', file: file.path}), card.querySelector('summary'));
        return card;
    }

    // The environment variables that something came from.
    environment(search) {
        const values = new Map();
        for (const {source, value} of this.namedSources()) {
            if (source.kind === 'environment' && values.get(source.name) === undefined) {
                values.set(source.name, value);
            }
        }
        return values.size === 0 ? null : this.card('environment-card', 'Environment',
            count(values.size, 'variable'), [...values].sort().map(([name, value]) => this.entry(
                this.key({kind: 'environment', name}), '', [code(name, 'span.key'),
                    value === undefined ? null : [make('span.equals', null, '='), code(value, 'span.value')]],
                '', null, search, [name, value, 'environment'])));
    }
}
