// Writes names beside the points that matter most, as far as they find room.
import { px, shorten, svg, textWidth } from './dom.js';
import { makeBox } from './labels.js';
import { placesAround } from './overlays.js';

const MOST = 16;
const SIZE = 11.5; // pixels of the font
const ROOM = 240; // pixels that a name may take
const PINNED = [4, 20, 36, 52, 68]; // distances from its rim at which a pinned name may stand
const CROWDED = 20; // cost of lines and points under a name from which it is left out
const LARGE = 6; // radius from which a point keeps names off itself

/** @typedef {import('./points.js').Mark} Mark */

/**
 * The points to name, one for each row: its rightmost.
 * @param {Mark[]} marks by share, the greatest first
 * @param {import('./scales.js').Size} size
 * @param {number|null} pinned row that is named before all others
 * @returns {Mark[]}
 */
function chosen(marks, { width, height }, pinned) {
    /** @type {Map<number, Mark>} */
    const ofRow = new Map();
    const isSeen = (/** @type {Mark} */ { point, x, y }) =>
        !point.dimmed && point.side !== 'base' && x >= 0 && y >= 0 && x <= width && y <= height;
    const take = (/** @type {Mark} */ mark) => {
        const other = ofRow.get(mark.point.row);
        if (!other || mark.x > other.x) ofRow.set(mark.point.row, mark);
    };
    if (pinned !== null) marks.filter((mark) => mark.point.row === pinned && isSeen(mark)).forEach(take);
    for (const mark of marks) {
        if (ofRow.size >= MOST && !ofRow.has(mark.point.row)) break;
        if (isSeen(mark)) take(mark);
    }
    return [...ofRow.values()];
}

/**
 * @param {number} x
 * @param {number} y
 * @param {number} width
 * @param {number[]} distances the most wanted first
 */
function* places(x, y, width, distances) {
    for (const [i, distance] of distances.entries())
        for (const { box, cost } of placesAround(x, y, distance, width))
            yield { box, cost: cost + i * CROWDED };
}

/**
 * @param {SVGGElement} group
 * @param {Mark[]} marks by share, the greatest first
 * @param {import('./scales.js').Size} size
 * @param {number|null} pinned row
 * @param {import('./labels.js').LabelPlacer} placer
 */
export function drawNames(group, marks, size, pinned, placer) {
    for (const { x, y, radius } of marks)
        if (radius >= LARGE) placer.block(makeBox(x, y, 1.5 * radius, 1.5 * radius));
    group.replaceChildren(
        ...chosen(marks, size, pinned).flatMap(({ point, x, y, radius }) => {
            const strong = point.row === pinned;
            const weight = strong ? 600 : 400;
            const distances = strong ? PINNED.map((distance) => radius + distance) : [radius];
            const text = shorten(point.name, ROOM, SIZE, weight);
            const place = placer.place(
                places(x, y, textWidth(text, SIZE, weight) + 4, distances),
                { limit: strong ? Infinity : CROWDED },
            );
            if (!place) return [];
            const { box } = place;
            return [
                svg(
                    'text',
                    {
                        class: strong ? 'name strong' : 'name',
                        x: px(box.x),
                        y: px(box.y),
                        dy: '0.35em',
                        'text-anchor': 'middle',
                    },
                    text,
                ),
            ];
        }),
    );
}
