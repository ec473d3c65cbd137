// The lists of rows, of which one is shown: its tab, its order, and what of it is within search and filter.
import { listsOf } from './compare_list.js';
import { toCsv } from './csv.js';
import { make, onArrows, refill } from './dom.js';
import { createGrid, sortItems } from './grid.js';
import { filterOf } from './model.js';
import { texts } from './texts.js';

const PANEL = 'list-panel';

/** How a list is sorted: as the state says, else by its own column. */
function sortOf(list, state) {
    const column = list.columns.find(({ id }) => id === state.sort);
    return column ? { column, descending: state.descending }
        : { column: list.columns.find(({ id }) => id === list.sort), descending: true };
}

const tabOf = (list, isChosen, onChoose) => make('button', {
    type: 'button', role: 'tab', id: `tab-${list.id}`, 'aria-selected': isChosen, 'aria-controls': PANEL,
    tabIndex: isChosen ? 0 : -1, 'data-focus': list.id, onclick: onChoose,
}, `${list.caption} (${list.items.length})`);

/**
 * @param {ReturnType<import('./store.js').createStore>} store
 * @param {{onPin: (row: number|null) => void, onHover: (row: number|null) => void}} on
 */
export function createLists(store, on) {
    const count = make('span.count', { role: 'status' });
    const tabs = make('div.tabs', { role: 'tablist', 'aria-label': texts('page_lists') });
    onArrows(tabs);
    let lists = [];
    let shown = { columns: [], items: [], unseen: [] };
    const listOf = (state) => lists.find((list) => list.id === state.list) ?? lists[0];
    const grid = createGrid({
        ...on,
        label: texts('page_list_rows'),
        onSort: (id) => {
            const list = listOf(store.state);
            const { column, descending } = sortOf(list, store.state);
            const clicked = list.columns.find((candidate) => candidate.id === id);
            store.set({ sort: id, descending: column.id === id ? !descending : Boolean(clicked.numeric) });
        },
    });
    const panel = make('div.list-panel', { id: PANEL }, grid.element);

    function showTabs(chosen) {
        tabs.hidden = lists.length < 2;
        if (tabs.hidden) return;
        panel.setAttribute('role', 'tabpanel');
        panel.setAttribute('aria-labelledby', `tab-${chosen.id}`);
        refill(tabs, lists.map((list) =>
            tabOf(list, list === chosen, () => store.set({ list: list.id, sort: '' }))));
    }

    return {
        count, tabs, panel, grid,
        /** @param {{sides: object[], items: object[]}} scene of a new configuration */
        setScene(scene) {
            lists = listsOf(scene);
        },
        /** @param {import('./store.js').State} state */
        show(state) {
            const list = listOf(state);
            const { column, descending } = sortOf(list, state);
            const found = list.items.filter(filterOf(state));
            shown = { ...list, items: sortItems(found, column, descending) };
            grid.show({ ...shown, sort: column.id, descending,
                none: texts(list.items.length ? 'page_none_found' : 'page_none') });
            count.textContent = found.length === list.items.length ? texts('page_count', found.length)
                : texts('page_count_of', found.length, list.items.length);
            showTabs(list);
        },
        csv: () => toCsv([...shown.columns, ...shown.unseen], shown.items),
    };
}
