'use strict';
// What every part of the page uses. All that comes from the data goes in as text, never as markup:
// it was written by whoever wrote the property files.

// Characters that would be invisible, or reorder what stands beside them, get a visible form.
function shown(value) {
    const names = {'\t': 'tab', '\n': 'LF', '\r': 'CR', '\0': 'NUL'};
    return String(value).replace(/[\u0000-\u001f\u007f-\u009f\u00ad\u061c\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff]/g,
        (character) => '⟨' + (names[character] || 'U+'
            + character.charCodeAt(0).toString(16).toUpperCase().padStart(4, '0')) + '⟩');
}

// An element: make('li.entry.is-used', {id: 'x'}, 'text', node, …). Null children are left out.
function make(name, attributes, ...children) {
    const [tag, ...classes] = name.split('.');
    const node = document.createElement(tag);
    node.classList.add(...classes);
    for (const [key, value] of Object.entries(attributes || {})) {
        if (key.startsWith('on')) {
            node.addEventListener(key.slice(2), value);
        } else if (value !== null && value !== undefined && value !== false) {
            node.setAttribute(key, value === true ? '' : value);
        }
    }
    node.append(...children.flat(Infinity).filter((child) => child !== null && child !== undefined));
    return node;
}

// Text that may be long and without a space, such as a path: lines break behind slashes or before a
// placeholder rather than within names, and not behind the hyphen that an option begins with.
function breakable(value) {
    return shown(value).split(/(-+[^-\s/,;]|[/,;]+)/).filter((part) => part !== '')
        .flatMap((part) => '/,;'.includes(part[0]) ? [part, make('wbr')]
            : part.startsWith('-') ? [make('span.unbroken', null, part)]
                : part.split(/(?=\$\{)/).flatMap((one) => one.startsWith('${') ? [make('wbr'), one] : [one]));
}

// A value as it stands; an empty one would leave a hole in the page.
function code(value, name = 'code') {
    return value === '' ? make(name + '.empty', null, 'empty') : make(name, null, breakable(value));
}

// Our own sentences have the names of keys and options between backticks.
function prose(text) {
    const parts = shown(text).split('`');
    return parts.length % 2 === 0 ? shown(text)
        : parts.map((part, index) => index % 2 === 1 ? code(part) : part);
}

function baseName(path) {
    return path.slice(path.lastIndexOf('/') + 1) || path;
}

// "rcp/rcplauncher.properties" rather than the whole path, where the file is the installation's.
function shortPath(path, installation) {
    return installation && path.startsWith(installation + '/')
        ? path.slice(installation.length + 1) : path;
}

// "10,000"
function grouped(number) {
    return String(number).replace(/\B(?=(\d{3})+$)/g, ',');
}

function count(number, singular, plural = singular + 's') {
    return grouped(number) + ' ' + (number === 1 ? singular : plural);
}

// The first of many, as nodes, and a button that brings the next ones.
function firstOf(items, limit, render) {
    const nodes = items.slice(0, limit).map(render);
    const rest = items.slice(limit);
    if (rest.length > 0) {
        const more = make('button.jump.more', {type: 'button', onclick: () => {
            more.replaceWith(...firstOf(rest, 10 * limit, render).flat(Infinity));
        }}, '… and ' + grouped(rest.length) + ' more');
        nodes.push(more);
    }
    return nodes;
}

function section(id, title, note, ...content) {
    return make('section', {id, 'aria-labelledby': id + '-title'},
        make('h2', {id: id + '-title'}, title), note ? make('p.note', null, note) : null, content);
}

function contents(links) {
    const all = document.getElementById('contents');
    const list = all.firstElementChild || make('ul');
    for (const [id, title, number] of links) {
        list.append(make('li', null, make('a', {href: '#' + id}, title,
            number === undefined ? null : [' ', make('span.number', null, '(' + grouped(number) + ')')])));
    }
    all.append(list);
}

// When, by whom and with what the page was made: it is read elsewhere, and later.
function making({time, version, user, host, locale} = {}) {
    const said = [time, version && 'rcpinspect ' + version, user && 'user ' + user, host && 'host ' + host,
        locale && 'locale ' + locale].filter((one) => one);
    return said.length === 0 ? null : make('p.made', null, said.map((one) => make('span', null, shown(one))));
}
