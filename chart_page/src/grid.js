// A sortable list that stays fluid with tens of thousands of rows: only those in sight are elements.
import { make, refill } from './dom.js';
import { cellOf, headCell } from './grid_cells.js';

const ROW_HEIGHT = 26;  // pixels; style.css has the same
const MARGIN = 8;       // rows made beyond the visible ones
const LETTER = 7.25;    // pixels of a letter in the first column, which grows with its names up to WIDEST
const WIDEST = 240;
const WIDE_PART = 0.4;  // of a wide list that names may take instead
const MOST_PART = 0.5;  // of a narrow one
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
 * @property {(item: T) => string} [title] of the cell; default: the text, where it isn't a number
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
 * @typedef {object} Callbacks
 * @property {string} label
 * @property {(column: string) => void} onSort
 * @property {(row: number|null) => void} onPin
 * @property {(row: number|null) => void} onHover
 */

class Grid {
    /** @param {Callbacks} on */
    constructor(on) {
        this.m_on = on;
        this.m_head = make('div.grid-head', { role: 'row' });
        this.m_body = make('div.grid-body', { role: 'rowgroup' });
        this.m_empty = make('div.grid-empty', { role: 'row', hidden: true });
        this.element = make('div.grid', { role: 'grid', tabIndex: 0, 'aria-label': on.label },
            make('div.grid-top', { role: 'rowgroup' }, this.m_head), this.m_body, this.m_empty);
        this.m_columns = [];
        this.m_items = [];
        this.m_longest = 0;  // characters of a name
        this.m_active = 0;
        this.m_marks = { pinned: null, hovered: null };
        this.m_drawn = { from: -1, to: -1 };
        // Kept: asking the element would make the browser lay out a large chart in the middle of a change.
        this.m_size = { view: 0, width: 0, head: 0, top: 0 };
        this.m_listen();
    }

    m_listen() {
        const { element: root, m_body: body, m_on: on } = this;
        const keys = this.m_keys();
        root.addEventListener('keydown', (event) => {
            if (event.target !== root || event.ctrlKey || event.metaKey || event.altKey
                || !keys[event.key]) return;
            event.preventDefault();
            keys[event.key]();
        });
        root.addEventListener('blur', () => on.onHover(null));
        root.addEventListener('scroll', () => {
            this.m_size.top = root.scrollTop;
            this.m_draw();
        }, { passive: true });
        const rowAt = (event) => event.target.closest?.('.grid-row')?.dataset.at;
        body.addEventListener('click', (event) => {
            const at = rowAt(event);
            if (at === undefined) return;
            this.m_active = Number(at);
            this.m_pin();
        });
        body.addEventListener('pointerover', (event) => on.onHover(this.m_items[rowAt(event)]?.row ?? null));
        body.addEventListener('pointerleave', () => on.onHover(null));
        const resizes = new ResizeObserver(() => this.m_resize());
        resizes.observe(root);
        resizes.observe(this.m_head);
    }

    m_keys() {
        const by = (rows) => () => this.m_moveTo(this.m_active + rows());
        const page = () => Math.max(1, Math.floor(this.m_size.view / ROW_HEIGHT) - 2);
        const pin = () => this.m_pin();
        return {
            ArrowDown: by(() => 1), ArrowUp: by(() => -1), PageDown: by(page), PageUp: by(() => -page()),
            Home: () => this.m_moveTo(0), End: () => this.m_moveTo(this.m_items.length - 1),
            Enter: pin, ' ': pin,
        };
    }

    m_resize() {
        const isFirst = !this.m_size.view;
        const { clientHeight: view, clientWidth: width } = this.element;
        const isWider = width !== this.m_size.width;
        Object.assign(this.m_size, { view, width, head: this.m_head.offsetHeight });
        if (isWider) this.m_layOut();
        if (isFirst) this.m_reveal(this.m_active);
        this.m_draw();
    }

