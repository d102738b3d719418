// The page of "diff": how two launches and installations differ.
const kSigns = {removed: ['−', 'only in the first'], added: ['+', 'only in the second'], changed: ['≠', 'changed']};

// The parts in their order: member, heading, what its differences are called, and the texts of one difference.
const kParts = [
    ['elements', 'Command line', 'arguments', (one) => [one.text]],
    ['environment', 'Environment', 'variables', (one) => [one.name, one.value ?? 'not set']],
    ['properties', 'Properties', 'properties', (one) => [one.name, one.value]],
    ['copies', 'The user’s copies of master files', 'copies', (one) => [one.copy, one.message]],
    ['files', 'Files', 'files', (one) => one.became ? [one.path, `is a ${one.became} now`]
        : one.isReadable === false ? [one.path, 'cannot be read'] : [one.path]],
    ['findings', 'Findings of the check', 'findings', (one) => [one.code + ' ' + one.file + (one.line ? ':' + one.line : ''), one.message]],
];

class Differences {
    constructor(data, search) {
        this.data = data;
        this.search = search;
    }

    render(main) {
        document.title = 'rcpinspect: what ' + shown((this.data.second || {}).installation || '') + ' does differently';
        const parts = kParts.filter(([name]) => (this.data[name] || []).length > 0);
        contents([['summary', 'Summary'],
            ...parts.map(([name, title]) => [name, title, this.data[name].length])]);
        main.append(this.summary(), ...parts.map(([name, title, group, texts]) => rowsSection(name, title, null,
            group, this.data[name].map((one) => this.row(one, texts(one))), this.search)));
    }

    follow() {}

    summary() {
        const sides = [['removed', this.data.first || {}], ['added', this.data.second || {}]];
        const ends = sides.map(([, side]) => this.end(side));
        return make('section.outcome', {id: 'summary', 'aria-labelledby': 'summary-title'},
            make('h1', {id: 'summary-title'}, !this.data.isDifferent ? 'No difference'
                : ends[0] === ends[1] ? 'Both: ' + ends[0]
                    : sides[0][1].log ? 'The recorded launch ' + ends[0] + '; the next ' + ends[1]
                        : 'The first ' + ends[0] + '; the second ' + ends[1]),
            sides.map(([, side]) => side.outcome && (side.outcome.record || side.outcome.obstacle)
                ? make('p.record', null, code(side.outcome.record || side.outcome.obstacle)) : null),
            sides.map(([change, side], index) => this.side(change, side, index)), making(this.data.made));
    }

    side(change, side, index) {
        const said = [side.level ? 'level ' + side.level : null, side.date].filter((text) => text).join(', ');
        return make('p.side', null, make('span.verb', null, kSigns[change][0] + (index === 0 ? ' first ' : ' second ')),
            code(side.log || side.installation || ''), said ? make('span.why', null, ' ' + shown(said)) : null);
    }

    end(side) {
        const outcome = side.outcome || {};
        return !side.outcome ? 'started the platform' : outcome.record ? 'ends with ' + shown(/^\w+/.exec(outcome.record) || 'an error')
            : side.outcome.obstacle ? 'cannot start the platform'
            : {ends: 'ends', fatal: 'ends', provisioning: 'provisions first'}[outcome.kind]
                || (outcome.role === 'daemon' ? 'passes its arguments on' : 'starts the platform');
    }

    row(one, texts) {
        const [sign, label] = kSigns[one.change] || ['?', one.change];
        const side = one.change === 'removed' ? this.data.first : this.data.second;
        const source = one.source && one.source.file
            ? shortPath(one.source.file, side.installation) + ':' + one.source.line : null;
        return {words: () => [...texts.map(String), label, source],
            build: () => make('div.row', null, make('span.verb', {title: label}, sign + ' ' + label),
                make('div', null, texts.map((text, index) => make(index === 0 ? 'strong' : 'div', null, code(String(text)))),
                    source ? make('div.why', null, breakable(source)) : null))};
    }
}
