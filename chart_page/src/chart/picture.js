// Exports what is seen: a standalone SVG text, and the same as PNG.

import { shorten, svg, translate } from './dom.js';

// Presentation attributes that the style sheet decides, with the values that need no mention.
const PROPERTIES = {
    fill: 'rgb(0, 0, 0)',
    'fill-opacity': '1',
    'fill-rule': 'nonzero',
    stroke: 'none',
    'stroke-width': '1px',
    'stroke-opacity': '1',
    'stroke-dasharray': 'none',
    'stroke-linejoin': 'miter',
    'stroke-linecap': 'butt',
    'paint-order': 'normal',
    opacity: '1',
    'font-weight': '400',
    'text-decoration-line': 'none',
    'font-size': '', // '': that of the whole picture
};
const INTERNAL = /^(class|tabindex|role|aria-.*|data-.*|focusable)$/;
const DROPPED = '.roof-hits, .catch, .legend-hit, .legend-button > title';
// Characters that names may hold and XML may not, half surrogate pairs among them.
const NO_XML = /[\u0000-\u0008\u000b\u000c\u000e-\u001f\ufffe\uffff]|\p{Surrogate}/gu;
const HEAD = 34; // pixels above the chart for the title
const EDGE = 14; // beside it
const SUBTITLE = 18; // more for the line below it
const TITLE_SIZE = 17;

/** @typedef {{text: string, width: number, height: number}} Picture */
/** @typedef {{text: string, x: number, y: number}} Note its middle, pixels */
/**
 * @typedef {object} Layers what a picture is made of
 * @property {{source: SVGSVGElement, place?: Record<string, string>}[]} parts the lowest first
 * @property {Note[]} notes above the parts
 * @property {{width: number, height: number}} size pixels
 * @property {string} title above the chart
 * @property {string} subtitle below the title; ""
 * @property {Set<Element>} unseen elements that are left out
 */

/** @param {Layers} layers @returns {Picture} */
export function standaloneSvg({ parts, notes, size, title, subtitle, unseen }) {
    const style = getComputedStyle(parts[parts.length - 1].source);
    const head = (title ? HEAD : 0) + (subtitle ? SUBTITLE : 0);
    const [width, height] = [size.width, size.height + head];
    const whole = svg('svg', {
        width,
        height,
        viewBox: `0 0 ${width} ${height}`,
        'font-family': style.fontFamily,
        'font-size': style.fontSize,
    });
    const paper = getComputedStyle(parts[0].source.parentElement ?? parts[0].source).backgroundColor;
    whole.append(svg('title', {}, title), svg('rect', { width, height, fill: paper }));
    if (title)
        whole.append(
            svg(
                'text',
                { x: EDGE, y: HEAD - 10, 'font-size': TITLE_SIZE, 'font-weight': 600, fill: style.color },
                shorten(title, width - 2 * EDGE, TITLE_SIZE, 600),
            ),
        );
    if (subtitle)
        whole.append(
            svg('text', { x: EDGE, y: head - 8, fill: style.color }, shorten(subtitle, width - 2 * EDGE)),
        );
    const body = parts.map(({ source, place }) => svg('g', place, ...copies(source, style, unseen)));
    const written = notes.map(({ text, x, y }) =>
        svg('text', { x, y, dy: '0.35em', 'text-anchor': 'middle', fill: style.color }, text),
    );
    whole.append(svg('g', { transform: translate(0, head) }, ...body, ...written));
    const text =
        `<?xml version="1.0" encoding="UTF-8"?>\n${new XMLSerializer().serializeToString(whole)}\n`.replace(
            NO_XML,
            '\ufffd',
        );
    return { text, width, height };
}

/**
 * The children of a picture with their looks written into them.
 * @param {SVGSVGElement} source
 * @param {CSSStyleDeclaration} root
 * @param {Set<Element>} unseen
 */
function copies(source, root, unseen) {
    const copy = /** @type {SVGSVGElement} */ (source.cloneNode(true));
    const originals = [...source.querySelectorAll('*')];
    const made = [...copy.querySelectorAll('*')];
    // Elements of the same classes below the same classes look the same: asking once for each kind is much
    // faster.
    /** @type {Map<string, [string, string][]>} */
    const known = new Map();
    originals.forEach((original, i) => {
        const target = made[i];
        for (const { name } of [...target.attributes]) if (INTERNAL.test(name)) target.removeAttribute(name);
        if (unseen.has(original) || original.matches(DROPPED)) {
            target.remove();
            return;
        }
        const parent = original.parentElement;
        const key = [original, parent, parent?.parentElement]
            .map((e) => `${e?.tagName} ${e?.getAttribute('class')}`)
            .join('|');
        let looks = known.get(key);
        if (!looks) known.set(key, (looks = looksOf(original, root)));
        for (const [name, value] of looks) target.setAttribute(name, value);
    });
    return [...copy.childNodes];
}

/** @param {Element} element @param {CSSStyleDeclaration} root @returns {[string, string][]} */
function looksOf(element, root) {
    // Groups and clips have no look of their own.
    if (!/^(path|rect|circle|text|tspan)$/.test(element.tagName) || element.closest('defs')) return [];
    const style = getComputedStyle(element);
    return Object.entries(PROPERTIES).flatMap(([name, usual]) => {
        const value = style.getPropertyValue(name);
        return value && value !== (usual || root.getPropertyValue(name))
            ? [/** @type {[string, string]} */ ([name, value])]
            : [];
    });
}

/**
 * @param {Picture} picture @param {number} scale @param {string} fault what is told where it can't be made
 * @returns {Promise<Blob>}
 */
export async function toPng({ text, width, height }, scale, fault) {
    const address = URL.createObjectURL(new Blob([text], { type: 'image/svg+xml' }));
    try {
        const image = new Image();
        image.src = address;
        await image.decode();
        const canvas = document.createElement('canvas');
        canvas.width = Math.round(width * scale);
        canvas.height = Math.round(height * scale);
        const context = canvas.getContext('2d');
        context.drawImage(image, 0, 0, canvas.width, canvas.height);
        return await new Promise((done, failed) =>
            canvas.toBlob((blob) => (blob ? done(blob) : failed()), 'image/png'),
        );
    } catch {
        throw new Error(fault);
    } finally {
        URL.revokeObjectURL(address);
    }
}
