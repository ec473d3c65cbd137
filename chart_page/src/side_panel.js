// The panel beside the chart: search and filter, the lists of rows, details of the pinned one, the summary.
import { showDetails } from './details.js';
import { make } from './dom.js';
import { createLists } from './lists.js';
import { showSummary } from './summary.js';
import { percent, texts } from './texts.js';

const SEARCH_PAUSE = 120;  // milliseconds after the last key

/** The search field; what is typed counts after a pause. */
function createSearch(store, onLeave) {
    let pause = 0;
    const field = make('input', {
        type: 'search', id: 'search', placeholder: texts('page_search'), 'aria-label': texts('page_search'),
        title: texts('page_search_expl'),
        oninput: () => {
            clearTimeout(pause);
            pause = setTimeout(flush, SEARCH_PAUSE);
        },
        onkeydown: (event) => {
            if (event.key === 'Escape' && field.value) {
                event.preventDefault();
                field.value = '';
                field.oninput();
            } else if (event.key === 'Enter' || event.key === 'ArrowDown') {
                event.preventDefault();
                onLeave();
            }
        },
    });
    /** Makes what was typed count now. */
    function flush() {
        clearTimeout(pause);
        if (field.value !== store.state.search) store.set({ search: field.value });
    }
    return { field, flush };
}

/** The field of the least share of time that a row has to have. */
function createLeast(store) {
    const field = make('input', {
        type: 'number', id: 'least', min: '0', max: '100', step: 'any',
        oninput: () => store.set({ least: Math.min(100, Math.max(0, Number(field.value) || 0)) }),
        onchange: () => {
            field.value = store.state.least || '';
        },
    });
    return field;
}

/** The pinned row in one line, for a screen reader. @param {import('./model.js').Item} item */
function spokenOf({ sides }) {
    const { name, limit, fraction } = sides.findLast(Boolean);
    const verdict = limit ? texts('page_card_limit', limit, percent(fraction)) : texts('page_card_no_limit');
    return texts('page_of_side', name, verdict);
}

/**
 * @param {object} model @param {ReturnType<import('./store.js').createStore>} store
 * @param {{onPin: (row: number|null) => void, onHover: (row: number|null) => void}} on
 */
export function createSidePanel(model, store, on) {
    const lists = createLists(store, on);
    const focusList = () => lists.grid.element.focus();
    const { field: search, flush } = createSearch(store, focusList);
    const least = createLeast(store);
    const details = make('section.details', { 'aria-label': texts('page_details') });
    const told = make('p.chart-hidden', { role: 'status' });
    return {
        element: make('aside.side', { 'aria-label': texts('page_side') },
            make('div.find', null, search,
                make('label', { title: texts('page_least_expl') }, texts('page_least'), least, '%'),
                lists.count),
            lists.tabs, lists.panel, told, make('div.lower', null, details, showSummary(model))),
        grid: lists.grid,
        focusSearch: () => search.focus(),
        focusList,
        flush,
        setScene: lists.setScene,
        /** @param {import('./store.js').State} state */
        showList(state) {
            if (document.activeElement !== search) search.value = state.search;
            if (document.activeElement !== least) least.value = state.least || '';
            lists.show(state);
        },
        /**
         * @param {import('./model.js').Item|null} item
         * @param {object[]} sides
         * @param {Array<object|null>} found
         */
        showDetails(item, sides, found) {
            told.textContent = item ? spokenOf(item) : '';
            details.replaceChildren(...(item ? showDetails(item, sides, found, () => on.onPin(null))
                : [make('p.note', null, texts('page_pin_hint'))]));
        },
        csv: lists.csv,
    };
}
