// The picture: sources in the left pane, results in the right one, and lines between them. Each pane
// scrolls by itself, so that both ends of a line can be brought side by side however long the lists
// are. A line whose other end is scrolled away leaves at the pane's edge.
const kSvg = 'http://www.w3.org/2000/svg';

class Picture {
    constructor(left, right) {
        this.left = left;
        this.right = right;
        this.links = [];      // {from, to, kind, isQuiet}: from and to are nodes of the panes
        this.places = new Map();
        this.chosen = null;   // the node of the right pane whose lines stand out
        this.hovered = null;
        this.isAsked = false;
        this.svg = document.createElementNS(kSvg, 'svg');
        this.svg.setAttribute('class', 'lines');
        this.svg.setAttribute('aria-hidden', 'true');
        const redraw = () => this.draw();
        left.addEventListener('scroll', redraw, {passive: true});
        right.addEventListener('scroll', redraw, {passive: true});
        left.addEventListener('toggle', () => this.changed(), true);
        window.addEventListener('resize', () => this.changed());
        right.addEventListener('pointerover', (event) => this.hover(event.target));
        right.addEventListener('pointerleave', () => this.hover(null));
    }

    // A line that `isQuiet` is drawn only while its result is looked at.
    link(from, to, kind, isQuiet = false) {
        this.links.push({from, to, kind, isQuiet});
    }

    hover(target) {
        const node = target && target.closest('.end');
        if (node !== this.hovered) {
            this.hovered = node;
            this.draw();
        }
    }

    choose(node, extra) {
        this.chosen = node;
        this.links = this.links.filter((link) => link.kind === 'source').concat(extra);
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

    // Where in the content of its pane the middle of a node is; null while it is hidden. An entry of
    // a closed file is at the file.
    place(pane, node) {
        if (!this.places.has(node)) {
            const closed = node.closest('details:not([open])');
            const seen = closed ? closed.querySelector('summary') : node;
            const box = seen.getBoundingClientRect();
            this.places.set(node, box.height === 0 ? null
                : box.top - pane.getBoundingClientRect().top + pane.scrollTop + box.height / 2);
        }
        return this.places.get(node);
    }

    // The height at which a line meets its pane's side, and whether its end is in sight.
    meet(pane, node, offset) {
        const place = this.place(pane, node);
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
        const offsets = [this.left, this.right].map((pane) => pane.getBoundingClientRect().top - frame.top);
        const quiet = document.createDocumentFragment();
        const loud = document.createDocumentFragment();
        for (const link of this.links) {
            const from = this.meet(this.left, link.from, offsets[0]);
            const to = this.meet(this.right, link.to, offsets[1]);
            if (from === null || to === null) {
                continue;
            }
            const stands = link.to === this.chosen || link.to === this.hovered;
            if (stands || (!link.isQuiet && (from.isSeen || to.isSeen))) {
                this.curve(stands ? loud : quiet, link.kind, from, to, frame.width, stands);
            }
        }
        this.svg.replaceChildren(quiet, loud);  // what stands out is drawn over the rest
        this.svg.classList.toggle('has-chosen', this.chosen !== null);
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
        const wanted = result.getBoundingClientRect().top;
        this.left.scrollTop += source.getBoundingClientRect().top - wanted;
    }
}
