// The search box: the lists show what holds every word, and the box says how much is left.
class Search {
    constructor() {
        this.lists = [];
        this.text = '';
        this.box = document.getElementById('search');
        this.found = document.getElementById('found');
        for (const event of ['input', 'change']) {
            this.box.addEventListener(event, () => this.apply());
        }
        document.addEventListener('keydown', (event) => this.key(event));
    }

    add(list) {
        this.lists.push(list);
        return list;
    }

    set(text) {
        this.box.value = text;
        this.apply();
    }

    apply() {
        if (this.box.value === this.text) {
            return;
        }
        this.text = this.box.value;
        const words = this.text.toLowerCase().split(/\s+/).filter((word) => word !== '');
        const counts = this.lists.filter((list) => list.filter(words) > 0)
            .map((list) => grouped(list.found) + ' of ' + grouped(list.size) + ' ' + list.name);
        this.found.textContent = words.length === 0 ? '' : counts.join(', ') || 'nothing found';
        this.hideEmptySections(words.length > 0);
        if (words.length > 0) {
            this.settleTop();
            this.show();
        }
    }

    // What is brought into view stops below what stays at the top.
    settleTop() {
        const top = [...document.querySelectorAll('.top, .search')]
            .find((node) => getComputedStyle(node).position === 'sticky');
        document.documentElement.style.scrollPaddingTop = top.offsetHeight + 8 + 'px';
    }

    hideEmptySections(isSearching) {
        const sections = new Map();
        for (const list of this.lists) {
            const section = list.node.closest('section');
            sections.set(section, sections.get(section) || !isSearching || list.found > 0);
        }
        for (const [section, isShown] of sections) {
            section.hidden = !isShown;
            document.querySelector(`#contents a[href="#${section.id}"]`).parentNode.hidden = !isShown;
        }
        List.updateAll();
    }

    // Brings what was found into view.
    show() {
        const found = this.lists.filter((list) => list.found > 0);
        for (const list of found) {
            const frame = list.node.closest('.scroll');
            if (frame) {
                frame.scrollTop = 0;
            }
        }
        const top = found.length > 0 ? found[0].node.getBoundingClientRect().top : 0;
        if (found.length > 0 && (top < 0 || top > 0.7 * innerHeight)) {
            found[0].node.closest('section').scrollIntoView();
        }
        List.updateAll();
    }

    key(event) {
        const isTyping = event.target === this.box;
        const hasModifier = event.ctrlKey || event.metaKey || event.altKey;
        const isFind = event.key === 'f' && (event.ctrlKey || event.metaKey) && !event.altKey;
        if ((event.key === '/' && !isTyping && !hasModifier) || (isFind && !isTyping && List.isPartial())) {
            event.preventDefault();
            this.box.focus();
            this.box.select();
            if (isFind) {
                this.found.textContent = 'searches everything; the browser’s own search, which comes when the keys '
                    + 'are pressed again, sees what is in view';
            }
        } else if (event.key === 'Escape' && isTyping && this.text !== '') {
            event.preventDefault();
            this.set('');
        } else if (['Enter', 'ArrowDown'].includes(event.key) && isTyping && !hasModifier) {
            const list = this.lists.find((one) => one.found > 0 && one.shown.length > 0);
            if (list) {
                event.preventDefault();
                list.focus(list.shown.find((row) => !row.members) || list.shown[0]);
            }
        }
    }
}
