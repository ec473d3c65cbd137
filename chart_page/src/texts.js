// Looks the page's texts up in the catalogue that comes with the model.

/** @type {Record<string, string>} */
let catalogue = {};

/** @param {Record<string, string>} entries */
export function setTexts(entries) {
    catalogue = entries ?? {};
}

/**
 * The text of a message with %1 to %3 replaced by the arguments; an unknown id stands for itself.
 * @param {string} id
 * @param {...(string|number)} args
 * @returns {string}
 */
export function texts(id, ...args) {
    return (catalogue[id] ?? id).replace(/%([1-3])/g, (_, at) => String(args[at - 1] ?? ''));
}

/**
 * A text that may hold markup, such as "<b>Float32</b>", as the words alone. Only the tags that the library
 * writes go: a template argument such as "vector<float>" is part of a name.
 * @param {string} text
 */
export const plain = (text) => text.replace(/<\/?(?:b|i|br|p|em|strong)\s*\/?>/gi, '');

const DIGITS = 4;

/**
 * A number with four digits, without an exponent where a reader can do without; N/A for a missing one.
 * @param {number|null|undefined} value
 */
export function number(value) {
    if (!Number.isFinite(value)) return texts('page_missing');
    const size = Math.abs(value);
    if (size >= 10 ** DIGITS && size < 1e9) return Math.round(value).toString();
    const isFar = size !== 0 && (size < 1e-3 || size >= 1e9);
    if (isFar) return value.toExponential(DIGITS - 1).replace(/\.?0+e\+?/, 'e');
    return Number(value.toPrecision(DIGITS)).toString();
}

/**
 * Whether it is more than all of something, aside of what six digits round away.
 * @param {number|null|undefined} fraction
 */
export const isAbove = (fraction) => fraction > 1 + 1e-5;

/**
 * A fraction in percent; more than all of something is marked, since it tells of wrong data.
 * @param {number|null|undefined} fraction
 */
export function percent(fraction) {
    if (!Number.isFinite(fraction)) return texts('page_missing');
    return texts(isAbove(fraction) ? 'page_percent_above' : 'page_percent', number(fraction * 100));
}

/** Folds case and accents, so that "Uber" finds "\u00dcber". @param {string} text */
export const fold = (text) => text.normalize('NFD').replace(/[\u0300-\u036f]/g, '').toLowerCase();
