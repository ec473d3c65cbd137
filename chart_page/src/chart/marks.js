// What a point looks like: shape and colour by memory level, or colour by kind of limit; area by share of
// time.
import {
    symbolCircle,
    symbolCross,
    symbolDiamond2,
    symbolSquare,
    symbolStar,
    symbolTriangle,
    symbolWye,
} from 'd3-shape';
import { px } from './dom.js';

/** @typedef {import('./view.js').View} View */
/** @typedef {import('./view.js').Point} Point */

// By slot; the colours of the slots stand in chart.css.
const SHAPES = [
    symbolCircle,
    symbolSquare,
    symbolTriangle,
    symbolDiamond2,
    symbolStar,
    symbolWye,
    symbolCross,
];

// A level looks the same in every chart, whichever others are shown beside it.
const SLOT_OF_LEVEL = new Map(
    Object.entries({
        L1: 0,
        CARM: 0,
        L2: 1,
        L3: 2,
        DRAM: 3,
        SLM: 4,
        XLI: 5,
        HBM: 3,
        GDDR6: 3,
        LLC: 6,
        L4: 4,
        PKGRAM: 5,
        EDRAM: 6,
    }),
);

const AREA_OF_ALL_TIME = 1800; // square pixels
const LEAST_AREA = 36;
const RADIUS_STEP = 0.25;

/** @param {View} view @returns {Map<string, number>} slot by level, from the nearest to the core */
export function levelSlots(view) {
    const levels = [...new Set(view.points.map((point) => point.level))];
    /** @type {Map<string, number>} */
    const slots = new Map();
    const isTaken = (/** @type {number} */ slot) => [...slots.values()].includes(slot);
    for (const level of levels) {
        const slot = level === '' ? 0 : SLOT_OF_LEVEL.get(level.toUpperCase().replace(/GPU$/, ''));
        if (slot !== undefined && !isTaken(slot)) slots.set(level, slot);
    }
    for (const level of levels) {
        if (slots.has(level)) continue;
        const free = SHAPES.findIndex((_, slot) => !isTaken(slot));
        slots.set(level, free < 0 ? slots.size % SHAPES.length : free);
    }
    return new Map([...slots].sort((a, b) => a[1] - b[1]));
}

/** @param {number|null} share @returns {number} square pixels */
export const areaOf = (share) => Math.max(LEAST_AREA, AREA_OF_ALL_TIME * Math.min(1, share ?? 0));

/**
 * Of a circle with that area, in steps that keep the number of distinct outlines small.
 * @param {number|null} share
 */
export const radiusOf = (share) => Math.round(Math.sqrt(areaOf(share) / Math.PI) / RADIUS_STEP) * RADIUS_STEP;

/** The greatest share that is drawn as small as any lesser one. */
export const LEAST_SHARE = LEAST_AREA / AREA_OF_ALL_TIME;

/** Takes a shape down in relative commands, so that it can begin anywhere. */
class RelativePath {
    m_x = 0;
    m_y = 0;
    m_start = [0, 0];
    text = '';

    /** @param {string} command @param {number} x @param {number} y */
    m_go(command, x, y) {
        this.text += `${command}${px(x - this.m_x)},${px(y - this.m_y)}`;
        [this.m_x, this.m_y] = [x, y];
    }

    /** @param {number} x @param {number} y */
    moveTo(x, y) {
        this.m_go('m', x, y);
        this.m_start = [x, y];
    }

    /** @param {number} x @param {number} y */
    lineTo(x, y) {
        this.m_go('l', x, y);
    }

    closePath() {
        this.text += 'z';
        [this.m_x, this.m_y] = this.m_start;
    }

    /** @param {number} x @param {number} y @param {number} width @param {number} height */
    rect(x, y, width, height) {
        this.moveTo(x, y);
        this.text += `h${px(width)}v${px(height)}h${px(-width)}`;
        this.closePath();
    }

    /**
     * A whole circle: shapes have no other arcs.
     * @param {number} x
     * @param {number} y
     * @param {number} radius
     */
    arc(x, y, radius) {
        this.moveTo(x + radius, y);
        for (const way of [-2, 2]) this.text += `a${px(radius)},${px(radius)},0,1,1,${px(way * radius)},0`;
        this.closePath();
    }
}

/** @type {Map<string, string>} */
const outlines = new Map();

/**
 * The outline of a shape as large as a circle of the radius, with a hole in its middle where asked: what
 * follows the command that moves to the middle.
 * @param {number} slot
 * @param {number} radius
 * @param {boolean} hole
 * @returns {string} relative commands of a path, to be filled by the even-odd rule
 */
export function outline(slot, radius, hole) {
    const key = `${slot} ${radius} ${hole}`;
    let path = outlines.get(key);
    if (path === undefined) {
        const recorder = new RelativePath();
        SHAPES[slot].draw(/** @type {any} */ (recorder), Math.PI * radius * radius);
        if (hole) recorder.arc(0, 0, Math.max(1.2, radius * 0.28));
        outlines.set(key, (path = recorder.text));
    }
    return path;
}

/** @param {Point['limitKind']} limitKind */
export const limitInk = (limitKind) => `ink-${limitKind || 'none'}`;

/**
 * @param {Point} point
 * @param {View['colourBy']} colourBy
 * @param {number} slot of its level
 */
export const pointClass = (point, colourBy, slot) =>
    `point ${colourBy === 'limit' ? limitInk(point.limitKind) : `ink-${slot}`}` +
    `${point.side === 'base' ? ' base' : ''}${point.dimmed ? ' dimmed' : ''}`;

/** A dot tells vectorised code; the hollow points of a base have none. @param {Point} point */
export const hasHole = (point) => point.vectorised === true && point.side !== 'base';
