// The page of "explain".
const kDetails = 20;  // so many losers and placeholders are told of at once

class Explanation {
    constructor(data, search) {
        this.data = data;
        this.search = search;
        this.elements = data.elements || [];
        this.sources = new Sources(data, (index) => this.elementLink(index), (row) => this.show(row));
        this.rows = this.elements.map((element, index) => ({index, words: () => this.words(element),
            build: () => this.item(element, index)}));
        this.chosen = -1;
    }

    render(main) {
        const data = this.data;
        document.title = 'rcpinspect: the launch of ' + shown(data.installation || data.launcher || '');
        const picture = this.pictureSection();
        const others = otherSections(data, this.sources, this.search);
        contents([['outcome', 'Outcome'], ['picture', 'Arguments', this.elements.length],
            ...others.map(({id, title, number}) => [id, title, number])]);
        main.append(outcomeSection(data, this.sources), picture, ...others.map((one) => one.node));
        document.addEventListener('keydown', (event) => {
            if (event.key === 'Escape' && !(event.target instanceof HTMLInputElement)) {
                this.choose(-1);
            }
        });
    }

    pictureSection() {
        const list = this.search.add(new List('arguments', 'Final arguments', this.rows));
        const left = this.search.add(this.sources.list);
        const pane = (name, title, list, size) => make('div.pane.' + name, {role: 'group', 'aria-label': title},
            make('h3', null, title, size ? [' ', make('span.number', null, '(' + grouped(size) + ')')] : null),
            make('div.scroll', null, list.node, list.size > 0 ? null
                : make('p.note', null, 'None: the launch ends before it has an argument list.')));
        const results = pane('results', 'Final arguments', list, this.elements.length);
        const sources = pane('sources', 'Sources', left);
        this.picture = new Picture(left, list);
        this.elements.forEach((element, index) => this.picture.link(
            this.sources.row(element.source), this.rows[index], 'source',
            this.sources.key(element.source) === 'computed'));
        return section('picture', 'The way of the launch',
            ['Every final argument, and where it comes from. ', make('span.keys', null, 'Choose one to see why '
                + 'it is there. Keys: / search, ↑ ↓ move, Enter choose, Esc close.')],
            legend(), make('div.picture', null, sources, this.picture.svg, results));
    }

    words(element) {
        const losers = element.instead || [];
        return [element.text, element.rule,
            ...[element.source, ...losers.map((one) => one.source)].flatMap((source) => this.sources.words(source)),
            ...losers.flatMap((one) => [one.text, one.why]),
            ...(element.placeholders || []).flatMap((one) => [one.name, one.value])];
    }

    item(element, index) {
        const losers = (element.instead || []).length;
        const isOpen = index === this.chosen;
        return make('div.element', {id: 'element-' + index},
            make('button.head.stop', {type: 'button', 'aria-expanded': String(isOpen),
                'aria-controls': 'details-' + index,
                'aria-label': `${index}: ${shown(element.text)}, from ${this.sources.name(element.source)}`
                    + (losers === 0 ? '' : ', ' + grouped(losers) + ' lost'),
                onclick: () => this.choose(this.chosen === index ? -1 : index)},
            make('span.position', null, String(index)),
            code(element.text, 'span.text'),
            make('span.origin', null, this.sources.name(element.source)),
            losers === 0 ? null : make('span.tag', null, '✕ ' + grouped(losers) + ' lost')),
            make('div.details', {id: 'details-' + index, hidden: !isOpen},
                // On paper nothing can be clicked: everything is said.
                isOpen || List.isOnPaper ? this.details(element) : null));
    }

    // Elements are counted from 0, the program, as in every answer of rcpinspect.
    elementLink(index) {
        return make('button.jump', {type: 'button', title: 'To argument ' + index,
            onclick: () => this.choose(index, true)}, '→ ' + index);
    }

    details(element) {
        const from = (source) => this.sources.link(source);
        const losers = element.instead || [];
        const rows = [make('dt', null, 'Why'), make('dd', null, prose(element.rule || '')),
            make('dt', null, 'From'), make('dd', null, from(element.source), this.sources.written(element.source))];
        const placeholders = element.placeholders || [];
        if (placeholders.length > 0) {
            rows.push(make('dt', null, 'Expanded'), firstOf(placeholders, kDetails, (one) => make('dd', null,
                code(one.name), ' → ', code(one.value ?? ''), one.source ? [' ', from(one.source)] : null)));
        }
        rows.push(make('dt', null, 'Lost'));
        rows.push(losers.length === 0 ? make('dd.note', null, 'nothing stood against it')
            : firstOf(losers, kDetails, (one) => make('dd.loser', null,
                make('span.cross', {'aria-hidden': 'true'}, '✕ '), make('s', null, code(one.text ?? '')),
                ' ', from(one.source), one.why ? make('div.why', null, prose(one.why)) : null)));
        return make('dl', null, rows);
    }

    // Opens or closes what is said about the element of this row, where it is in the document.
    open(row, isOpen) {
        if (row.node) {
            const box = row.node.lastElementChild;
            row.node.firstElementChild.setAttribute('aria-expanded', String(isOpen));
            box.hidden = !isOpen;
            box.replaceChildren(...isOpen ? [this.details(this.elements[row.index])] : []);
        }
    }

    // Opens the details of one element and shows where it comes from; -1 closes what is open.
    choose(index, takesFocus = false) {
        if (this.chosen >= 0) {
            this.open(this.rows[this.chosen], false);
        }
        this.chosen = index < this.rows.length ? index : -1;
        this.sources.clearMarks();
        if (this.chosen < 0) {
            this.picture.choose(null, []);
            return;
        }
        const element = this.elements[this.chosen];
        const row = this.rows[this.chosen];
        if (row.at < 0) {
            this.search.set('');  // it was searched away
        }
        this.open(row, true);
        const mark = (source, kind) => ({from: this.sources.mark(source, kind), to: row, kind});
        const others = (name, kind) => (element[name] || []).filter((one) => one.source).slice(0, kDetails)
            .map((one) => mark(one.source, kind));
        const extra = [...others('placeholders', 'placeholder'), ...others('instead', 'instead')];
        const source = this.sources.mark(element.source, 'source');
        row.list.reveal(row);
        if (takesFocus) {
            row.list.focus(row);
        }
        this.picture.bringBeside(source, row);
        this.picture.choose(row, extra);
        history.replaceState(null, '', '#element-' + this.chosen);
    }

    // A link to a source line: it is brought into view and has the eye for a moment.
    show(row) {
        if (row.at < 0 && !(row.head && !row.head.isOpen && row.isFound)) {
            this.search.set('');
        }
        row.list.reveal(row, 'center');
        row.list.focus(row);
    }

    follow() {
        const match = /^#element-(\d+)$/.exec(location.hash);
        if (match && Number(match[1]) !== this.chosen) {
            this.choose(Number(match[1]));
        }
    }
}

function legend() {
    return make('ul.legend', null, ['source', 'placeholder', 'instead'].map((kind) => {
        const svg = document.createElementNS(kSvg, 'svg');
        svg.setAttribute('class', 'lines sample');
        svg.setAttribute('aria-hidden', 'true');
        const picture = Picture.prototype;
        picture.curve.call(picture, svg, kind, {y: 8, isSeen: true}, {y: 8, isSeen: true}, 44, true);
        return make('li', null, svg, {source: 'comes from here', placeholder: 'gave a placeholder its value',
            instead: 'lost against it'}[kind]);
    }));
}
