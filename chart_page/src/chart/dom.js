// Makes SVG elements, whose texts only ever become text nodes, and measures and cuts texts.

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

const HEAD = 0.6; // of what a cut text keeps, the part before the ellipsis
// Invisible characters that turn the order of others around, and controls other than white space.
const UNSEEN = /[\u0000-\u0008\u000e-\u001f\u007f-\u009f\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]/g;

/** A text of the data in which each character is seen, in its place. @param {string} text */
export const visible = (text) => text.replace(UNSEEN, '\ufffd');

/**
 * The visible text, cut to at most so many pixels. The ellipsis stands in its middle: names that begin alike
 * differ at their ends.
 * @param {string} text
 * @param {number} room
 * @param {number} [size]
 * @param {400|600} [weight]
 */
export function shorten(text, room, size = MEASURED_SIZE, weight = 400) {
    const whole = visible(text);
    if (textWidth(whole, size, weight) <= room) return whole;
    const characters = [...whole];
    const cut = (/** @type {number} */ length) => {
        const head = Math.ceil(length * HEAD);
        const tail = characters.slice(characters.length - length + head);
        return `${characters.slice(0, head).join('').trimEnd()}\u2026${tail.join('').trimStart()}`;
    };
    let [fits, tooLong] = [0, characters.length];
    while (tooLong - fits > 1) {
        const middle = (fits + tooLong) >> 1;
        if (textWidth(cut(middle), size, weight) <= room) fits = middle;
        else tooLong = middle;
    }
    return cut(fits);
}
