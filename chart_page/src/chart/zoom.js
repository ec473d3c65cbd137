// What part of the plane is seen: zoom and pan by wheel, drag and keys; a double click goes to the start.
import { select } from 'd3-selection';
import { zoom, zoomIdentity } from 'd3-zoom';
import { coreOf, homeBounds, makeMapping, pointBounds, shownBounds } from './scales.js';

/** @typedef {import('./scales.js').Size} Size */
/** @typedef {import('./view.js').View} View */

const EXTENT = /** @type {[number, number]} */ ([0.2, 20000]);
const CLICK = 4; // pixels that a click may move
const PAUSE = 250; // milliseconds of rest after which a view counts
const DIGITS = 6; // of the decimal logarithms that tell a view
// Decimal logarithms that a view may tell of: the middle, and the sides.
const FARTHEST = 400;
const [LEAST_SIDE, MOST_SIDE] = [1e-5, 1000];

export class Zoom {
    /**
     * @param {SVGGElement} pane
     * @param {{onChange: () => void, onMoving: (moving: boolean) => void, onRest: (text: string) => void}}
     *     callbacks
     */
    constructor(pane, { onChange, onMoving, onRest }) {
        this.m_size = { width: 1, height: 1 };
        this.m_home = { minX: 0, maxX: 1, minY: 0, maxY: 1 };
        this.m_homeKey = '';
        this.m_isWhole = false; // what lies far is shown too
        this.m_isMoved = false; // by the reader, away from what is seen at first
        this.m_core = coreOf({ points: [], totals: [] });
        this.m_told = ''; // the text of the view that the shell knows of
        /** @type {string|null} */
        this.m_wanted = null; // a view that waits for the plot's size
        this.m_pause = 0;
        this.m_onRest = onRest;
        /** @type {View|null} */
        this.m_view = null;
        this.m_pane = /** @type {any} */ (select(pane));
        this.m_zoom = /** @type {any} */ (zoom())
            .scaleExtent(EXTENT)
            .extent(() => [
                [0, 0],
                [this.m_size.width, this.m_size.height],
            ])
            .clickDistance(CLICK)
            // Not on 'start': the end of a wheel's turn may come in the midst of a drag.
            .on('zoom', (/** @type {any} */ event) => {
                this.transform = event.transform;
                this.m_isMoved = true;
                onMoving(true);
                onChange();
            })
            .on('end', () => {
                onMoving(false);
                this.m_tellLater();
            });
        this.transform = zoomIdentity;
        // In place of the usual zoom in; a double tap comes here too.
        this.m_pane.call(this.m_zoom).on('dblclick.zoom', () => this.reset());
    }

    /** Of the last fit() and resize(). */
    get map() {
        return makeMapping(this.m_home, this.m_size, this.transform);
    }

    /**
     * Goes to the start of a view with other axes or points. Where only roofs have moved, the start follows
     * them and a look elsewhere stays where it is.
     * @param {View} view
     */
    fit(view) {
        this.m_view = view;
        const key = JSON.stringify([view.axes, view.bounds, pointBounds(view)]);
        this.m_core = coreOf(view);
        if (key !== this.m_homeKey) {
            this.reset();
            if (view.zoom !== this.m_told) this.m_wanted = view.zoom;
        } else if (!this.m_isMoved) this.m_goHome();
        this.m_homeKey = key;
    }

    m_goHome() {
        const view = this.m_view;
        if (view) this.m_home = homeBounds(view, this.m_isWhole ? pointBounds(view) : this.m_core.box);
    }

    /** What is seen: "x,y,width,height", x and y of its middle, in decimal logarithms; "" at first. */
    get text() {
        if (!this.m_isMoved && !this.m_isWhole) return '';
        const { minX, maxX, minY, maxY } = shownBounds(this.map, this.m_size);
        return [(minX + maxX) / 2, (minY + maxY) / 2, maxX - minX, maxY - minY]
            .map((value) => Number(value.toFixed(DIGITS)))
            .join();
    }

    m_tellLater() {
        clearTimeout(this.m_pause);
        this.m_pause = setTimeout(() => {
            const { text } = this;
            if (this.m_wanted === null && text !== this.m_told) this.m_onRest((this.m_told = text));
        }, PAUSE);
    }

    /** Shows a view by its text, as soon as the plot has a size; the start for a text that tells none. */
    show(/** @type {string} */ text) {
        if (text === this.m_told && this.m_wanted === null) return;
        this.m_wanted = text;
        if (this.m_size.width > 1) this.m_showWanted();
    }

    m_showWanted() {
        if (this.m_wanted === null) return;
        const [x, y, ...sides] = this.m_wanted.split(',').map(Number);
        this.m_told = this.m_wanted;
        this.m_wanted = null;
        this.reset();
        const isSide = (/** @type {number} */ side) => side >= LEAST_SIDE && side <= MOST_SIDE;
        if (sides.length !== 2 || !sides.every(isSide)) return;
        if (!(Math.abs(x) <= FARTHEST && Math.abs(y) <= FARTHEST)) return;
        const { minX, maxX } = this.m_home;
        const k = Math.min(EXTENT[1], Math.max(EXTENT[0], (maxX - minX) / sides[0]));
        // Of the view's own shape: that of the start may have been another one.
        const [width, height] = sides.map((side) => (k * side) / 2);
        this.m_home = { minX: x - width, maxX: x + width, minY: y - height, maxY: y + height };
        this.m_pane.call(this.m_zoom.transform, zoomIdentity);
        this.scale(k);
    }

    /** Keeps what is in view when the plot's size changes. @param {Size} size */
    resize(size) {
        const { k, x, y } = this.transform;
        const before = this.m_size;
        this.m_size = size;
        const moved = zoomIdentity
            .translate((x * size.width) / before.width, (y * size.height) / before.height)
            .scale(k);
        if (before.width !== size.width || before.height !== size.height) {
            const isMoved = this.m_isMoved;
            this.m_pane.call(this.m_zoom.transform, moved);
            this.m_isMoved = isMoved;
        }
        this.m_showWanted();
    }

    /** @param {number} factor @param {[number, number]|null} [around] pixels; null: the middle */
    scale(factor, around = null) {
        this.m_pane.call(
            this.m_zoom.scaleBy,
            factor,
            around ?? [this.m_size.width / 2, this.m_size.height / 2],
        );
    }

    /** @param {number} dx @param {number} dy pixels */
    pan(dx, dy) {
        this.m_pane.call(this.m_zoom.translateBy, dx / this.transform.k, dy / this.transform.k);
    }

    /** @param {boolean} [isWhole] with what lies far from all else */
    reset(isWhole = false) {
        this.m_isWhole = isWhole;
        this.m_goHome();
        this.m_pane.call(this.m_zoom.transform, zoomIdentity);
        this.m_isMoved = false;
    }

    /**
     * How many of what lies far can't be seen, by the end of the plot beyond which it lies. What a search or
     * a filter leaves out doesn't count.
     */
    get unseen() {
        const { minX, maxX, minY, maxY } = shownBounds(this.map, this.m_size);
        const { left, right, top, bottom } = this.m_core.far;
        const count = (/** @type {any[]} */ places, /** @type {(place: any) => boolean} */ isBeyond) =>
            places.filter((place) => !place.dimmed && isBeyond(place)).length;
        return {
            left: count(left, ({ x }) => x < minX),
            right: count(right, ({ x }) => x > maxX),
            top: count(top, ({ y }) => y > maxY),
            bottom: count(bottom, ({ y }) => y < minY),
        };
    }
}