    /** Shares the width among the columns. */
    m_layOut() {
        if (!this.m_columns.length) return;
        const [first, ...others] = this.m_columns;
        const { width } = this.m_size;
        const widest = width ? Math.max(Math.min(WIDEST, width * MOST_PART), width * WIDE_PART) : WIDEST;
        const room = Math.round(Math.min(widest, Math.max(first.width, this.m_longest * LETTER + 20)));
        const { style } = this.element;
        const widths = others.map((column) => `${column.width}px`).join(' ');
        style.setProperty('--columns', `minmax(${room}px, 1fr) ${widths}`);
        style.setProperty('--width', `${others.reduce((sum, c) => sum + c.width, room)}px`);
    }

    m_draw() {
        const { top, view } = this.m_size;
        const from = Math.max(0, Math.floor(top / ROW_HEIGHT) - MARGIN);
        const to = Math.min(this.m_items.length, Math.ceil((top + view) / ROW_HEIGHT) + MARGIN);
        if (from === this.m_drawn.from && to === this.m_drawn.to) return;
        this.m_drawn = { from, to };
        this.m_body.replaceChildren(...this.m_items.slice(from, to).map((item, i) => {
            const row = make('div.grid-row',
                { role: 'row', id: `row-${item.row}`, 'aria-rowindex': from + i + 2 },
                ...this.m_columns.map((column, at) => cellOf(column, item, !at)));
            row.dataset.at = from + i;
            row.style.top = `${(from + i) * ROW_HEIGHT}px`;
            return row;
        }));
        this.m_mark();
    }

    m_mark() {
        const { m_items: items, m_marks: marks, m_active: active } = this;
        for (const row of this.m_body.children) {
            const item = items[row.dataset.at];
            row.setAttribute('aria-selected', item.row === marks.pinned);
            row.classList.toggle('hovered', item.row === marks.hovered);
            row.classList.toggle('active', Number(row.dataset.at) === active);
        }
        const shown = items[active] && document.getElementById(`row-${items[active].row}`);
        if (shown) this.element.setAttribute('aria-activedescendant', shown.id);
        else this.element.removeAttribute('aria-activedescendant');
    }

    /** Scrolls so far that a row stands free of the head. */
    m_reveal(at) {
        const { view, head, top } = this.m_size;
        if (!view) return;
        const start = at * ROW_HEIGHT;
        const next = Math.max(Math.min(top, start), start + ROW_HEIGHT - (view - head));
        if (next !== top) this.element.scrollTop = this.m_size.top = next;
        this.m_draw();
    }

    m_moveTo(at) {
        if (!this.m_items.length) return;
        this.m_active = Math.min(this.m_items.length - 1, Math.max(0, at));
        this.m_reveal(this.m_active);
        this.m_mark();
        this.m_on.onHover(this.m_items[this.m_active].row);
    }

    m_pin() {
        const item = this.m_items[this.m_active];
        if (item) this.m_on.onPin(item.row === this.m_marks.pinned ? null : item.row);
    }

    /**
     * @param {{columns: object[], items: object[], sort: string, descending: boolean, none: string}} content
     */
    show(content) {
        const { columns, items } = content;
        Object.assign(this, { m_columns: columns, m_items: items, m_drawn: { from: -1, to: -1 } });
        const [{ text, value }] = columns;
        this.m_longest = items.reduce((most, item) => Math.max(most, (text ?? value)(item).length), 0);
        this.m_layOut();
        this.m_body.style.height = `${items.length * ROW_HEIGHT}px`;
        this.element.setAttribute('aria-rowcount', items.length + 1);
        refill(this.m_head, columns.map((column) => headCell(column, content, this.m_on.onSort)));
        this.m_empty.hidden = items.length > 0;
        this.m_empty.replaceChildren(make('div', { role: 'gridcell' }, content.none));
        this.m_active = Math.max(0, items.findIndex((item) => item.row === this.m_marks.pinned));
        this.m_draw();
    }

    /**
     * @param {{pinned: number|null, hovered: number|null}} next
     * @param {boolean} [scroll] to the pinned row
     */
    highlight(next, scroll) {
        this.m_marks = next;
        const at = this.m_items.findIndex((item) => item.row === next.pinned);
        if (scroll && at >= 0) this.m_reveal(this.m_active = at);
        this.m_mark();
    }
}

/** @param {Callbacks} on */
export const createGrid = (on) => new Grid(on);
