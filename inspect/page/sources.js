// The left side of the picture: the command line, every file with its entries, the environment and
// what the launcher computes. Everything that an element can come from has a row here.
const kStates = {
    used: ['●', 'used'],
    overridden: ['◐', 'overridden'],
    unused: ['○', 'never looked at'],
};
const kBeside = 2;   // so many links to elements stand beside an entry; more stand below it
const kLinks = 12;

class Sources {
    // `elementLink` makes a link to an element, `show` brings a row into view.
    constructor(data, elementLink, show) {
        this.data = data;
        this.elementLink = elementLink;
        this.show = show;
        this.files = this.allFiles();
        this.byKey = new Map();  // by key(): the row of a source
        this.users = new Map();  // by key(): the elements that come from it
        this.marked = [];
        this.rows = [];
        (data.elements || []).forEach((element, index) => {
            const key = this.key(element.source);
            const users = this.users.get(key) || [];
            users.push(index);
            this.users.set(key, users);
        });
        this.addCommandLine();
        this.files.forEach((file, index) => this.addFile(file, index));
        this.addEnvironment();
        this.addFrame('computed', 'Computed', 'by the launcher itself', '', ['computed'], [
            {key: 'computed', content: () => make('span.note', null, 'decided or found out while starting'),
                words: ['computed']}]);
        this.list = new List('lines', 'Sources', this.rows);
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
        (this.data.environment || []).flatMap((one) => [one, ...one.parts || []]).forEach((one) => add(one.source));
        add((this.data.outcome || {}).source);
        return named;
    }

    // The files that were read, and lines of others that something nevertheless comes from.
    allFiles() {
        const files = (this.data.files || []).map((file) => ({...file, entries: [...file.entries || []]}));
        const byPath = new Map(files.map((file) => [file.path, file]));
        const lines = new Set(files.flatMap((file) =>
            file.entries.map((entry) => this.key({kind: 'file', file: file.path, line: entry.line}))));
        for (const {source} of this.namedSources()) {
            if (source.kind !== 'file' || lines.has(this.key(source))) {
                continue;
            }
            lines.add(this.key(source));
            let file = byPath.get(source.file);
            if (!file) {
                file = {path: source.file, found: true, entries: []};
                files.push(file);
                byPath.set(file.path, file);
            }
            file.entries.push({...source, state: 'used'});
        }
        return files;
    }

