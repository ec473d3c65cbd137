// Zoom and pan of the plot by wheel, drag, double click and keys.
import { select } from 'd3-selection';
import { zoom, zoomIdentity } from 'd3-zoom';

/** @typedef {import('./scales.js').Size} Size */

const EXTENT = /** @type {[number, number]} */ ([0.2, 20000]);
const CLICK = 4; // pixels that a click may move

export class Zoom {
    /**
     * @param {SVGGElement} pane
     * @param {{onChange: () => void, onMoving: (moving: boolean) => void}} callbacks
     */
    constructor(pane, { onChange, onMoving }) {
        this.m_size = { width: 1, height: 1 };
        this.m_pane = /** @type {any} */ (select(pane));
        this.m_zoom = /** @type {any} */ (zoom())
            .scaleExtent(EXTENT)
            .extent(() => [
                [0, 0],
                [this.m_size.width, this.m_size.height],
            ])
            .clickDistance(CLICK)
            .duration(matchMedia('(prefers-reduced-motion: reduce)').matches ? 0 : 200)
            // Not on 'start': the end of a wheel's turn may come in the midst of a drag.
            .on('zoom', (/** @type {any} */ event) => {
                this.transform = event.transform;
                onMoving(true);
                onChange();
            })
            .on('end', () => onMoving(false));
        this.transform = zoomIdentity;
        this.m_pane.call(this.m_zoom);
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
        this.m_pane.call(this.m_zoom.transform, zoomIdentity);
    }

    destroy() {
        this.m_pane.on('.zoom', null);
    }
}
