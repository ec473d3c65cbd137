// What the cursor means: a point before a row of the lane before a total before a roof.
import { totalName } from './overlays.js';

/**
 * @typedef {object} Aim
 * @property {number} x pixels in the chart
 * @property {number} y
 * @property {boolean} inside of the plot
 * @property {import('./points.js').Mark|null} mark
 * @property {import('./view.js').Unplaced|null} unplaced
 * @property {import('./view.js').Total|null} total
 * @property {import('./view.js').Roof|null} roof
 */

/**
 * @param {MouseEvent} event
 * @param {import('./stage.js').Stage} stage
 * @param {import('./layers.js').Layers} layers
 * @param {import('./lane.js').Lane} lane
 * @param {import('./view.js').View} view
 * @returns {Aim}
 */
export function aimOf(event, { svg, left, top, size }, layers, lane, view) {
    const corner = svg.getBoundingClientRect();
    const [x, y] = [event.clientX - corner.left, event.clientY - corner.top];
    const inside = x >= left && y >= top && x <= left + size.width && y <= top + size.height;
    const mark = inside ? layers.points.pick(x - left, y - top) : null;
    const { unplaced, total, roof } = mark ? {} : /** @type {SVGElement} */ (event.target).dataset;
    return {
        x,
        y,
        inside,
        mark,
        unplaced: unplaced ? lane.find(Number(unplaced)) : null,
        total: total ? (view.totals[Number(total)] ?? null) : null,
        roof: layers.roofs.find(roof),
    };
}

/**
 * @param {Aim} aim
 * @param {import('./view.js').View['texts']} texts
 * @returns {string[]|null} lines of the card, null for none
 */
export function linesOf({ mark, unplaced, total, roof }, texts) {
    if (mark) return mark.point.lines;
    if (unplaced) return [unplaced.name, unplaced.cause];
    if (total) return [totalName(total, texts), total.description].filter(Boolean);
    if (roof) return [`${roof.name}: ${roof.valueText}`, roof.description].filter(Boolean);
    return null;
}
