// What the columns of all lists have in common.
import { isAbove, number, percent, texts } from './texts.js';

/**
 * A column of numbers.
 * @param {string} id of the column and of its texts
 * @param {number} width in pixels
 * @param {(item: any) => number|null} value
 * @param {object} [more] members that differ
 */
export const figure = (id, width, value, more) => ({
    id, width, numeric: true, value, text: (item) => number(value(item)),
    caption: texts(`page_column_${id}`), expl: texts(`page_column_${id}_expl`), ...more,
});

/** Members of a column of fractions. */
export const fraction = (value) => ({
    text: (item) => percent(value(item)), look: (item) => (isAbove(value(item)) ? 'odd' : ''),
    unit: texts('page_unit_fraction'),
});

const COORDINATE_DIGITS = 5;  // coordinates are rounded: further digits would be made up

/** The value of a decimal logarithm. @param {number|undefined} logarithm */
export const power = (logarithm) =>
    (logarithm === undefined ? null : Number((10 ** logarithm).toPrecision(COORDINATE_DIGITS)));

/** A column of the limiting roof. @param {(item: any) => import('./model.js').Row} row */
export const limitColumn = (id, width, row) => ({
    id, width, caption: texts(`page_column_${id}`), expl: texts('page_column_limit_expl'),
    value: (item) => row(item).limit,
    // The mark stands first: a long name is cut at its end.
    text: (item) => (row(item).withCallees ? '* ' : '') + (row(item).limit || texts('page_missing')),
    look: (item) => `limit ${row(item).limitKind}`,
    title: (item) => [row(item).limit, row(item).doubt].filter(Boolean).join(': '),
});

/** What CSV tells of a row beyond the list. */
export const unseenColumns = (row, prefix = '') => [
    ...['id', 'location', 'cause'].map((member) => ({ member, value: (item) => row(item)?.[member] ?? '' })),
    { member: 'remark', value: (item) => row(item)?.doubt ?? '' },
].map(({ member, value }) => ({ caption: prefix + texts(`page_column_${member}`), value }));
