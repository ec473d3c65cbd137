// The lists of a comparison: the pairs by their change, and the rows of one side only.
import { figure, limitColumn, power, unseenColumns } from './columns.js';
import { axesOf } from './model.js';
import { rowColumns } from './table.js';
import { number, percent, texts } from './texts.js';

const SIDES = ['base', 'new'];

/**
 * The lists of the side panel: one of all rows, or those of a comparison.
 * @param {{sides: import('./model.js').Side[], items: import('./model.js').Item[]}} scene
 * @returns {Array<{id: string, caption: string, items: object[], columns: object[], unseen: object[],
 *     sort: string}>}
 */
export function listsOf({ sides, items }) {
    const rowList = (id, side, own) => ({
        id, caption: texts(`page_list_${id}`), items: own,
        columns: rowColumns(sides[side], axesOf([sides[side]])), sort: 'share',
        unseen: unseenColumns((item) => item.sides[side]),
    });
    if (sides.length < 2) return [rowList('rows', 0, items)];
    return [
        {
            id: 'changes', caption: texts('page_list_changes'), items: items.filter((item) => item.pair),
            columns: pairColumns(), sort: 'change',
            unseen: SIDES.flatMap((which, side) =>
                unseenColumns((item) => item.sides[side], `${texts(`page_${which}`)}: `)),
        },
        rowList('base_only', 0, items.filter((item) => !item.sides[1])),
        rowList('new_only', 1, items.filter((item) => !item.sides[0])),
    ];
}

/** @param {number|null} value */
const signed = (value) => (value ? (value > 0 ? '+' : '\u2212') + number(Math.abs(value)) : number(value));

/** Both names of a pair, or the one that they share. */
const names = (member) => ({ sides: [base, next] }) =>
    (base.name === next.name ? base[member] : `${base[member]} \u2192 ${next[member]}`);

function pairColumns() {
    const performance = (side) => (item) => power(item.sides[side].points.find(Boolean)?.y);
    const difference = ({ pair }) =>
        (pair.timeBase === null || pair.timeNew === null ? null : pair.timeNew - pair.timeBase);
    const look = ({ pair }) => `change ${pair.change}`;
    return [
        {
            id: 'name', width: 140, caption: texts('page_column_name'), expl: '',
            value: names('name'), text: names('short'), title: names('name'),
        },
        // Sorted by the size of the change, as what matters most stands first whichever way it went.
        figure('change', 104, (item) => (difference(item) === null ? null : Math.abs(difference(item))), {
            look, exported: difference,
            text: (item) => signed(difference(item)),
        }),
        figure('pair_speed_up', 84, ({ pair }) => pair.speedUp, { look }),
        figure('time_base', 80, ({ pair }) => pair.timeBase),
        figure('time_new', 80, ({ pair }) => pair.timeNew),
        figure('performance_base', 84, performance(0)),
        figure('performance_new', 84, performance(1)),
        ...SIDES.map((which, side) => limitColumn(`limit_${which}`, 156, (item) => item.sides[side])),
        figure('match', 80, ({ pair }) => pair.match, {
            unit: '%', text: ({ pair }) => percent(pair.match / 100),
        }),
    ];
}
