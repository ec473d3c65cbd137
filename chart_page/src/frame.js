// What stands around chart and lists: the head, the foot, and the line for errors.
import { make } from './dom.js';
import { texts } from './texts.js';

const FILE_NAME_MOST = 80;  // characters, as file systems limit names

export const titleOf = (model) =>
    model.results.map(({ program }) => program).join(' \u2192 ');

/** The name without ending of what is saved. */
export function fileNameOf(model) {
    const name = model.results.map(({ program }) => program).join('-').replace(/[^\p{L}\p{N}_.-]+/gu, '_');
    return [...name].slice(0, FILE_NAME_MOST).join('') || 'roofline';
}

export function pageHead(model) {
    const facts = (result) => [result.machine, result.place, result.isProjected && texts('page_projected')]
        .filter(Boolean).join(', ');
    const places = [...new Set(model.results.map(facts))].filter(Boolean);
    const title = titleOf(model);
    return make('header.top', null, make('h1', { title }, title),
        ...places.map((place) => make('p', null, place)),
        make('p', null, model.results.map(({ file }) => file).join(' \u2192 ')));
}

export const pageFoot = (model) =>
    make('footer', null, ...(model.notes ?? []).map((note) => make('p', null, note)));

/** Lines for errors, one for each sort: said in words, and with a way to try again. */
export function createNotices() {
    const element = make('div', { role: 'alert' });
    /** @type {Map<string, HTMLElement>} */
    const lines = new Map();
    const hide = (/** @type {string} */ sort) => {
        lines.get(sort)?.remove();
        lines.delete(sort);
    };
    return {
        element,
        hide,
        /** @param {string} sort @param {string} text @param {() => void} [again] */
        show(sort, text, again) {
            hide(sort);
            lines.set(sort, make('div.notice', null, make('p', null, text),
                again && make('button', { type: 'button', onclick: again }, texts('page_try_again')),
                make('button.quiet', { type: 'button', 'aria-label': texts('page_close'),
                    onclick: () => hide(sort) }, '\u00d7')));
            element.append(lines.get(sort));
        },
    };
}
