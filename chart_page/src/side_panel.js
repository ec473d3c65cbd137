// The panel beside the chart: search and filter, the lists of rows, details of the pinned one, the summary.
import { listsOf } from './compare_list.js';
import { toCsv } from './csv.js';
import { showDetails } from './details.js';
import { make, refill } from './dom.js';
import { createGrid, sortItems } from './grid.js';
import { filterOf } from './model.js';
import { showSummary } from './summary.js';
import { texts } from './texts.js';

const SEARCH_PAUSE = 120;  // milliseconds after the last key

/**
 * @param {object} model @param {ReturnType<import('./store.js').createStore>} store
 * @param {{onPin: (row: number|null) => void, onHover: (row: number|null) => void}} on
 */
export function createSidePanel(model, store, on) {
    let pause = 0;
    const search = make('input', {
        type: 'search', id: 'search', placeholder: texts('page_search'), 'aria-label': texts('page_search'),
        title: texts('page_search_expl'),
        oninput: () => {
            clearTimeout(pause);
            pause = setTimeout(() => store.set({ search: search.value }), SEARCH_PAUSE);
        },
        onkeydown: (event) => {
            if (event.key === 'Escape' && search.value) {
                event.preventDefault();
                search.value = '';
                search.oninput();
            } else if (event.key === 'Enter' || event.key === 'ArrowDown') {
                event.preventDefault();
                grid.element.focus();
            }
        },
    });
    const least = make('input', {
        type: 'number', id: 'least', min: '0', max: '100', step: 'any',
        oninput: () => store.set({ least: Math.min(100, Math.max(0, Number(least.value) || 0)) }),
    });
    const count = make('span.count', { role: 'status' });
    const tabs = make('div.tabs', { role: 'tablist', 'aria-label': texts('page_lists') });
    const details = make('section.details', { 'aria-live': 'polite', 'aria-label': texts('page_details') });
    let lists = [];
    let shown = { columns: [], items: [], unseen: [] };

    const listOf = (state) => lists.find((list) => list.id === state.list) ?? lists[0];
    const sortOf = (list, state) => {
        const column = list.columns.find(({ id }) => id === state.sort);
        return column ? { column, descending: state.descending }
            : { column: list.columns.find(({ id }) => id === list.sort), descending: true };
    };
    const grid = createGrid({
        ...on,
        label: texts('page_list_rows'),
        onSort: (id) => {
            const { column, descending } = sortOf(listOf(store.state), store.state);
            const clicked = listOf(store.state).columns.find((candidate) => candidate.id === id);
            store.set({ sort: id, descending: column.id === id ? !descending : Boolean(clicked.numeric) });
        },
    });
    const element = make('aside.side', { 'aria-label': texts('page_side') },
        make('div.find', null, search,
            make('label', { title: texts('page_least_expl') }, texts('page_least'), least, '%'), count),
        tabs, grid.element, make('div.lower', null, details, showSummary(model)));

    return {
        element,
        grid,
        focusSearch: () => search.focus(),
        focusList: () => grid.element.focus(),
        /** @param {{sides: object[], items: object[]}} scene of a new configuration */
        setScene(scene) {
            lists = listsOf(scene);
        },
        /** @param {import('./store.js').State} state */
        showList(state) {
            if (document.activeElement !== search) search.value = state.search;
            if (document.activeElement !== least) least.value = state.least || '';
            const list = listOf(state);
            const { column, descending } = sortOf(list, state);
            const found = list.items.filter(filterOf(state));
            shown = { ...list, items: sortItems(found, column, descending) };
            grid.show({ ...shown, sort: column.id, descending,
                none: texts(list.items.length ? 'page_none_found' : 'page_none') });
            count.textContent = found.length === list.items.length ? texts('page_count', found.length)
                : texts('page_count_of', found.length, list.items.length);
            tabs.hidden = lists.length < 2;
            refill(tabs, lists.map(({ id, caption, items }) => make('button', {
                type: 'button', role: 'tab', 'aria-selected': id === list.id, 'data-focus': id,
                onclick: () => store.set({ list: id, sort: '' }),
            }, `${caption} (${items.length})`)));
        },
        /**
         * @param {import('./model.js').Item|null} item
         * @param {object[]} sides
         * @param {Array<object|null>} found
         */
        showDetails(item, sides, found) {
            details.replaceChildren(...(item ? showDetails(item, sides, found, () => on.onPin(null))
                : [make('p.note', null, texts('page_pin_hint'))]));
        },
        csv: () => toCsv([...shown.columns, ...(shown.unseen ?? [])], shown.items),
    };
}
