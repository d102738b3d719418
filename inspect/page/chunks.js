// The part of a long list that the document holds: what is in view and a little around it. Rows come and go in
// chunks; a chunk that is not filled is as high as its rows were, or are thought to be. Whoever extends it makes
// the node of a row, in built(), and is told of every change, in settle().
const kChunk = 25;      // so many rows come and go together
const kWhole = 100;     // a list that is no longer is in the document as a whole
const kOnPaper = 2000;  // so many rows of a list are printed
const kAround = 400;    // pixels around the view that are filled as well

class Chunks {
    constructor(node) {
        this.node = node;
        this.shown = [];     // the rows, each with its number as `at`
        this.chunks = [];
        this.pinned = null;  // a row that is in the document wherever it is
    }

    // Of what is shown now; nothing is filled yet.
    cut() {
        this.chunks = [];
        for (let from = 0; from < this.shown.length; from += kChunk) {
            const to = Math.min(from + kChunk, this.shown.length);
            const node = make('div.chunk', {role: 'none'});
            node.style.height = `calc(var(--row) * ${to - from})`;
            this.chunks.push({from, to, node, isFilled: false});
        }
    }

    // Fills what is in view and empties the rest. What is filled may prove higher or lower than was
    // thought, which brings more into view or less.
    update() {
        let hasChanged = false;
        for (let round = 0; round < 5 && this.node.isConnected && this.fillView(); ++round) {
            hasChanged = true;
        }
        if (hasChanged) {
            this.settle();
        }
    }

    // False when everything is as it should be already.
    fillView() {
        const view = this.view();
        const first = this.firstChunk(view.top);
        const wanted = this.wanted(view);
        const coming = this.chunks.filter((chunk) => !chunk.isFilled && wanted.has(chunk));
        const going = this.chunks.filter((chunk) => chunk.isFilled && !wanted.has(chunk));
        if (coming.length + going.length === 0) {
            return false;
        }
        // What is in view stays where it is, whatever happens above it.
        const top = () => first ? first.node.getBoundingClientRect().top : this.node.getBoundingClientRect().bottom;
        const before = top();
        const scroller = this.scroller();
        const isAtEnd = scroller.scrollTop > 0
            && scroller.scrollTop + scroller.clientHeight >= scroller.scrollHeight - 1;
        going.map((chunk) => [chunk, chunk.node.getBoundingClientRect().height])
            .forEach(([chunk, height]) => this.empty(chunk, height));
        coming.forEach((chunk) => this.fill(chunk));
        this.measure(coming[0]);
        const moved = top() - before;
        if (isAtEnd) {
            scroller.scrollTop = scroller.scrollHeight;
        } else if (Math.abs(moved) >= 1) {
            scroller.scrollTop += moved;
        }
        return true;
    }

    // Rows that were never built are taken to be as high as those that were built first.
    measure(chunk) {
        if (chunk && this.width !== this.node.clientWidth && this.shown.length > kWhole && !Chunks.isOnPaper) {
            this.width = this.node.clientWidth;
            const height = chunk.node.getBoundingClientRect().height / (chunk.to - chunk.from);
            this.node.style.setProperty('--row', height + 'px');
        }
    }

    wanted(view) {
        if (this.shown.length <= kWhole || Chunks.isOnPaper) {
            return new Set(this.chunks.filter(({node}) => node.isConnected));
        }
        const wanted = new Set();
        for (const row of [this.pinned, this.rowOf(document.activeElement)]) {
            if (row && row.at >= 0) {
                wanted.add(this.chunkOf(row));
            }
        }
        if (this.node.getClientRects().length > 0) {
            let chunk = this.firstChunk(view.top - kAround);
            while (chunk && chunk.node.getBoundingClientRect().top < view.bottom + kAround) {
                wanted.add(chunk);
                chunk = this.chunks[chunk.to / kChunk];
            }
        }
        return wanted;
    }

    chunkOf(row) {
        return this.chunks[Math.floor(row.at / kChunk)];
    }

    // The rows that are in the document.
    * rendered() {
        for (const chunk of this.chunks) {
            if (chunk.isFilled) {
                yield* this.shown.slice(chunk.from, chunk.to);
            }
        }
    }

    // The first that reaches below this height.
    firstChunk(y) {
        let [low, high] = [0, this.chunks.length];
        while (low < high) {
            const middle = (low + high) >> 1;
            if (this.chunks[middle].node.getBoundingClientRect().bottom > y) {
                high = middle;
            } else {
                low = middle + 1;
            }
        }
        return this.chunks[low];
    }

    // What can be seen of the frame that the list scrolls in, or of the window.
    view() {
        const frame = this.node.closest('.scroll');
        const box = frame ? frame.getBoundingClientRect() : {top: 0, bottom: innerHeight};
        return {top: Math.max(0, box.top), bottom: Math.min(innerHeight, box.bottom)};
    }

    scroller() {
        const frame = this.node.closest('.scroll');
        return frame && frame.scrollHeight > frame.clientHeight ? frame : document.scrollingElement;
    }

    fill(chunk) {
        chunk.isFilled = true;
        chunk.node.replaceChildren(...this.shown.slice(chunk.from, chunk.to).map((row) => this.built(row)));
        chunk.node.style.height = '';
    }

    empty(chunk, height) {
        chunk.isFilled = false;
        chunk.node.replaceChildren();
        chunk.node.style.height = height + 'px';
        this.shown.slice(chunk.from, chunk.to).forEach((row) => { row.node = null; });
    }

    rowOf(node) {
        const item = this.node.contains(node) && node.closest('[role="listitem"]');
        return item ? item.row : null;
    }
}
Chunks.isOnPaper = false;
