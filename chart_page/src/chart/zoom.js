// What part of the plane is seen: zoom and pan by wheel, drag and keys; a double click shows the whole.
import { select } from 'd3-selection';
import { zoom, zoomIdentity } from 'd3-zoom';
import { homeBounds, makeMapping, pointBounds } from './scales.js';

/** @typedef {import('./scales.js').Size} Size */
/** @typedef {import('./view.js').View} View */

const EXTENT = /** @type {[number, number]} */ ([0.2, 20000]);
const CLICK = 4; // pixels that a click may move

export class Zoom {
    /**
     * @param {SVGGElement} pane
     * @param {{onChange: () => void, onMoving: (moving: boolean) => void}} callbacks
     */
    constructor(pane, { onChange, onMoving }) {
        this.m_size = { width: 1, height: 1 };
        this.m_home = { minX: 0, maxX: 1, minY: 0, maxY: 1 };
        this.m_homeKey = '';
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
                onMoving(true);
                onChange();
            })
            .on('end', () => onMoving(false));
        this.transform = zoomIdentity;
        // In place of the usual zoom in; a double tap comes here too.
        this.m_pane.call(this.m_zoom).on('dblclick.zoom', () => this.reset());
    }

    /** Of the last fit() and resize(). */
    get map() {
        return makeMapping(this.m_home, this.m_size, this.transform);
    }

    /**
     * Shows the whole of a view with other axes or points. Where only roofs have moved, the whole follows
     * them and a closer look stays where it is.
     * @param {View} view
     */
    fit(view) {
        this.m_view = view;
        const key = JSON.stringify([view.axes, view.bounds, pointBounds(view)]);
        const { k, x, y } = this.transform;
        if (key !== this.m_homeKey) this.reset();
        else if (k === 1 && x === 0 && y === 0) this.m_home = homeBounds(view);
        this.m_homeKey = key;
    }

    /** Keeps what is in view when the plot's size changes. @param {Size} size */
    resize(size) {
        const { k, x, y } = this.transform;
        const before = this.m_size;
        this.m_size = size;
        const moved = zoomIdentity
            .translate((x * size.width) / before.width, (y * size.height) / before.height)
            .scale(k);
        if (before.width !== size.width || before.height !== size.height)
            this.m_pane.call(this.m_zoom.transform, moved);
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

    reset() {
        if (this.m_view) this.m_home = homeBounds(this.m_view);
        this.m_pane.call(this.m_zoom.transform, zoomIdentity);
    }
}
