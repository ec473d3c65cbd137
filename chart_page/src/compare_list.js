// The lists of a comparison: the pairs by their change, and the rows of one side only.
import { rowColumns } from './table.js';
import { number, percent, texts } from './texts.js';

/**
 * The lists of the side panel: one of all rows, or those of a comparison.
 * @param {{sides: import('./model.js').Side[], items: import('./model.js').Item[]}} scene
 * @returns {Array<{id: string, caption: string, items: object[], columns: object[]}>}
 */
export function listsOf({ sides, items }) {
    const axes = (side) => side.levels.map(({ chart }) => chart.document).find((d) => !d.noDataMessage) ?? {};
    const rowList = (id, side, own) => ({
        id, caption: texts(`page_list_${id}`), items: own,
        columns: rowColumns(sides[side], axes(sides[side])), sort: 'share',
        unseen: unseenColumns((item) => item.sides[side]),
    });
    if (sides.length < 2) return [rowList('rows', 0, items)];
    return [
        {
            id: 'changes', caption: texts('page_list_changes'), items: items.filter((item) => item.pair),
            columns: pairColumns(), sort: 'change', unseen: unseenColumns((item) => item.sides[0]),
        },
        rowList('base_only', 0, items.filter((item) => !item.sides[1])),
        rowList('new_only', 1, items.filter((item) => !item.sides[0])),
    ];
}

/** What CSV tells beyond the list. */
const unseenColumns = (row) => ['id', 'location', 'cause'].map((member) => ({
    caption: texts(`page_column_${member}`), value: (item) => row(item)[member],
}));

/** @param {number|null} value */
const signed = (value) => (value ? (value > 0 ? '+' : '\u2212') + number(Math.abs(value)) : number(value));

function pairColumns() {
    const figure = (id, width, value, more) => ({
        id, width, numeric: true, value, text: (item) => number(value(item)),
        caption: texts(`page_column_${id}`), expl: texts(`page_column_${id}_expl`), ...more,
    });
    const performance = (side) => (item) => {
        const point = item.sides[side].points.find(Boolean);
        return point ? 10 ** point.y : null;
    };
    const difference = ({ pair }) =>
        (pair.timeBase === null || pair.timeNew === null ? null : pair.timeNew - pair.timeBase);
    const look = ({ pair }) => `change ${pair.change}`;
    return [
        {
            id: 'name', width: 140, caption: texts('page_column_name'), expl: '',
            value: ({ sides: [base, next] }) =>
                (base.name === next.name ? base.name : `${base.name} \u2192 ${next.name}`),
        },
        // Sorted by the size of the change, as what matters most stands first whichever way it went.
        figure('change', 82, (item) => (difference(item) === null ? null : Math.abs(difference(item))), {
            look, exported: difference,
            text: (item) => signed(difference(item)),
        }),
        figure('pair_speed_up', 76, ({ pair }) => pair.speedUp, { look }),
        figure('time_base', 72, ({ pair }) => pair.timeBase),
        figure('time_new', 72, ({ pair }) => pair.timeNew),
        figure('performance_base', 76, performance(0)),
        figure('performance_new', 76, performance(1)),
        ...['base', 'new'].map((which, side) => ({
            id: `limit_${which}`, width: 148, caption: texts(`page_column_limit_${which}`),
            expl: texts('page_column_limit_expl'),
            value: (item) => item.sides[side].limit,
            text: (item) => item.sides[side].limit || texts('page_missing'),
            look: (item) => `limit ${item.sides[side].limitKind}`,
        })),
        figure('match', 72, ({ pair }) => pair.match, { text: ({ pair }) => percent(pair.match / 100) }),
    ];
}
