// A list of any length. Its rows are objects: build() makes the node of a row, words() tells what a search looks
// at, and enter(), where there is one, is what the Enter key does. `head` is the row at the top of the frame that
// a row stands in.
class List extends Chunks {
    // `name` is what its rows are called in a count, `label` what the list is called.
    constructor(name, label, rows) {
        super(make('div.list', {role: 'list', 'aria-label': label}));
        this.name = name;
        this.rows = rows;
        this.size = rows.filter((row) => !row.members).length;
        this.found = this.size;  // so many of them hold what is searched for
        this.stop = null;    // the row that the tabulator key stops at; the arrow keys go on from there
        this.changed = () => {};
        this.node.addEventListener('focusin', (event) => this.stopAt(this.rowOf(event.target)));
        this.node.addEventListener('keydown', (event) => this.key(event));
        for (const row of rows) {
            row.list = this;
            row.isFound = true;
        }
        List.all.push(this);
        this.refresh();
    }

    static updateAll() {
        List.all.forEach((list) => list.update());
    }

    // Whether what is not in view may be missing from the document.
    static isPartial() {
        return List.all.some((list) => list.shown.length > kWhole);
    }

    static print(isOnPaper) {
        Chunks.isOnPaper = isOnPaper;
        List.all.forEach((list) => list.refresh());
    }

    // What a search looks at is put together once.
    textOf(row) {
        row.text = row.text ?? row.words().filter((one) => one !== null && one !== undefined).join('\n').toLowerCase();
        return row.text;
    }

    // Shows the rows that hold every word; their number.
    filter(words) {
        this.found = 0;
        for (const row of this.rows) {
            const text = this.textOf(row);
            const isFound = words.every((word) => text.includes(word));
            // A frame is shown for what is in it.
            row.isFound = isFound && (!row.members || row.members.length === 0 || words.length === 0);
            if (isFound && !row.members) {
                ++this.found;
                if (row.head) {
                    row.head.isFound = true;
                    row.head.isOpen = row.head.isOpen || words.length > 0;
                }
            }
        }
        this.refresh();
        return this.found;
    }

    settle() {
        this.stopAt(this.stop && this.stop.node ? this.stop : this.rendered().next().value);
        this.changed();
    }

    // Other rows are shown, or the same ones otherwise.
    refresh() {
        const focused = this.rowOf(document.activeElement);
        for (const row of this.rows) {
            row.at = -1;
            row.node = null;
        }
        this.shown = this.rows.filter((row) => row.isFound && (!row.head || row.head.isOpen));
        this.shown.forEach((row, index) => { row.at = index; });
        this.cut();
        const unprinted = Chunks.isOnPaper ? this.shown.length - kOnPaper : 0;
        this.node.replaceChildren(...this.chunks.slice(0, unprinted > 0 ? kOnPaper / kChunk : undefined)
            .map(({node}) => node), ...unprinted <= 0 ? [] : [make('p.unprinted', null, '… and ' + grouped(unprinted)
            + ' more, which are not printed. After a search what it finds is printed.')]);
        this.update();
        if (focused && focused.at >= 0) {
            this.focus(focused);
        }
    }

    built(row) {
        row.node = row.build();
        row.node.row = row;
        row.node.setAttribute('role', 'listitem');
        row.node.setAttribute('aria-setsize', this.shown.length);
        row.node.setAttribute('aria-posinset', row.at + 1);
        const next = this.shown[row.at + 1];
        row.node.classList.toggle('is-last', !next || Boolean(next.members));
        this.setTabs(row, row === this.stop ? 0 : -1);
        return row.node;
    }

    // The height of the middle of a row in the window, about; null while it is not shown.
    middle(row) {
        const seen = row.at < 0 && row.head && !row.head.isOpen ? row.head : row;
        if (seen.at < 0) {
            return null;
        }
        if (seen.node) {
            const box = this.stopOf(seen).getBoundingClientRect();
            return box.top + box.height / 2;
        }
        const chunk = this.chunkOf(seen);
        const box = chunk.node.getBoundingClientRect();
        return box.top + box.height * (seen.at - chunk.from + 0.5) / (chunk.to - chunk.from);
    }

    // Brings a row that is not searched away into view, and its node into the document.
    reveal(row, block = 'nearest') {
        this.open(row.head);
        this.pinned = row;
        for (let round = 0; round < 3; ++round) {
            this.update();
            row.node.scrollIntoView({block});
        }
        this.update();
        this.pinned = null;
        return row.node;
    }

    open(head) {
        if (head && !head.isOpen) {
            head.isOpen = true;
            this.refresh();
        }
    }

    toggle(head) {
        head.isOpen = !head.isOpen;
        const top = this.middle(head);
        this.refresh();
        if (top !== null) {
            this.reveal(head);
            this.scroller().scrollTop += this.middle(head) - top;
        }
    }

    // What of a row the keyboard stops at: the row itself, or its button.
    stopOf(row) {
        return row.node.querySelector('.stop') || row.node;
    }

    focus(row) {
        this.reveal(row);
        this.stopOf(row).focus({preventScroll: true});
    }

    stopAt(row) {
        if (!row || (row === this.stop && this.stopOf(row).tabIndex === 0)) {
            return;
        }
        if (this.stop && this.stop.node) {
            this.setTabs(this.stop, -1);
        }
        this.stop = row;
        this.setTabs(row, 0);
    }

    // The tabulator key goes through the links of the row where it has stopped, past those of others.
    setTabs(row, index) {
        for (const node of [this.stopOf(row), ...row.node.querySelectorAll('button, a')]) {
            node.tabIndex = index;
        }
    }

    key(event) {
        const row = this.rowOf(event.target);
        if (!row || event.altKey || event.ctrlKey || event.metaKey) {
            return;
        }
        const step = {ArrowDown: 1, ArrowUp: -1, PageDown: 10, PageUp: -10, Home: -Infinity, End: Infinity}[event.key];
        if (step !== undefined) {
            event.preventDefault();
            this.focus(this.shown[Math.max(0, Math.min(row.at + step, this.shown.length - 1))]);
        } else if (event.key === 'Enter' && row.enter && event.target === this.stopOf(row)) {
            event.preventDefault();
            row.enter();
        }
    }
}
List.all = [];

// The row at the top of a frame, which opens and closes it. Its members are added by who makes them.
function frameRow(heading, kind, id, title, note, words) {
    const row = {members: [], isOpen: true, marks: new Set(), words: () => words};
    row.build = () => {
        const said = [make('span.title', null, breakable(title)), make('span.note', null, note)];
        return make(['div.card', kind, ...row.marks].join('.'), {id}, make(heading, null, row.members.length === 0
            ? make('div.summary.stop', null, said)
            : make('button.summary.stop', {type: 'button', 'aria-expanded': String(row.isOpen),
                'aria-label': shown(title) + ', ' + note,
                onclick: () => row.list.toggle(row)}, said)));
    };
    return row;
}
