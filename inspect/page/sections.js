// What the page of "explain" says besides the picture: the outcome, and everything a launch changes.
const kStarts = ['execv', 'in-process', 'provisioning'];
const kOutcomes = {
    'execv': ['➜', 'Becomes', 'The launcher replaces itself with this program.'],
    'in-process': ['➜', 'Loads', 'The launcher runs the platform through this library in its own process.'],
    'provisioning': ['⟳', 'Provisions with', 'The launcher brings the installation up to date first.'],
    'fatal': ['✖', 'Ends with an error', null],
    'ends': ['■', 'Ends', null],
};

const kInside = 10;

const kFacts = {
    installation: 'Installation', workspace: 'Workspace', configuration: 'Configuration area', installConfiguration: 'Installed for',
    firstLaunch: 'First launch', area: 'Area', waits: 'Waits for', lockHolder: 'Lock held by process',
    lockFile: 'Lock file', logs: 'Logs', steps: 'Steps',
};

function outcomeSection(data, sources) {
    const outcome = data.outcome || {};
    const [glyph, verb, sentence] = kOutcomes[outcome.kind] || ['?', String(outcome.kind), null];
    const isStart = kStarts.includes(outcome.kind);
    const isBad = outcome.kind === 'fatal' || Boolean(outcome.obstacle) || (!isStart && Boolean(outcome.record));
    const program = outcome.program && isStart ? shown(baseName(outcome.program)) : null;
    const role = outcome.role && outcome.role !== 'undecided' && isStart ? 'as ' + outcome.role : null;
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
        outcome.source ? make('p', null, 'Brought about by ', sources.link(outcome.source),
            sources.written(outcome.source)) : null,
        outcome.cause ? make('p.cause', null, prose(outcome.cause)) : null,
        outcome.program ? make('p', null, isStart ? null : 'It was on its way to ', code(outcome.program)) : null,
        outcome.obstacle ? make('p.record', null, 'The platform cannot be started: ', code(outcome.obstacle)) : null,
        outcome.beyond ? make('p.note', null, breakable(outcome.beyond)) : null,
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
    ['handOff', 'What it hands off to', 'The files that the next program will use, examined; nothing of them was started.',
        'files of the hand-off', handOffRow],
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

// What was taken out of the data before they got here, on every page.
function redactedSection(data, search) {
    return (data.redacted || []).length === 0 ? null : rowsSection('redacted', 'Redacted',
        'What was taken out of this page. Equal values have equal digests.', 'redacted values', data.redacted.map((one) => ({
            words: () => [one.name, one.digest],
            build: () => make('div.row', null, make('span.verb', null, count(one.count ?? 1, 'time')),
                make('div', null, make('strong', null, breakable(one.name ?? '')), ' ',
                    one.digest ? make('code', null, '<redacted:' + shown(one.digest) + '>') : null))})), search);
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

function handOffRow({what, path, faults = []}) {
    const verb = faults.length === 0 ? '✔ usable' : '✖ ' + count(faults.length, 'fault');
    return {words: () => [what, path, verb, ...faults.flatMap((fault) => [fault.code, fault.file, fault.message])],
        build: () => make('div.row' + (faults.length === 0 ? '' : '.is-error'), null, make('span.verb', null, verb),
            make('div', null, make('strong', null, shown(what ?? '')), ' ', code(String(path ?? '')),
                firstOf(faults, kInside, (fault) => make('div', null, make('code', null, shown(fault.code ?? '')), ' ',
                    breakable(fault.message ?? ''), make('div.why', null, breakable(fault.file ?? ''),
                        fault.line ? ', line ' + fault.line : null)))))};
}

function environmentRow(one, sources) {
    const gone = one.after === null || one.after === undefined;
    const isNew = one.before === null || one.before === undefined;
    const verb = gone ? '− removed' : isNew ? '+ set' : '≠ changed';
    return {words: () => [one.name, one.before, one.after, verb, ...sources.words(one.source),
        ...(one.parts || []).map((part) => sources.name(part.source))],
        build: () => make('div.row', null, make('span.verb', null, verb), make('div', null,
            make('strong', null, code(one.name)),
            isNew ? null : make('div', null, 'from ', code(one.before)),
            gone ? null : make('div', null, isNew ? '' : 'to ', code(one.after)),
            (one.parts || []).length > 0 ? firstOf(one.parts, kInside, (part) => make('div.why', null,
                code(part.text ?? ''), ' ', sources.name(part.source)))
                : one.source ? make('div.why', null, sources.name(one.source)) : null))};
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
