// The page of "check": findings by file.
const kLevels = {error: ['✖', 'error'], warning: ['▲', 'warning'], note: ['i', 'note']};
const kFiles = 12;  // so many files are named in the summary

class Report {
    constructor(data, search) {
        this.data = data;
        this.search = search;
        this.findings = (data.findings || []).map((finding, index) => ({finding, index}));
        this.heads = [];
    }

    render(main) {
        document.title = 'rcpinspect: the check of ' + shown(this.data.installation || '');
        const files = groupBy(this.findings, ({finding}) => finding.file || '');
        contents([['summary', 'Summary'], ...this.findings.length === 0 ? []
            : [['codes', 'Kinds'], ['files', 'Findings', this.findings.length]]]);
        main.append(this.summary(files));
        if (this.findings.length > 0) {
            const list = this.search.add(new List('findings', 'Findings', this.rows(files)));
            main.append(this.kinds(), section('files', 'Findings', make('span.keys', null, 'Keys: / search, ↑ ↓ move.'), list.node));
        }
        // A link to what is shown already leads there again.
        main.addEventListener('click', (event) => {
            const link = event.target.closest('a');
            if (link && link.hash === location.hash) {
                this.follow();
            }
        });
    }

    summary(files) {
        const {errors = 0, warnings = 0} = this.data.summary || {};
        const [glyph, sentence] = errors > 0 ? ['✖', count(errors, 'error') + (warnings > 0
            ? ' and ' + count(warnings, 'warning') : '')]
            : warnings > 0 ? ['▲', count(warnings, 'warning')] : ['✔', 'Nothing found'];
        return make('section.outcome' + (errors > 0 ? '.is-error' : ''),
            {id: 'summary', 'aria-labelledby': 'summary-title'},
            make('p.command', null, code(this.data.installation || '')),
            make('h1', {id: 'summary-title'}, make('span.glyph', {'aria-hidden': 'true'}, glyph), ' ', sentence),
            this.findings.length === 0 ? make('p', null, 'The installation is as it should be.')
                : make('ul.index', null, firstOf([...files], kFiles, ([file, members], index) => make('li', null,
                    make('a', {href: '#file-' + this.fileNumber(file, files)}, breakable(this.fileName(file))), ': ',
                    count(members.length, 'finding')))),
            making(this.data.made));
    }

    fileNumber(file, files) {
        this.numbers = this.numbers || new Map([...files.keys()].map((name, index) => [name, index + 1]));
        return this.numbers.get(file);
    }

    // Every kind of finding, and how many there are.
    kinds() {
        const kinds = groupBy(this.findings, ({finding}) => JSON.stringify([finding.code, finding.name]));
        return section('codes', 'Kinds of findings', 'Choose one to see its findings alone.',
            make('div.rows', null, [...kinds].sort().map(([key, members]) => {
                const [id, name] = JSON.parse(key);
                return make('div.row', null, make('button.kind', {type: 'button',
                    onclick: () => this.search.set(String(id))}, shown(id ?? '')),
                make('div', null, make('strong', null, shown(name ?? '')), ', ', count(members.length, 'finding'),
                    make('div.why', null, prose(members[0].finding.meaning ?? ''))));
            })));
    }

    fileName(file) {
        return file === '' ? 'The installation' : shortPath(file, this.data.installation);
    }

    rows(files) {
        return [...files].flatMap(([file, members], index) => {
            const head = frameRow('h3', 'file', 'file-' + (index + 1), this.fileName(file),
                count(members.length, 'finding'), [file]);
            this.heads.push(head);
            head.members = members.map((one) => Object.assign(one, {head, marks: new Set(),
                words: () => this.words(one.finding), build: () => this.finding(one)}));
            return [head, ...members];
        });
    }

    words(finding) {
        return [finding.code, finding.name, finding.level, finding.file,
            finding.line ? 'line ' + finding.line : null, finding.message, finding.remedy];
    }

    finding({finding, index, marks}) {
        const [glyph, label] = kLevels[finding.level] || ['?', finding.level];
        return make(['div.finding.is-' + String(finding.level).replace(/\W/g, '-'), ...marks].join('.'),
            {id: 'finding-' + (index + 1)},
            make('div.where', null, make('span.level', null,
                make('span.glyph', {'aria-hidden': 'true'}, glyph), ' ', shown(label)),
            finding.line ? make('span.line', null, 'line ' + finding.line) : null,
            make('a.number', {href: '#finding-' + (index + 1), 'aria-label': 'Link to finding ' + (index + 1)},
                '#' + (index + 1))),
            make('div.what', null, make('p.message', null, breakable(finding.message ?? '')),
                finding.remedy ? make('p.remedy', null, make('strong', null, 'Remedy: '),
                    prose(finding.remedy)) : null,
                make('p.note', null, make('code', null, shown(finding.code ?? '')), ' ',
                    shown(finding.name ?? ''))));
    }

    // A link to a finding or a file shows it, also when it is searched away or its file is closed.
    follow() {
        const [, kind, number] = /^#(finding|file)-(\d+)$/.exec(location.hash) || [];
        const row = (kind === 'file' ? this.heads : this.findings)[number - 1];
        if (!kind || !row) {
            return;
        }
        if (!row.isFound) {
            this.search.set('');
        }
        for (const one of this.findings.filter(({marks}) => marks.delete('is-target'))) {
            one.node?.classList.remove('is-target');
        }
        row.marks.add('is-target');
        row.list.open(kind === 'file' ? row : null);
        row.list.reveal(row).classList.add('is-target');
        row.list.focus(row);
    }
}

// A map of lists, in the order in which their keys come first.
function groupBy(items, key) {
    const groups = new Map();
    for (const item of items) {
        const name = key(item);
        if (!groups.has(name)) {
            groups.set(name, []);
        }
        groups.get(name).push(item);
    }
    return groups;
}
