// The picture: sources in the left pane, results in the right one, and lines between them. Each pane
// scrolls by itself, so that both ends of a line can be brought side by side however long the lists
// are. A line whose other end is scrolled away leaves at the pane's edge.
const kSvg = 'http://www.w3.org/2000/svg';
const kMostLines = 300;

class Picture {
    // Both are lists, each in the frame that it scrolls in.
    constructor(left, right) {
        this.left = left;
        this.right = right;
        this.links = new Map();  // of each row its lines, {from, to, kind, isQuiet}: rows of the two lists
        this.extra = [];         // the lines of what is chosen alone
        this.places = new Map();
        this.chosen = null;      // the row of the right list whose lines stand out
        this.hovered = null;
        this.isAsked = false;
        this.svg = document.createElementNS(kSvg, 'svg');
        this.svg.setAttribute('class', 'lines');
        this.svg.setAttribute('aria-hidden', 'true');
        const redraw = () => this.draw();
        for (const list of [left, right]) {
            list.changed = () => this.changed();
            list.node.parentNode.addEventListener('scroll', redraw, {passive: true});
        }
        window.addEventListener('resize', () => this.changed());
        right.node.addEventListener('pointerover', (event) => this.hover(right.rowOf(event.target)));
        right.node.addEventListener('pointerleave', () => this.hover(null));
    }

    // A line that `isQuiet` is drawn only while its result is looked at.
    link(from, to, kind, isQuiet = false) {
        const link = {from, to, kind, isQuiet};
        for (const row of [from, to]) {
            const links = this.links.get(row) || [];
            links.push(link);
            this.links.set(row, links);
        }
    }

    hover(row) {
        if (row !== this.hovered) {
            this.hovered = row;
            this.draw();
        }
    }

    choose(row, extra) {
        this.chosen = row;
        this.extra = extra;
        this.changed();
    }

    // The layout is another one: measure once, then draw from the measures while scrolling.
    changed() {
        if (this.isAsked) {
            return;
        }
        this.isAsked = true;
        requestAnimationFrame(() => {
            this.isAsked = false;
            this.places.clear();
            this.draw();
        });
    }

    // Where in the content of its pane the middle of a row is; null while it is hidden. An entry of
    // a closed file is at the file.
    place(pane, row) {
        if (!this.places.has(row)) {
            const middle = row.list.middle(row);
            this.places.set(row, middle === null ? null
                : middle - pane.getBoundingClientRect().top + pane.scrollTop);
        }
        return this.places.get(row);
    }

    // The height at which a line meets its pane's side, and whether its end is in sight.
    meet(row, offset) {
        const pane = row.list.node.parentNode;
        const place = this.place(pane, row);
        if (place === null) {
            return null;
        }
        const y = place - pane.scrollTop;
        const inside = Math.max(4, Math.min(y, pane.clientHeight - 4));
        return {y: inside + offset, isSeen: inside === y};
    }

    draw() {
        const frame = this.svg.getBoundingClientRect();
        if (frame.width === 0) {
            return;
        }
        const offset = this.left.node.parentNode.getBoundingClientRect().top - frame.top;
        const quiet = document.createDocumentFragment();
        const loud = document.createDocumentFragment();
        for (const link of this.linksInView()) {
            const from = this.meet(link.from, offset);
            const to = this.meet(link.to, offset);
            if (from !== null && to !== null && (this.stands(link) || from.isSeen || to.isSeen)) {
                this.curve(this.stands(link) ? loud : quiet, link.kind, from, to, frame.width, this.stands(link));
            }
            if (quiet.childElementCount > 2 * kMostLines) {
                break;
            }
        }
        this.svg.replaceChildren(quiet, loud);  // what stands out is drawn over the rest
        this.svg.classList.toggle('has-chosen', this.chosen !== null);
    }

    stands(link) {
        return link.to === this.chosen || link.to === this.hovered;
    }

    // The lines of every row that may be in view: first those that stand out.
    linksInView() {
        const links = new Set(this.extra);
        const add = (row) => (this.links.get(row) || []).filter((link) => !link.isQuiet || this.stands(link))
            .forEach((link) => links.add(link));
        for (const row of [this.chosen, this.hovered]) {
            add(row);
        }
        for (const list of [this.right, this.left]) {
            for (const row of list.rendered()) {
                add(row);
                if (row.members && !row.isOpen) {
                    row.members.forEach(add);
                }
            }
        }
        return links;
    }

    curve(into, kind, from, to, width, stands) {
        const add = (name, attributes) => {
            const shape = document.createElementNS(kSvg, name);
            for (const [key, value] of Object.entries(attributes)) {
                shape.setAttribute(key, value);
            }
            shape.setAttribute('class', kind + (stands ? ' stands' : ''));
            into.append(shape);
        };
        const isLost = kind === 'instead';
        const middle = width / 2;
        const end = isLost ? width : width - 7;
        add('path', {d: `M4,${from.y} C${middle},${from.y} ${middle},${to.y} ${end},${to.y}`});
        if (from.isSeen && isLost) {
            add('path', {d: `M0,${from.y - 4} l8,8 m0,-8 l-8,8`, 'data-mark': 'cross'});
        } else if (from.isSeen) {
            add('circle', {cx: 4, cy: from.y, r: 3});
        }
        if (to.isSeen && !isLost) {
            add('polygon', {points: `${end},${to.y - 4} ${end + 7},${to.y} ${end},${to.y + 4}`});
        }
    }

    // Brings a source to the height of its result, as far as the pane scrolls. Panes that do not
    // scroll, on a narrow screen, stay where they are.
    bringBeside(source, result) {
        if (this.svg.getBoundingClientRect().width === 0) {
            return;
        }
        this.left.open(source.head);
        for (let round = 0; round < 3; ++round) {  // where it is, is known once its surroundings are filled
            this.left.node.parentNode.scrollTop += this.left.middle(source) - this.right.middle(result);
            this.left.update();
        }
    }
}
