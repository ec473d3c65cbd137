// Makes SVG and HTML elements; texts of the data only ever become text nodes.

const SVG = 'http://www.w3.org/2000/svg';

/**
 * @param {string} tag
 * @param {Record<string, string|number>} [attributes]
 * @param {...(Node|string)} children a string becomes text
 * @returns {any}
 */
export function svg(tag, attributes = {}, ...children) {
    const element = document.createElementNS(SVG, tag);
    for (const name in attributes) element.setAttribute(name, String(attributes[name]));
    element.append(...children);
    return element;
}

/**
 * @param {string} tag
 * @param {Record<string, string|number>} [attributes]
 * @param {...(Node|string)} children
 * @returns {any}
 */
export function html(tag, attributes = {}, ...children) {
    const element = document.createElement(tag);
    for (const name in attributes) element.setAttribute(name, String(attributes[name]));
    element.append(...children);
    return element;
}

/** Pixels as they are written: a hundredth is finer than any screen. @param {number} value */
export const px = (value) => String(Math.round(value * 100) / 100);

/** @param {number} x @param {number} y */
export const translate = (x, y) => `translate(${px(x)},${px(y)})`;

const MEASURED_SIZE = 12;
let family = 'sans-serif';
/** @type {CanvasRenderingContext2D|null} */
let context = null;
/** By weight. @type {Record<number, Map<string, number>>} */
const widths = { 400: new Map(), 600: new Map() };

/** Which fonts textWidth() measures with. @param {string} name */
export function setFont(name) {
    context ??= document.createElement('canvas').getContext('2d');
    if (name === family) return;
    family = name;
    for (const known of Object.values(widths)) known.clear();
}

/**
 * @param {string} text
 * @param {number} [size] of the font, pixels
 * @param {400|600} [weight]
 * @returns {number} pixels
 */
export function textWidth(text, size = MEASURED_SIZE, weight = 400) {
    const known = widths[weight];
    let width = known.get(text);
    if (width === undefined) {
        if (known.size > 5000) known.clear();
        if (context) context.font = `${weight} ${MEASURED_SIZE}px ${family}`;
        width = context ? context.measureText(text).width : text.length * 7;
        known.set(text, width);
    }
    return (width * size) / MEASURED_SIZE;
}

/**
 * The text, cut with an ellipsis to at most so many pixels.
 * @param {string} text
 * @param {number} room
 * @param {number} [size]
 */
export function shorten(text, room, size = MEASURED_SIZE) {
    if (textWidth(text, size) <= room) return text;
    let [fits, tooLong] = [0, text.length];
    while (tooLong - fits > 1) {
        const middle = (fits + tooLong) >> 1;
        if (textWidth(`${text.slice(0, middle)}\u2026`, size) <= room) fits = middle;
        else tooLong = middle;
    }
    return `${text.slice(0, fits).trimEnd()}\u2026`;
}
