// The page of "explain".
class Explanation {
    constructor(data, search) {
        this.data = data;
        this.search = search;
        this.elements = data.elements || [];
        this.sources = new Sources(data, (index) => this.elementLink(index),
            (row) => this.show(row));
        this.items = [];   // the list items of the final arguments
        this.chosen = -1;
    }

    render(main) {
        const data = this.data;
        document.title = 'rcpinspect: the launch of ' + shown(data.installation || data.launcher || '');
        const others = otherSections(data, this.sources, this.search);
        contents([['outcome', 'Outcome'], ['picture', 'Arguments', this.elements.length],
            ...others.map(({id, title, number}) => [id, title, number])]);
        main.append(outcomeSection(data), this.pictureSection(), ...others.map((one) => one.node));
        this.settle();
        this.search.then(() => {
            this.sources.hideEmptyCards();
            this.settle();
            this.picture.changed();
        });
        window.addEventListener('hashchange', () => this.follow());
        document.addEventListener('keydown', (event) => {
            if (event.key === 'Escape' && !(event.target instanceof HTMLInputElement)) {
                this.choose(-1);
            }
        });
        // On paper nothing can be clicked: everything is said.
        window.addEventListener('beforeprint', () => this.items.forEach((_, index) => this.fill(index)));
        this.picture.changed();
        this.follow();
    }

    pictureSection() {
        const list = make('ol.elements');
        this.elements.forEach((element, index) => list.append(this.item(element, index)));
        const left = this.sources.render(this.search);
        const sources = make('div.pane.sources', {role: 'group', 'aria-label': 'Sources'},
            make('h3', null, 'Sources'), left);
        const right = make('div.scroll', null, this.elements.length > 0 ? list
            : make('p.note', null, 'None: the launch ends before it has an argument list.'));
        const results = make('div.pane.results', {role: 'group', 'aria-label': 'Final arguments'},
            make('h3', null, 'Final arguments ', make('span.number', null, String(this.elements.length))),
            right);
        this.picture = new Picture(left, right);
        this.elements.forEach((element, index) => this.picture.link(
            this.sources.row(element.source), this.head(index), 'source',
            this.sources.key(element.source) === 'computed'));
        const settleList = roving(list, '.head');
        const settleSources = roving(left, '.entry button');
        this.settle = () => {
            settleList();
            settleSources();
        };
        return section('picture', 'The way of the launch',
            ['Every final argument, and where it comes from. ', make('span.keys', null, 'Choose one to see why '
                + 'it is there. Keys: / search, ↑ ↓ move, Enter choose, Esc close.')],
            legend(), make('div.picture', null, sources, this.picture.svg, results));
    }

    item(element, index) {
        const losers = (element.instead || []).length;
        const item = make('li.element', {id: 'element-' + index},
            make('button.head.end', {type: 'button', 'aria-expanded': 'false',
                'aria-controls': 'details-' + index,
                onclick: () => this.choose(this.chosen === index ? -1 : index)},
            make('span.position', null, String(index)),
            code(element.text, 'span.text'),
            make('span.origin', null, this.sources.name(element.source)),
            losers === 0 ? null : make('span.tag', null, '✕ ' + losers + ' lost')),
            make('div.details', {id: 'details-' + index, hidden: true}));
        this.items.push(item);
        const used = [element.source, ...(element.instead || []).map((one) => one.source)];
        this.search.add('arguments', item, [element.text, element.rule,
            ...used.flatMap((source) => this.sources.words(source)),
            ...(element.instead || []).flatMap((one) => [one.text, one.why]),
            ...(element.placeholders || []).flatMap((one) => [one.name, one.value])]);
        return item;
    }

    head(index) {
        return this.items[index].firstElementChild;
    }

    // Elements are counted from 0, the program, as in every answer of rcpinspect.
    elementLink(index) {
        return make('button.jump', {type: 'button', title: 'To argument ' + index,
            onclick: () => this.choose(index, true)}, '→ ' + index);
    }

    // What the details of an element say; made when they are first looked at.
    fill(index) {
        const box = this.items[index].lastElementChild;
        if (box.childElementCount > 0) {
            return;
        }
        const element = this.elements[index];
        const from = (source) => this.sources.link(source, (row) => this.show(row));
        const rows = [make('dt', null, 'Why'), make('dd', null, shown(element.rule || '')),
            make('dt', null, 'From'), make('dd', null, from(element.source),
                this.sources.written(element.source))];
        const placeholders = element.placeholders || [];
        if (placeholders.length > 0) {
            rows.push(make('dt', null, 'Expanded'), placeholders.map((one) => make('dd', null,
                code(one.name), ' → ', code(one.value ?? ''),
                one.source ? [' ', from(one.source)] : null)));
        }
        const losers = element.instead || [];
        rows.push(make('dt', null, 'Lost'));
        rows.push(losers.length === 0 ? make('dd.note', null, 'nothing stood against it')
            : losers.map((one) => make('dd.loser', null, make('span.cross', {'aria-hidden': 'true'}, '✕ '),
                make('s', null, code(one.text ?? '')), ' ', from(one.source),
                one.why ? make('div.why', null, shown(one.why)) : null)));
        box.append(make('dl', null, rows));
    }

    // Opens the details of one element and shows where it comes from; -1 closes what is open.
    choose(index, takesFocus = false) {
        if (this.chosen >= 0) {
            this.head(this.chosen).setAttribute('aria-expanded', 'false');
            this.items[this.chosen].lastElementChild.hidden = true;
        }
        this.chosen = index < this.items.length ? index : -1;
        this.sources.clearMarks();
        if (this.chosen < 0) {
            this.picture.choose(null, []);
            return;
        }
        const element = this.elements[this.chosen];
        const head = this.head(this.chosen);
        if (this.items[this.chosen].hidden) {
            this.search.set('');  // it was searched away
        }
        this.fill(this.chosen);
        head.setAttribute('aria-expanded', 'true');
        this.items[this.chosen].lastElementChild.hidden = false;
        const mark = (source, kind) => ({from: this.sources.mark(source, kind), to: head, kind});
        const extra = [
            ...(element.placeholders || []).filter((one) => one.source)
                .map((one) => mark(one.source, 'placeholder')),
            ...(element.instead || []).filter((one) => one.source).map((one) => mark(one.source, 'instead')),
        ];
        const row = this.sources.mark(element.source, 'source');
        if (takesFocus) {
            head.focus({preventScroll: true});
        }
        this.items[this.chosen].scrollIntoView({block: 'nearest'});
        this.picture.bringBeside(row, head);
        this.picture.choose(head, extra);
        history.replaceState(null, '', '#element-' + this.chosen);
    }

    // A link to a source line: it is brought into view and has the eye for a moment.
    show(row) {
        if (row.hidden) {
            this.search.set('');
        }
        const card = row.closest('details');
        if (card) {
            card.open = true;
        }
        row.scrollIntoView({block: 'center'});
        row.focus({preventScroll: true});
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
