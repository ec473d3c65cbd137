// Turns decimal logarithms into pixels. Both axes are linear in them, so that zoom and pan are exact.
import { scaleLog } from 'd3-scale';

/** @typedef {import('./view.js').View} View */
/** @typedef {import('./view.js').Bounds} Bounds */
/** @typedef {{width: number, height: number}} Size */
/**
 * x = ax * logX + bx, y = ay * logY + by (ay is negative).
 * @typedef {{ax: number, bx: number, ay: number, by: number}} Mapping
 */

const EMPTY = { minX: -2, maxX: 2, minY: -1, maxY: 3 };
// Roofs and the document's bounds widen the view of the points by no more than so many decades, lest one odd
// value shrinks the points to a speck.
const FARTHEST_ROOF = 2.5;
const FARTHEST_BOUND = 1;
const LEAST_SPAN = 1.5; // decades, around a lone point
const FAR = 2; // decades of nothing that set some points apart
const FEW = 0.1; // of all points: those that may be set apart

/** @param {View} view */
export const shownRoofs = (view) => view.roofs.filter((roof) => !roof.hidden && roof.value > 0);

/**
 * Where points and totals lie.
 * @param {View} view
 * @returns {Bounds|null} null without any
 */
export function pointBounds({ points, totals }) {
    const box = { minX: Infinity, maxX: -Infinity, minY: Infinity, maxY: -Infinity };
    for (const places of [points, totals])
        for (const { x, y } of places) {
            box.minX = Math.min(box.minX, x);
            box.maxX = Math.max(box.maxX, x);
            box.minY = Math.min(box.minY, y);
            box.maxY = Math.max(box.maxY, y);
        }
    return box.minX <= box.maxX ? box : null;
}

/** @typedef {{x: number, y: number}} Place */
/** @typedef {Record<'left'|'right'|'top'|'bottom', Place[]>} FarPlaces */

/**
 * The places along an axis, and the few at either end that lie far from all others.
 * @param {Place[]} places
 * @param {'x'|'y'} axis
 */
function splitEnds(places, axis) {
    const sorted = [...places].sort((a, b) => a[axis] - b[axis]);
    const gap = (/** @type {number} */ at) => sorted[at][axis] - sorted[at - 1][axis];
    const most = Math.floor(FEW * sorted.length);
    const counted = (/** @type {(count: number) => number} */ gapBehind) => {
        let count = most;
        while (count > 0 && !(gapBehind(count) > FAR)) --count;
        return count;
    };
    const from = counted((count) => gap(count));
    const to = sorted.length - counted((count) => gap(sorted.length - count));
    return { low: sorted.slice(0, from), core: sorted.slice(from, to), high: sorted.slice(to) };
}

/**
 * Points and totals that would shrink all others to a speck, by the end of the plot beyond which they lie,
 * and where the others are.
 * @param {{points: Place[], totals: Place[]}} view
 * @returns {{box: Bounds|null, far: FarPlaces}}
 */
export function coreOf({ points, totals }) {
    const places = [...points, ...totals];
    const [x, y] = [splitEnds(places, 'x'), splitEnds(places, 'y')];
    const far = { left: x.low, right: x.high, bottom: y.low, top: y.high };
    if (!places.length) return { box: null, far };
    const [minX, maxX] = [x.core[0].x, x.core[x.core.length - 1].x];
    const [minY, maxY] = [y.core[0].y, y.core[y.core.length - 1].y];
    return { box: { minX, maxX, minY, maxY }, far };
}

/**
 * The part of the plane that is shown before any zoom: the points, what the document adds around them, and
 * the ridges of the roofs.
 * @param {View} view
 * @param {Bounds|null} points where they lie, as far as they are shown; null without any
 * @returns {Bounds}
 */
