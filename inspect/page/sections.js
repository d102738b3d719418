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
    const status = outcome.status === undefined ? null : ', status ' + outcome.status;
    const program = outcome.program ? shown(baseName(outcome.program)) : null;
    const role = outcome.role && outcome.role !== 'undecided' ? 'as ' + outcome.role : null;
    const command = [shown(baseName(data.launcher || 'rcplauncher')),
        ...(data.arguments || []).map((argument) => ' ' + quoted(argument))].join('');
    return make('section.outcome' + (isBad ? '.is-error' : ''),
        {id: 'outcome', 'aria-labelledby': 'outcome-title'},
        make('p.command', null, make('code', null, command)),
        make('h1', {id: 'outcome-title'}, make('span.glyph', {'aria-hidden': 'true'}, glyph), ' ',
            verb, program ? [' ', make('span.program', null, program)] : null,
            role ? ', ' + role : null, status),
        sentence ? make('p', null, sentence, outcome.role === 'undecided'
            ? ' Main or daemon: that depends on what happens until then.' : null) : null,
        outcome.program ? make('p', null, code(outcome.program)) : null,
        outcome.record ? make('p.record', null, code(outcome.record)) : null,
        outcome.cause ? make('p.cause', null, shown(outcome.cause)) : null,
        facts(data));
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
                typeof one === 'boolean' ? (one ? 'yes' : 'no') : shown(one))))));
}

function otherSections(data, sources, search) {
    const made = [];
    const add = (id, title, note, items, group, row) => {
        if (!items || items.length === 0) {
            return;
        }
        const rows = items.map((item) => {
            const [node, words] = row(item);
            search.add(group, node, words);
            return node;
        });
        made.push({id, title, number: items.length,
            node: section(id, title, note, make('ul.rows', null, rows))});
    };
    add('environment', 'Environment', 'Variables that the platform finds other than they are now.',
        data.environment, 'variables', (one) => environmentRow(one, sources));
    add('changes', 'Files and directories', 'What the launch makes, replaces, removes or moves.',
        data.changes, 'changes', changeRow);
    add('dropped', 'Arguments not passed on', 'Arguments of the command line that end with the launcher.',
        data.dropped, 'arguments not passed on', droppedRow);
    add('records', 'Log records', 'What the launch would write to its log.',
        data.records, 'records', (text) => [make('li.record', null, code(text)), [text]]);
    return made;
}

function environmentRow(one, sources) {
    const gone = one.after === null || one.after === undefined;
    const isNew = one.before === null || one.before === undefined;
    const verb = gone ? '− removed' : isNew ? '+ set' : '≠ changed';
    return [make('li', null, make('span.verb', null, verb), make('div', null,
        make('strong', null, code(one.name)),
        isNew ? null : make('div', null, 'from ', code(one.before)),
        gone ? null : make('div', null, isNew ? '' : 'to ', code(one.after)),
        one.source ? make('div.why', null, sources.name(one.source)) : null)),
    [one.name, one.before, one.after, verb, ...sources.words(one.source)]];
}

function changeRow(one) {
    const verb = {made: '+ made', replaced: '≠ replaced', removed: '− removed', moved: '→ moved'}[one.change]
        || one.change;
    return [make('li', null, make('span.verb', null, shown(verb)), make('div', null,
        code(one.path), one.to ? [' → ', code(one.to)] : null,
        make('div.why', null, shown(one.kind || '')))), [one.path, one.to, verb, one.kind]];
}

function droppedRow(one) {
    return [make('li', null, make('span.verb', null, '⊘ argument ' + one.position),
        make('div', null, code(one.text), make('div.why', null, shown(one.why || '')))),
    [one.text, one.why, 'not passed on']];
}
