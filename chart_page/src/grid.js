// A sortable list that stays fluid with tens of thousands of rows: only those in sight are elements.
import { make } from './dom.js';
import { texts } from './texts.js';

const ROW_HEIGHT = 26;  // pixels; style.css has the same
const MARGIN = 8;       // rows made beyond the visible ones
const LONG = 26;        // characters; what is longer is cut in its middle: names often differ at their ends
const TAIL = 9;
const LETTER = 7.25;    // pixels of a letter in the first column, which grows with its names up to WIDEST
const WIDEST = 240;
const collator = new Intl.Collator(undefined, { numeric: true, sensitivity: 'base' });

/**
 * @template T
 * @typedef {object} Column
 * @property {string} id
 * @property {string} caption
 * @property {string} expl
 * @property {number} width in pixels; the first column takes what is left
 * @property {boolean} [numeric]
 * @property {(item: T) => string|number|null} value by which rows are sorted and exported; null stands last
 * @property {(item: T) => string} [text] shown; default: the value
 * @property {(item: T) => string} [look] class of the cell
 */

/** Sorted copy; missing values last in either direction. */
export function sortItems(items, { value }, descending) {
    const sign = descending ? -1 : 1;
    const keyed = items.map((item) => ({ item, key: value(item) }));
    const missing = (key) => key === null || key === '' || Number.isNaN(key);
    keyed.sort((a, b) => {
        if (missing(a.key) || missing(b.key)) return Number(missing(a.key)) - Number(missing(b.key));
        return sign * (typeof a.key === 'string' ? collator.compare(a.key, b.key) : a.key - b.key);
    });
    return keyed.map(({ item }) => item);
}

/**
 * @param {{label: string, onSort: (column: string) => void, onPin: (row: number|null) => void,
 *          onHover: (row: number|null) => void}} on
 */
