// The chart: puts its layers together, and turns what a person does into callbacks.
import { HoverCard } from './card.js';
import { handleKey } from './keys.js';
import { Lane } from './lane.js';
import { Layers } from './layers.js';
import { drawLegend } from './legend.js';
import { standaloneSvg, toPng } from './picture.js';
import { aimOf, linesOf } from './pointer.js';
import { Stage } from './stage.js';
import { Zoom } from './zoom.js';

/** @typedef {import('./view.js').View} View */
/** @typedef {import('./points.js').Mark} Mark */

const PNG_SCALE = 2;
const BUTTON_ZOOM = 1.5;

/**
 * @param {HTMLElement} container that the chart fills
 * @param {import('./view.js').Callbacks} callbacks
 * @returns {import('./view.js').Chart}
 */
export const createChart = (container, callbacks) => new InteractiveChart(container, callbacks);

class InteractiveChart {
    /** @param {HTMLElement} container @param {import('./view.js').Callbacks} callbacks */
    constructor(container, callbacks) {
        this.m_callbacks = callbacks;
        /** @type {View|null} */
        this.m_view = null;
        /** @type {number|null} */
        this.m_hovered = null;
        /** @type {number|null} */
        this.m_pinned = null;
        /** @type {Mark|null} reached by keys or cursor */
        this.m_current = null;
        this.m_frame = 0;
        this.m_moving = false;

        const stage = (this.m_stage = new Stage(container));
        this.m_layers = new Layers(stage);
        this.m_lane = new Lane(stage.lane, stage.root, (row) => callbacks.onPin(row));
        this.m_card = new HoverCard(stage.root);
        this.m_zoom = new Zoom(stage.pane, {
            onChange: () => this.m_schedule(),
            onMoving: (moving) => this.m_setMoving(moving),
            onRest: (text) => callbacks.onZoom(text),
        });
        stage.onMore(() => {
            this.m_zoom.reset(true);
            this.m_draw();
            stage.svg.focus();
        });
        stage.addButton('page_chart_zoom_in', '+', () => this.m_zoom.scale(BUTTON_ZOOM));
        stage.addButton('page_chart_zoom_out', '\u2212', () => this.m_zoom.scale(1 / BUTTON_ZOOM));
        stage.addButton('page_chart_zoom_reset', '\u21ba', () => this.resetZoom());
        this.m_listen();
        new ResizeObserver(() => this.m_layOut()).observe(stage.root);
    }

    get m_points() {
        return this.m_layers.points;
    }

    m_listen() {
        const { svg } = this.m_stage;
        const keys = this.m_keyTarget();
        // A browser takes focus() for a keyboard's doing and would show the ring.
        const setByPointer = (/** @type {boolean} */ by) => svg.classList.toggle('by-pointer', by);
        svg.addEventListener('pointerdown', () => {
            setByPointer(true);
            svg.focus({ preventScroll: true });
        });
        svg.addEventListener('pointermove', (/** @type {PointerEvent} */ event) => this.m_hover(event));
        svg.addEventListener('pointerleave', () => this.m_meet(null));
        svg.addEventListener('blur', () => {
            setByPointer(false);
            this.m_meet(null);
        });
        svg.addEventListener('click', (/** @type {MouseEvent} */ event) => this.m_click(event));
        svg.addEventListener('keydown', (/** @type {KeyboardEvent} */ event) => {
            if (event.target !== svg || !handleKey(event, keys)) return;
            setByPointer(false);
            event.preventDefault();
        });
    }

    /** @returns {import('./keys.js').KeyTarget} */
    m_keyTarget() {
        return {
            marks: () => this.m_points.marks.filter((mark) => !mark.point.dimmed),
            current: () => this.m_current ?? this.m_points.byRow.get(this.m_pinned ?? NaN)?.[0] ?? null,
            go: (mark) => this.m_go(mark),
            pin: () => {
                const row = this.m_current?.point.row ?? null;
                if (row !== null) this.m_callbacks.onPin(row === this.m_pinned ? null : row);
            },
            leave: () => {
                this.m_meet(null);
                this.m_callbacks.onPin(null);
            },
            pan: (dx, dy) => this.m_zoom.pan(dx, dy),
            zoom: (factor) =>
                this.m_zoom.scale(factor, this.m_current && [this.m_current.x, this.m_current.y]),
            reset: () => this.resetZoom(),
        };
    }

    /** @param {View} view */
    update(view) {
        this.m_view = view;
        this.m_layers.setView(view);
        this.m_current = this.m_current && (this.m_points.byKey.get(this.m_current.point.key) ?? null);
        this.m_lane.setRows(view);
        this.m_stage.setTexts(view);
        this.m_hovered = view.hovered;
        this.m_pinned = view.pinned;

        this.m_zoom.fit(view);
        this.m_layOut();
    }

