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

// A value as it stands; an empty one would leave a hole in the page.
function code(value, name = 'code') {
    return value === '' ? make(name + '.empty', null, 'empty') : make(name, null, shown(value));
}

function baseName(path) {
    return path.slice(path.lastIndexOf('/') + 1) || path;
}

// "rcp/rcplauncher.properties" rather than the whole path, where the file is the installation's.
function shortPath(path, installation) {
    return installation && path.startsWith(installation + '/')
        ? path.slice(installation.length + 1) : path;
}

function count(number, singular, plural = singular + 's') {
    return number + ' ' + (number === 1 ? singular : plural);
}

function section(id, title, note, ...content) {
    return make('section', {id, 'aria-labelledby': id + '-title'},
        make('h2', {id: id + '-title'}, title), note ? make('p.note', null, note) : null, content);
}

function contents(links) {
    const list = make('ul');
    for (const [id, title, number] of links) {
        list.append(make('li', null, make('a', {href: '#' + id}, title,
            number === undefined ? null : make('span.number', null, String(number)))));
    }
    document.getElementById('contents').append(list);
}

// One stop of the tabulator key for a whole list: the arrow keys, Home and End go on from there.
function roving(container, selector) {
    const stops = () => [...container.querySelectorAll(selector)]
        .filter((node) => node.offsetParent !== null);
    const settle = (chosen) => {
        for (const node of container.querySelectorAll(selector)) {
            node.tabIndex = node === chosen ? 0 : -1;
        }
    };
    container.addEventListener('focusin', (event) => {
        const stop = event.target.closest(selector);
        if (stop) {
            settle(stop);
        }
    });
    container.addEventListener('keydown', (event) => {
        const all = stops();
        const here = all.indexOf(event.target);
        const next = {ArrowDown: here + 1, ArrowUp: here - 1, Home: 0, End: all.length - 1}[event.key];
        if (here < 0 || next === undefined || event.altKey || event.ctrlKey || event.metaKey) {
            return;
        }
        event.preventDefault();
        all[Math.max(0, Math.min(next, all.length - 1))].focus();
    });
    // What was the stop may be filtered out; then the first that is left takes its place.
    return () => {
        const all = stops();
        settle(all.find((node) => node.tabIndex === 0) || all[0]);
    };
}
