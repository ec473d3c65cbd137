// Writes the rows of a list as CSV (RFC 4180), with the digits that the data has and the units in the heads.
// The mark of UTF-8 stands first: without it spreadsheets read names in another code.

const MARK = '\ufeff';
const DIGITS = 6;  // of the model's numbers

/**
 * A cell; text that a spreadsheet would run as a formula gets an apostrophe ahead.
 * @param {string|number|null} value
 */
function cell(value) {
    if (value === null || value === undefined || Number.isNaN(value)) return '';
    if (typeof value === 'number') return String(Number(value.toPrecision(DIGITS)));
    const guarded = /^[=+\-@\t\r]/.test(value) ? `'${value}` : value;
    return /[",\r\n]/.test(guarded) ? `"${guarded.replaceAll('"', '""')}"` : guarded;
}

/**
 * @template T
 * @param {Array<import('./grid.js').Column<T> & {unit?: string, exportCaption?: string}>}
 * columns
 * @param {T[]} items
 */
export function toCsv(columns, items) {
    const lines = [
        columns.map(({ caption, exportCaption = caption, unit }) =>
            cell(unit ? `${exportCaption} [${unit}]` : exportCaption)),
        ...items.map((item) => columns.map((column) => cell((column.exported ?? column.value)(item)))),
    ];
    return MARK + lines.map((line) => `${line.join(',')}\r\n`).join('');
}