    m_layOut() {
        const { whole, left } = this.m_stage;
        if (!this.m_view || whole.width === 0 || whole.height === 0) return;
        const { legend: group, legendWidth } = this.m_stage;
        const legend = drawLegend(group, this.m_view, ...legendWidth, this.m_callbacks.onLimit);
        this.m_stage.place(legend, this.m_lane.height);
        this.m_lane.draw(left, whole.height - this.m_lane.height, this.m_stage.size.width);
        this.m_zoom.resize(this.m_stage.size);
        this.m_draw();
    }

    m_schedule() {
        this.m_frame ||= requestAnimationFrame(() => this.m_draw());
    }

    m_draw() {
        cancelAnimationFrame(this.m_frame);
        this.m_frame = 0;
        if (!this.m_view) return;
        this.m_layers.draw(this.m_zoom.map, !this.m_moving, this.m_pinned);
        this.m_stage.showMore(this.m_zoom.unseen, this.m_view.texts);
        this.m_emphasise();
    }

    m_emphasise() {
        this.m_layers.emphasise(this.m_hovered, this.m_pinned);
        this.m_lane.mark(this.m_hovered, this.m_pinned);
    }

    /** @param {number|null} hovered @param {number|null} pinned */
    highlight(hovered, pinned) {
        const isNamed = pinned !== this.m_pinned;
        if (!isNamed && hovered === this.m_hovered) return;
        this.m_hovered = hovered;
        this.m_pinned = pinned;
        if (isNamed) this.m_schedule();
        else this.m_emphasise();
    }

    /** @param {boolean} moving */
    m_setMoving(moving) {
        if (moving === this.m_moving) return;
        this.m_moving = moving;
        this.m_stage.pane.classList.toggle('moving', moving);
        if (moving) this.m_card.hide();
        else this.m_schedule();
    }

    /** @param {PointerEvent} event */
    m_hover(event) {
        if (!this.m_view || (this.m_moving && event.buttons)) return;
        const aim = aimOf(event, this.m_stage, this.m_layers, this.m_lane, this.m_view);
        this.m_stage.pane.classList.toggle('meant', Boolean(aim.mark || aim.total || aim.roof));
        this.m_meet(aim.mark, aim.unplaced?.row ?? null);
        const lines = linesOf(aim, this.m_view.texts);
        if (lines) this.m_card.show(lines, aim.x, aim.y);
    }

    /**
     * Makes a point, or a row of the lane, the one that is meant.
     * @param {Mark|null} mark
     * @param {number|null} [unplaced]
     */
    m_meet(mark, unplaced = null) {
        this.m_current = mark;
        const row = mark?.point.row ?? unplaced;
        if (row === null) this.m_card.hide();
        if (row === this.m_hovered) return;
        this.highlight(row, this.m_pinned);
        this.m_callbacks.onHover(row);
    }

    /** @param {MouseEvent} event */
    m_click(event) {
        if (!this.m_view) return;
        const aim = aimOf(event, this.m_stage, this.m_layers, this.m_lane, this.m_view);
        const { mark, unplaced, total, roof, inside } = aim;
        const row = mark?.point.row ?? unplaced?.row ?? null;
        if (row !== null) this.m_callbacks.onPin(row);
        else if (roof) this.m_callbacks.onRoof(roof.key);
        else if (inside && !total) this.m_callbacks.onPin(null);
    }

    /** A step by keyboard: brings the point into view and tells it. @param {Mark} mark */
    m_go(mark) {
        const { left, top, size } = this.m_stage;
        const { width, height } = size;
        if (mark.x < 0 || mark.y < 0 || mark.x > width || mark.y > height) {
            this.m_zoom.pan(width / 2 - mark.x, height / 2 - mark.y);
            this.m_draw();
        }
        this.m_meet(mark);
        this.m_card.show(mark.point.lines, left + mark.x, top + mark.y);
        this.m_stage.tell(mark.point.lines.join('; '));
    }

    resetZoom() {
        this.m_zoom.reset();
        this.m_draw();
    }

    /** @param {string} zoom as onZoom has told it */
    zoomTo(zoom) {
        this.m_zoom.show(zoom);
    }

    m_picture() {
        this.m_setMoving(false);
        this.m_draw();
        // The cursor isn't part of it.
        this.m_layers.emphasise(null, this.m_pinned);
        this.m_lane.mark(null, this.m_pinned);
        const { parts, notes, whole, size } = this.m_stage;
        const picture = standaloneSvg({
            parts,
            notes,
            size: whole,
            title: this.m_view?.title ?? '',
            subtitle: this.m_view?.subtitle ?? '',
            unseen: this.m_points.outside(size),
        });
        this.m_emphasise();
        return picture;
    }

    exportSvg() {
        return this.m_picture().text;
    }

    exportPng() {
        return toPng(this.m_picture(), PNG_SCALE, this.m_view?.texts('page_picture_failed') ?? '');
    }
}