export function createGrid(on) {
    const head = make('div.grid-head', { role: 'row' });
    const body = make('div.grid-body', { role: 'rowgroup' });
    const empty = make('p.grid-empty', { hidden: true });
    const root = make('div.grid', { role: 'grid', tabIndex: 0, 'aria-label': on.label },
        make('div.grid-top', { role: 'rowgroup' }, head), body, empty);
    let columns = [];
    let items = [];
    let active = 0;
    let marks = { pinned: null, hovered: null };
    let drawn = { from: -1, to: -1 };
    // Kept, since asking the element would make the browser lay out a large chart in the middle of a change.
    const size = { view: 0, head: 0, top: 0 };

    function cell(column, item) {
        const text = column.text ? column.text(item) : String(column.value(item) ?? '');
        const isLong = !column.numeric && text.length > LONG;
        return make('div', {
            role: 'gridcell', title: column.numeric ? '' : text,
            className: ['cell', column.numeric && 'number', isLong && 'long', column.look?.(item)]
                .filter(Boolean).join(' '),
        }, ...(isLong ? [make('span', null, text.slice(0, -TAIL)), make('span', null, text.slice(-TAIL))]
            : [text]));
    }

    function draw() {
        const from = Math.max(0, Math.floor(size.top / ROW_HEIGHT) - MARGIN);
        const to = Math.min(items.length, Math.ceil((size.top + size.view) / ROW_HEIGHT) + MARGIN);
        if (from === drawn.from && to === drawn.to) return;
        drawn = { from, to };
        body.replaceChildren(...items.slice(from, to).map((item, i) => {
            const row = make('div.grid-row',
                { role: 'row', id: `row-${item.row}`, 'aria-rowindex': from + i + 2 },
                ...columns.map((column) => cell(column, item)));
            row.dataset.at = from + i;
            row.style.top = `${(from + i) * ROW_HEIGHT}px`;
            return row;
        }));
        mark();
    }

    function mark() {
        for (const row of body.children) {
            const item = items[row.dataset.at];
            row.setAttribute('aria-selected', item.row === marks.pinned);
            row.classList.toggle('hovered', item.row === marks.hovered);
            row.classList.toggle('active', Number(row.dataset.at) === active);
        }
        const shown = items[active] && document.getElementById(`row-${items[active].row}`);
        if (shown) root.setAttribute('aria-activedescendant', shown.id);
        else root.removeAttribute('aria-activedescendant');
    }

    /** Scrolls so far that a row stands free of the head. */
    function reveal(at) {
        if (!size.view) return;
        const top = at * ROW_HEIGHT;
        const view = size.view - size.head;
        const next = Math.max(Math.min(size.top, top), top + ROW_HEIGHT - view);
        if (next !== size.top) root.scrollTop = size.top = next;
        draw();
    }

    function moveTo(at) {
        if (!items.length) return;
        active = Math.min(items.length - 1, Math.max(0, at));
        reveal(active);
        mark();
        on.onHover(items[active].row);
    }

    const page = () => Math.max(1, Math.floor(size.view / ROW_HEIGHT) - 2);
    const pin = (item) => on.onPin(item.row === marks.pinned ? null : item.row);
    const keys = {
        ArrowDown: () => moveTo(active + 1),
        ArrowUp: () => moveTo(active - 1),
        PageDown: () => moveTo(active + page()),
        PageUp: () => moveTo(active - page()),
        Home: () => moveTo(0),
        End: () => moveTo(items.length - 1),
        Enter: () => items[active] && pin(items[active]),
        ' ': () => items[active] && pin(items[active]),
    };
    root.addEventListener('keydown', (event) => {
        if (event.target !== root || event.ctrlKey || event.metaKey || event.altKey
            || !keys[event.key]) return;
        event.preventDefault();
        keys[event.key]();
    });
    root.addEventListener('scroll', () => {
        size.top = root.scrollTop;
        draw();
    }, { passive: true });
    const rowAt = (event) => event.target.closest?.('.grid-row')?.dataset.at;
    body.addEventListener('click', (event) => {
        const at = rowAt(event);
        if (at === undefined) return;
        active = Number(at);
        pin(items[active]);
    });
    body.addEventListener('pointerover', (event) => on.onHover(items[rowAt(event)]?.row ?? null));
    body.addEventListener('pointerleave', () => on.onHover(null));
    const resizes = new ResizeObserver(() => {
        const isFirst = !size.view;
        Object.assign(size, { view: root.clientHeight, head: head.offsetHeight });
        if (isFirst) reveal(active);
        draw();
    });
    resizes.observe(root);
    resizes.observe(head);

    return {
        element: root,
        /**
         * @param {{columns: object[], items: object[], sort: string, descending: boolean, none: string}}
         * content
         */
        show(content) {
            ({ columns, items } = content);
            const [first, ...others] = columns;
            const longest = items.reduce((most, item) => Math.max(most, String(first.value(item)).length), 0);
            const room = Math.min(WIDEST, Math.max(first.width, longest * LETTER + 20));
            root.style.setProperty('--columns',
                `minmax(${room}px, 1fr) ${others.map((c) => `${c.width}px`).join(' ')}`);
            root.style.setProperty('--width', `${others.reduce((sum, c) => sum + c.width, room)}px`);
            body.style.height = `${items.length * ROW_HEIGHT}px`;
            root.setAttribute('aria-rowcount', items.length + 1);
            head.replaceChildren(...columns.map((column) => headCell(column, content, on.onSort)));
            empty.hidden = items.length > 0;
            empty.textContent = content.none;
            active = Math.max(0, items.findIndex((item) => item.row === marks.pinned));
            drawn = { from: -1, to: -1 };
            draw();
        },
        /**
         * @param {{pinned: number|null, hovered: number|null}} next
         * @param {boolean} [scroll] to the pinned row
         */
        highlight(next, scroll) {
            marks = next;
            const at = items.findIndex((item) => item.row === marks.pinned);
            if (scroll && at >= 0) reveal(active = at);
            mark();
        },
    };
}

function headCell(column, { sort, descending }, onSort) {
    const isSorted = column.id === sort;
    const direction = descending ? 'descending' : 'ascending';
    return make('div', {
        role: 'columnheader', className: `cell ${column.numeric ? 'number' : ''}`,
        'aria-sort': isSorted ? direction : 'none',
    }, make('button', {
        type: 'button', title: column.expl || texts('page_sort_by', column.caption), 'data-column': column.id,
        onclick: () => onSort(column.id),
    }, column.caption));
}