    key(source) {
        switch (source && source.kind) {
        case 'file': return 'file ' + (source.line ?? 0) + ' ' + source.file;
        case 'command line': return 'argument ' + source.position;
        case 'environment': return 'environment ' + source.name;
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
        return this.byKey.get(this.key(source)) || this.byKey.get(this.key({...source, line: 0}))
            || this.byKey.get('computed');
    }

    link(source) {
        const full = source && source.kind === 'file'
            ? breakable(shortPath(source.file, this.data.installation) + (source.line ? ', line ' + source.line : ''))
            : this.name(source);
        return make('button.jump', {type: 'button', onclick: () => this.show(this.row(source)),
            title: 'Show the source'}, '← ', full);
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
        row.marks.add('is-' + kind);
        if (row.node) {
            row.node.classList.add('is-' + kind);
        }
        this.marked.push(row);
        return row;
    }

    clearMarks() {
        for (const row of this.marked) {
            if (row.node) {
                row.node.classList.remove(...row.marks);
            }
            row.marks.clear();
        }
        this.marked = [];
    }

    // A frame and its rows, each {key, line, content, state, by, words}.
    addFrame(kind, title, note, id, words, entries) {
        const head = frameRow('h4', kind, id || null, title, note, words);
        this.rows.push(head);
        head.members = entries.map((entry) => this.entry(entry, head));
        for (const row of head.members) {
            this.rows.push(row);
        }
        return head;
    }

    entry({key, line = '', content, state = '', by = null, words}, head) {
        const row = {head, marks: new Set(), words: () => [...words, this.label(state), by]};
        const users = this.users.get(key) || [];
        row.enter = users.length === 0 ? null : () => this.elementLink(users[0]).click();
        const isSaid = state === '' || (users.length > 0 && state === 'used');
        row.build = () => make(['div.entry', ...row.marks].join('.') + (state && '.is-' + state.replace(/\W/g, '-')), null,
            make('span.line', null, String(line)), make('span.content', null, content()),
            users.length === 0 ? null : make('span.users' + (users.length > kBeside ? '.below' : ''), null,
                firstOf(users, kLinks, this.elementLink)),
            isSaid ? null : make('span.state', null,
                make('span.glyph', {'aria-hidden': 'true'}, (kStates[state] || [''])[0]),
                ' ', this.label(state), by ? [state === 'unused' ? ': ' : ' by ', this.user(by)] : null));
        if (!this.byKey.has(key)) {
            this.byKey.set(key, row);
        }
        return row;
    }

    label(state) {
        return (kStates[state] || ['', state])[1];
    }

    // What an entry is used or overridden by: elements, the line of a file, or what it was looked up for.
    user(by) {
        const elements = /^element ([\d, ]+)$/.exec(by);
        if (elements) {
            return firstOf(elements[1].split(','), kLinks, (index) => this.elementLink(Number(index)));
        }
        const line = /^(.*):(\d+)$/.exec(by);
        const source = line && {kind: 'file', file: line[1], line: Number(line[2])};
        return source && this.files.some((file) => file.path === source.file)
            ? make('button.jump', {type: 'button', onclick: () => this.show(this.row(source))}, this.name(source))
            : shown(by);
    }

    addCommandLine() {
        const dropped = new Map((this.data.dropped || []).map((one) => [one.position, one]));
        const given = this.data.arguments || [];
        this.addFrame('command-line', 'Command line', count(given.length, 'argument'), '', ['command line'],
            given.map((text, index) => {
                const key = this.key({kind: 'command line', position: index + 1});
                const drop = dropped.get(index + 1);
                return {key, line: index + 1, words: [text, 'command line', drop && drop.why],
                    state: this.users.has(key) ? 'used' : drop ? 'not passed on' : 'read by the launcher',
                    content: () => [code(text, 'span.value'),
                        drop ? make('div.why', null, shown(drop.why || '')) : null]};
            }));
    }

    addFile(file, index) {
        const entries = file.entries || [];
        const path = shortPath(file.path, this.data.installation);
        const used = entries.filter((entry) => entry.state === 'used').length;
        const head = this.addFrame(file.found ? 'file' : 'missing', path, !file.found ? 'is not there'
            : entries.length === 0 ? 'no entries' : grouped(used) + ' of ' + count(entries.length, 'entry', 'entries') + ' used',
        'file-' + (index + 1), [file.path], entries.map((entry) => ({
            key: this.key({kind: 'file', file: file.path, line: entry.line}), line: entry.line ?? '',
            content: () => [code(entry.key ?? '', 'span.key'), make('span.equals', null, '='),
                code(entry.value ?? '', 'span.value'), isExpanded(entry)
                    ? make('div.effective', null, 'becomes ', code(entry.effective, 'span.value')) : null],
            state: entry.state || 'unused', by: entry.by, words: [file.path, entry.key, entry.value, entry.effective]})));
        this.byKey.set(this.key({kind: 'file', file: file.path}), head);
    }

    // The environment variables that something came from.
    addEnvironment() {
        const values = new Map();
        for (const {source, value} of this.namedSources()) {
            if (source.kind === 'environment' && values.get(source.name) === undefined) {
                values.set(source.name, value);
            }
        }
        if (values.size > 0) {
            this.addFrame('environment-card', 'Environment', count(values.size, 'variable'), '', ['environment'],
                [...values].sort().map(([name, value]) => ({key: this.key({kind: 'environment', name}),
                    words: [name, value, 'environment'],
                    content: () => [code(name, 'span.key'),
                        value === undefined ? null : [make('span.equals', null, '='), code(value, 'span.value')]]})));
        }
    }
}

// Whether a launch makes something else of an entry's value than what stands there.
function isExpanded(entry) {
    return entry.effective !== undefined && entry.effective !== null && entry.effective !== entry.value;
}
