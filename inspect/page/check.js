// The page of "check": findings by file.
const kLevels = {error: ['✖', 'error'], warning: ['▲', 'warning'], note: ['i', 'note']};

class Report {
    constructor(data, search) {
        this.data = data;
        this.search = search;
        this.findings = data.findings || [];
        this.cards = [];
    }

    render(main) {
        document.title = 'rcpinspect: the check of ' + shown(this.data.installation || '');
        const files = new Map();
        this.findings.forEach((finding, index) => {
            const file = finding.file || '';
            files.set(file, [...(files.get(file) || []), [finding, index]]);
        });
        contents([['summary', 'Summary'], ['codes', 'Kinds'], ['files', 'Findings', this.findings.length]]);
        main.append(this.summary(files));
        if (this.findings.length > 0) {
            main.append(this.kinds(), section('files', 'Findings', null,
                [...files].map(([file, members], index) => this.file(file, members, index))));
        }
        this.search.then(() => {
            for (const card of this.cards) {
                card.hidden = ![...card.querySelectorAll('.finding')].some((node) => !node.hidden);
            }
        });
        window.addEventListener('hashchange', () => this.follow());
        this.follow();
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
                : make('ul.index', null, [...files].map(([file, members], index) => make('li', null,
                    make('a', {href: '#file-' + (index + 1)}, this.fileName(file)),
                    make('span.number', null, String(members.length))))));
    }

    // Every kind of finding, with links to where it is.
    kinds() {
        const kinds = new Map();
        this.findings.forEach((finding, index) => {
            const key = JSON.stringify([finding.code, finding.name]);
            kinds.set(key, [...(kinds.get(key) || []), index]);
        });
        return section('codes', 'Kinds of findings', 'A number leads to the finding.',
            make('ul.rows', null, [...kinds].sort().map(([key, members]) => {
                const [id, name] = JSON.parse(key);
                return make('li', null, make('button.kind', {type: 'button', title: 'Search for this kind',
                    onclick: () => this.search.set(String(id))}, shown(id ?? '')),
                make('div', null, shown(name ?? ''), ' ', members.map((index) => [make('a.jump',
                    {href: '#finding-' + (index + 1)}, String(index + 1)), ' '])));
            })));
    }

    fileName(file) {
        return file === '' ? 'The installation' : shown(shortPath(file, this.data.installation));
    }

    file(file, members, index) {
        const card = make('details.card.file', {id: 'file-' + (index + 1), open: true},
            make('summary', null, make('span.title', null, this.fileName(file)),
                make('span.note', null, count(members.length, 'finding'))),
            make('ul.findings', null, members.map(([finding, position]) => this.finding(finding, position))));
        this.cards.push(card);
        return card;
    }

    finding(finding, index) {
        const [glyph, label] = kLevels[finding.level] || ['?', finding.level];
        const node = make('li.finding.is-' + String(finding.level).replace(/\W/g, '-'),
            {id: 'finding-' + (index + 1), tabindex: '-1'},
            make('div.where', null, make('span.level', null,
                make('span.glyph', {'aria-hidden': 'true'}, glyph), ' ', shown(label)),
            finding.line ? make('span.line', null, 'line ' + finding.line) : null,
            make('a.number', {href: '#finding-' + (index + 1), title: 'Link to this finding'},
                String(index + 1))),
            make('div.what', null, make('p.message', null, shown(finding.message ?? '')),
                finding.remedy ? make('p.remedy', null, make('strong', null, 'Remedy: '),
                    shown(finding.remedy)) : null,
                make('p.note', null, make('code', null, shown(finding.code ?? '')), ' ',
                    shown(finding.name ?? ''))));
        this.search.add('findings', node, [finding.code, finding.name, finding.level, finding.file,
            finding.line ? 'line ' + finding.line : null, finding.message, finding.remedy]);
        return node;
    }

    // A link to a finding or a file shows it, also when it is searched away or its file is closed.
    follow() {
        const target = /^#(finding|file)-\d+$/.test(location.hash)
            && document.getElementById(location.hash.slice(1));
        if (!target) {
            return;
        }
        if (target.hidden) {
            this.search.set('');
        }
        target.closest('details').open = true;
        target.scrollIntoView({block: 'nearest'});
        (target.querySelector('summary') || target).focus({preventScroll: true});
    }
}
