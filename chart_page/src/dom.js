// Makes elements. All that comes from data goes in as text, never as markup.

/**
 * @param {string} tag such as "button.link": a tag with classes
 * @param {Record<string, any>|null} [properties] of the element; names with "-" and "role" are attributes
 * @param {...(Node|string|false|null|undefined)} children left out where false or nothing
 * @returns {any}
 */
export function make(tag, properties, ...children) {
    const [name, ...classes] = tag.split('.');
    const element = document.createElement(name);
    element.classList.add(...classes);
    for (const [key, value] of Object.entries(properties ?? {})) {
        if (key.includes('-') || key === 'role') element.setAttribute(key, String(value));
        else element[key] = value;
    }
    element.append(...children.filter((child) => child || child === 0 || child === ''));
    return element;
}

/** A drop-down panel that closes on Escape and on a press outside of it. */
export function menu(caption, content) {
    const summary = make('summary', null, caption);
    const details = make('details.menu', null, summary, make('div.panel', null, content));
    details.addEventListener('keydown', (event) => {
        if (event.key !== 'Escape' || !details.open) return;
        event.stopPropagation();
        details.open = false;
        summary.focus();
    });
    addEventListener('pointerdown', (event) => {
        if (!details.contains(event.target)) details.open = false;
    });
    return details;
}

/**
 * A row of buttons of which one is chosen, or, of "many", each on its own.
 * @param {string} caption @param {string} title
 * @param {Array<{value: any, caption: string, expl?: string}>} values
 * @param {(value: any) => boolean} isChosen @param {(value: any) => void} onChoose
 * @param {'one'|'many'} [kind]
 */
export function segments(caption, title, values, isChosen, onChoose, kind = 'one') {
    const isMany = kind === 'many';
    const element = make(`div.segments${isMany ? '.many' : ''}`,
        { role: isMany ? 'group' : 'radiogroup', 'aria-label': caption, title },
        make('span.caption', null, caption),
        ...values.map(({ value, caption: text, expl }) => make('button', {
            type: 'button', role: isMany ? 'checkbox' : 'radio', title: expl ?? '',
            'aria-checked': isChosen(value), tabIndex: isMany || isChosen(value) ? 0 : -1,
            'data-focus': `${caption}.${value}`, onclick: () => onChoose(value),
        }, text)));
    if (!isMany) onArrows(element);
    return element;
}

/** Arrow keys go round the buttons of an element, and press them. @param {HTMLElement} element */
export function onArrows(element) {
    const steps = { ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1 };
    element.addEventListener('keydown', (event) => {
        const buttons = [...element.querySelectorAll('button')];
        const at = buttons.indexOf(/** @type {any} */ (event.target));
        const step = steps[event.key];
        if (at < 0 || !step || event.ctrlKey || event.metaKey || event.altKey) return;
        event.preventDefault();
        const next = buttons.at((at + step) % buttons.length);
        next.focus();
        next.click();
    });
}

/**
 * A table under heads; columns after the first are numbers. A row that is an element is taken as it is.
 * @param {string[]} heads @param {Array<Array<Node|string>|HTMLElement>} rows
 */
export function figures(heads, rows) {
    return make('table.figures', null,
        heads.length > 0 && make('thead', null, make('tr', null,
            ...heads.map((head) => make('th', { scope: 'col' }, head)))),
        make('tbody', null, ...rows.map((cells) =>
            (Array.isArray(cells) ? make('tr', null, ...cells.map((cell, i) =>
            make(i ? 'td' : 'th', i ? null : { scope: 'row' }, cell))) : cells))));
}

/**
 * Offers a text or blob as a file.
 * @param {string} name
 * @param {Blob|string} content
 * @param {string} [type]
 */
export function saveFile(name, content, type) {
    const blob = content instanceof Blob ? content : new Blob([content], { type });
    const link = make('a', { href: URL.createObjectURL(blob), download: name });
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}

/**
 * Makes the content of an element anew and leaves the focus where it was, by the elements' data-focus.
 * @param {HTMLElement} element @param {Node[]} content
 */
export function refill(element, content) {
    const focused = element.contains(document.activeElement) ? document.activeElement.dataset.focus
        : undefined;
    element.replaceChildren(...content);
    if (focused) element.querySelector(`[data-focus="${CSS.escape(focused)}"]`)?.focus();
}
