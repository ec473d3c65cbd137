// The cells of the list: of a row, and of the head that sorts.
import { visible } from './chart/dom.js';
import { make } from './dom.js';
import { texts } from './texts.js';

const LONG = 26;  // characters; what is longer gives way in its middle: names often differ at their ends
const TAIL = 9;
// Letters from right to left, which would be read in the wrong order when cut.
const RIGHT_TO_LEFT = /[\u0590-\u08ff\ufb1d-\ufdff\ufe70-\ufeff]/;

/**
 * @param {import('./grid.js').Column<any>} column
 * @param {any} item
 * @param {boolean} isHead whether the cell names its row
 */
export function cellOf(column, item, isHead) {
    const { numeric, text: textOf, title, look } = column;
    const text = visible(textOf ? textOf(item) : String(column.value(item) ?? ''));
    const letters = !numeric && text.length > LONG && !RIGHT_TO_LEFT.test(text) ? [...text] : [];
    const isLong = letters.length > LONG;
    const parts = isLong ? [letters.slice(0, -TAIL), letters.slice(-TAIL)]
        .map((part) => make('span', null, part.join(''))) : [text];
    return make('div', {
        role: isHead ? 'rowheader' : 'gridcell', title: title?.(item) ?? (numeric ? '' : text),
        dir: numeric ? '' : 'auto',
        className: ['cell', numeric && 'number', isLong && 'long', look?.(item)].filter(Boolean).join(' '),
    }, ...parts);
}

/** A column's name, a press on which sorts by it. */
export function headCell(column, { sort, descending }, onSort) {
    const isSorted = column.id === sort;
    const direction = descending ? 'descending' : 'ascending';
    return make('div', {
        role: 'columnheader', className: `cell ${column.numeric ? 'number' : ''}`,
        'aria-sort': isSorted ? direction : 'none',
    }, make('button', {
        type: 'button', title: column.expl || texts('page_sort_by', column.caption), 'data-column': column.id,
        'data-focus': column.id, onclick: () => onSort(column.id),
    }, column.caption));
}