export function homeBounds(view, points) {
    const near = points ?? view.bounds ?? EMPTY;
    const box = { ...near };
    if (view.bounds) {
        box.minX = Math.min(box.minX, Math.max(view.bounds.minX, near.minX - FARTHEST_BOUND));
        box.maxX = Math.max(box.maxX, Math.min(view.bounds.maxX, near.maxX + FARTHEST_BOUND));
        box.minY = Math.min(box.minY, Math.max(view.bounds.minY, near.minY - FARTHEST_BOUND));
        box.maxY = Math.max(box.maxY, Math.min(view.bounds.maxY, near.maxY + FARTHEST_BOUND));
    }

    const roofs = shownRoofs(view);
    const logs = (/** @type {boolean} */ memory) =>
        roofs.filter((roof) => roof.isMemory === memory).map((roof) => Math.log10(roof.value));
    const [memory, compute] = [logs(true), logs(false)];
    for (const y of compute) box.maxY = Math.max(box.maxY, Math.min(y, near.maxY + FARTHEST_ROOF));
    if (memory.length && compute.length) {
        const ridge = Math.max(...compute) - Math.min(...memory);
        box.maxX = Math.max(box.maxX, Math.min(ridge + 0.5, near.maxX + FARTHEST_ROOF));
        box.minX = Math.min(
            box.minX,
            Math.max(Math.max(...compute) - Math.max(...memory) - 0.5, near.minX - 1),
        );
    }
    const pad = (/** @type {number} */ span, /** @type {number} */ least) =>
        Math.max(least + 0.02 * span, (LEAST_SPAN - span) / 2);
    const [padX, padY] = [pad(box.maxX - box.minX, 0.06), pad(box.maxY - box.minY, 0.1)];
    return { minX: box.minX - padX, maxX: box.maxX + padX, minY: box.minY - padY, maxY: box.maxY + padY };
}

/**
 * @param {Bounds} home
 * @param {Size} size of the plot
 * @param {{k: number, x: number, y: number}} zoom
 * @returns {Mapping}
 */
export function makeMapping(home, size, zoom) {
    const ax = size.width / (home.maxX - home.minX);
    const ay = -size.height / (home.maxY - home.minY);
    return {
        ax: zoom.k * ax,
        bx: zoom.x - zoom.k * ax * home.minX,
        ay: zoom.k * ay,
        by: zoom.y - zoom.k * ay * home.maxY,
    };
}

/** @param {Mapping} map @param {Size} size @returns {Bounds} what the plot shows */
export const shownBounds = (map, size) => ({
    minX: -map.bx / map.ax,
    maxX: (size.width - map.bx) / map.ax,
    minY: (size.height - map.by) / map.ay,
    maxY: -map.by / map.ay,
});

/**
 * A line of the grid; without a number where the text is empty.
 * @typedef {{log: number, text: string, power: number|null, major: boolean}} Tick
 */

const DECADE_DIGITS = 4; // powers of ten beyond 10^-4 and 10^4 are written as powers

const DIGITS = [1, 2, 3, 4, 5, 6, 7, 8, 9];
// Which digits of a decade have a number, by the pixels that the decade must have.
const NUMBERED = [
    { room: 500, digits: DIGITS },
    { room: 260, digits: [1, 2, 3, 5, 7] },
    { room: 120, digits: [1, 2, 5] },
];

/**
 * Lines at 1 to 9 of each decade, numbers at as many as there is room for.
 * @param {number} low logarithm
 * @param {number} high logarithm
 * @param {number} decade pixels
 * @returns {Tick[]}
 */
export function makeTicks(low, high, decade) {
    if (high - low < 0.7) return fineTicks(low, high, decade);
    const step = Math.max(1, Math.ceil(45 / decade)); // from one number to the next, in decades
    const lines = decade > 45 ? DIGITS : [1];
    const numbered = NUMBERED.find(({ room }) => decade > room)?.digits ?? [1];
    const ticks = [];
    for (let power = Math.floor(low); power <= high; power++) {
        const major = power % step === 0;
        for (const digit of lines) {
            const log = power + Math.log10(digit);
            if (log < low || log > high || (digit === 1 && !major)) continue;
            ticks.push(makeTick(log, numbered.includes(digit) ? digit : 0, power, digit === 1));
        }
    }
    return ticks;
}

/**
 * Far inside one decade: round numbers.
 * @param {number} low
 * @param {number} high
 * @param {number} decade
 * @returns {Tick[]}
 */
function fineTicks(low, high, decade) {
    const count = Math.max(2, ((high - low) * decade) / 70);
    const values = scaleLog()
        .domain([10 ** low, 10 ** high])
        .ticks(count);
    return values.map((value) => ({
        log: Math.log10(value),
        text: plainNumber(value),
        power: null,
        major: true,
    }));
}

/**
 * @param {number} log
 * @param {number} digit 0: no number
 * @param {number} power
 * @param {boolean} major
 * @returns {Tick}
 */
function makeTick(log, digit, power, major) {
    if (digit === 0) return { log, text: '', power: null, major };
    if (Math.abs(power) < DECADE_DIGITS)
        return { log, text: plainNumber(digit * 10 ** power), power: null, major };
    return digit === 1 ? { log, text: '10', power, major } : { log, text: `${digit}\u00b710`, power, major };
}

/** @param {number} value */
const plainNumber = (value) => {
    const exact = Number(value.toPrecision(10));
    return Math.abs(exact) >= 1e7 || Math.abs(exact) < 1e-5 ? exact.toExponential() : String(exact);
};
