// The search box: hides what does not hold every word, and says how much is left.
class Search {
    constructor() {
        this.groups = new Map();
        this.afterwards = [];
        this.box = document.getElementById('search');
        this.found = document.getElementById('found');
        for (const event of ['input', 'change']) {
            this.box.addEventListener(event, () => this.apply());
        }
        document.addEventListener('keydown', (event) => this.key(event));
    }

    // `node` is shown while `texts` hold what is searched for; `group` is what its kind is called.
    add(group, node, texts) {
        if (!this.groups.has(group)) {
            this.groups.set(group, []);
        }
        const text = texts.filter((one) => one !== null && one !== undefined).join('\n').toLowerCase();
        this.groups.get(group).push({node, text});
    }

    // `action` is called when the set of what is shown has changed.
    then(action) {
        this.afterwards.push(action);
    }

    set(text) {
        this.box.value = text;
        this.apply();
    }

    apply() {
        const words = this.box.value.toLowerCase().split(/\s+/).filter((word) => word !== '');
        const counts = [];
        for (const [group, members] of this.groups) {
            let left = 0;
            for (const {node, text} of members) {
                node.hidden = !words.every((word) => text.includes(word));
                left += node.hidden ? 0 : 1;
            }
            if (left > 0) {
                counts.push(left + ' of ' + members.length + ' ' + group);
            }
        }
        document.body.classList.toggle('is-searching', words.length > 0);
        this.found.textContent = words.length === 0 ? '' : counts.join(', ') || 'nothing found';
        this.afterwards.forEach((action) => action());
    }

    key(event) {
        const isTyping = event.target instanceof HTMLInputElement;
        if (event.key === '/' && !isTyping && !event.ctrlKey && !event.metaKey && !event.altKey) {
            event.preventDefault();
            this.box.focus();
            this.box.select();
        } else if (event.key === 'Escape' && event.target === this.box && this.box.value !== '') {
            event.preventDefault();
            this.set('');
        }
    }
}
