// What the page of "explain" says besides the picture: the outcome, and everything a launch changes.
const kOutcomes = {
    'execv': ['➜', 'Becomes', 'The launcher replaces itself with this program.'],
    'in-process': ['➜', 'Loads', 'The launcher runs the platform through this library in its own process.'],
    'provisioning': ['⟳', 'Provisions with', 'The launcher brings the installation up to date first.'],
    'fatal': ['✖', 'Ends with an error', null],
    'ends': ['■', 'Ends', null],
};

const kFacts = {
    installation: 'Installation', workspace: 'Workspace', configuration: 'Configuration area', installConfiguration: 'Installed for',
    firstLaunch: 'First launch', area: 'Area', waits: 'Waits for', lockHolder: 'Lock held by process',
    lockFile: 'Lock file', logs: 'Logs', steps: 'Steps',
};

function outcomeSection(data) {
    const outcome = data.outcome || {};
    const [glyph, verb, sentence] = kOutcomes[outcome.kind] || ['?', String(outcome.kind), null];
    const isBad = outcome.kind === 'fatal';
    const program = outcome.program && !isBad ? shown(baseName(outcome.program)) : null;
    const role = outcome.role && outcome.role !== 'undecided' && !isBad ? 'as ' + outcome.role : null;
    const command = [shown(baseName(data.launcher || 'rcplauncher')),
        ...(data.arguments || []).map((argument) => ' ' + quoted(argument))].join('');
    return make('section.outcome' + (isBad ? '.is-error' : ''),
        {id: 'outcome', 'aria-labelledby': 'outcome-title'},
        make('p.command', null, make('code', null, command)),
        make('h1', {id: 'outcome-title'}, make('span.glyph', {'aria-hidden': 'true'}, glyph), ' ',
            verb, program ? [' ', make('span.program', null, program)] : null,
            role ? ', ' + role : null, outcome.status === undefined ? null : ', status ' + outcome.status),
        sentence ? make('p', null, sentence, outcome.role === 'undecided'
            ? ' Main or daemon: that depends on what happens until then.' : null) : null,
        outcome.record ? make('p.record', null, code(outcome.record)) : null,
        outcome.cause ? make('p.cause', null, prose(outcome.cause)) : null,
        outcome.program ? make('p', null, isBad ? 'It was on its way to ' : null, code(outcome.program)) : null,
        making(data.made), facts(data));
}

// An argument as it would be typed into a shell.
function quoted(argument) {
    return /^[\w@%+=:,./-]+$/.test(argument) ? argument
        : "'" + shown(argument).replaceAll("'", "'\\''") + "'";
}

// Facts made of several are for programs.
function facts(data) {
    const given = {installation: data.installation, ...data.facts};
    const all = {};
    for (const key of [...Object.keys(kFacts), ...Object.keys(given)]) {
        all[kFacts[key] || key] = given[key];
    }
    return make('dl.facts', null, Object.entries(all)
        .filter(([, value]) => value !== undefined && (typeof value !== 'object' || Array.isArray(value)) && String(value) !== '')
        .map(([label, value]) => make('div', null, make('dt', null, shown(label)),
            [value].flat().map((one) => make('dd', null,
                typeof one === 'boolean' ? (one ? 'yes' : 'no') : breakable(one))))));
}

// Everything else that a launch changes: each section has a list.
const kSections = [
    ['copies', 'The user’s copies', 'Entries of master files that the user’s copies have not, or not with this value.',
        'copies', copyRow],
    ['environment', 'Environment', 'Variables that the platform finds other than they are now.',
        'variables', environmentRow],
    ['changes', 'Files and directories', 'What the launch makes, replaces, removes or moves.', 'changes', changeRow],
    ['dropped', 'Arguments not passed on', 'Arguments of the command line that end with the launcher.',
        'arguments not passed on', droppedRow],
    ['records', 'Log records', 'What the launch would write to its log.', 'records', recordRow],
];

function otherSections(data, sources, search) {
    return kSections.filter(([id]) => (data[id] || []).length > 0).map(([id, title, note, name, row]) => ({
        id, title, number: data[id].length,
        node: rowsSection(id, title, note, name, data[id].map((one) => row(one, sources)), search)}));
}

function rowsSection(id, title, note, name, rows, search) {
    const list = search.add(new List(name, title, rows));
    list.node.classList.add('rows');
    return section(id, title, note, list.node);
}

function copyRow(one) {
    return {words: () => [one.copy, one.master, one.message], build: () => make('div.row', null,
        make('span.verb', null, '≠ differs'), make('div', null, make('strong', null, code(one.copy ?? '')),
            make('div', null, breakable(one.message ?? '')),
            make('div.why', null, breakable((one.master ?? '') + (one.line ? ', line ' + one.line : '')))))};
}

function environmentRow(one, sources) {
    const gone = one.after === null || one.after === undefined;
    const isNew = one.before === null || one.before === undefined;
    const verb = gone ? '− removed' : isNew ? '+ set' : '≠ changed';
    return {words: () => [one.name, one.before, one.after, verb, ...sources.words(one.source)],
        build: () => make('div.row', null, make('span.verb', null, verb), make('div', null,
            make('strong', null, code(one.name)),
            isNew ? null : make('div', null, 'from ', code(one.before)),
            gone ? null : make('div', null, isNew ? '' : 'to ', code(one.after)),
            one.source ? make('div.why', null, sources.name(one.source)) : null))};
}

function changeRow(one) {
    const verb = {made: '+ made', replaced: '≠ replaced', removed: '− removed', moved: '→ moved'}[one.change]
        || one.change;
    return {words: () => [one.path, one.to, verb, one.kind],
        build: () => make('div.row', null, make('span.verb', null, shown(verb)), make('div', null,
            code(one.path), one.to ? [' → ', code(one.to)] : null, make('div.why', null, shown(one.kind || ''))))};
}

function droppedRow(one) {
    return {words: () => [one.text, one.why, 'not passed on'],
        build: () => make('div.row', null, make('span.verb', null, '⊘ argument ' + one.position),
            make('div', null, code(one.text), make('div.why', null, prose(one.why || ''))))};
}

function recordRow(text) {
    return {words: () => [text], build: () => make('div.row.record', null, code(text))};
}
