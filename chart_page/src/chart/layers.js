// The drawn layers of the plot, from the grid to the emphasised rows.
import { Axes } from './axes.js';
import { LabelPlacer } from './labels.js';
import { drawNames } from './names.js';
import { Overlays } from './overlays.js';
import { PointLayer } from './points.js';
import { RoofLayer } from './roofs.js';

/** @typedef {import('./view.js').View} View */

export class Layers {
    /** @param {import('./stage.js').Stage} stage */
    constructor(stage) {
        this.m_stage = stage;
        this.m_axes = new Axes(stage.grid, stage.axes);
        this.roofs = new RoofLayer(stage.roofs, stage.traces, stage.hits, stage.roofLabels);
        this.points = new PointLayer(stage.points);
        this.m_overlays = new Overlays(stage.under, stage.over, this.points);
        /** @type {View|null} */
        this.m_view = null;
    }

    /** @param {View} view */
    setView(view) {
        const before = this.m_view;
        this.m_view = view;
        if (!before || view.points !== before.points || view.colourBy !== before.colourBy)
            this.points.setPoints(view);
        this.roofs.setRoofs(view);
        this.m_overlays.setView(view);
        this.m_axes.setNames(view);
    }

    /**
     * @param {import('./scales.js').Mapping} map
     * @param {boolean} rest whether the view has come to rest
     * @param {number|null} pinned row
     */
    draw(map, rest, pinned) {
        const { size, totalLabels, names } = this.m_stage;
        const { marks } = this.points;
        this.m_axes.draw(map, size);
        this.points.draw(map, rest);
        const lines = this.roofs.draw(map, size, this.points.isCloud);

        // Who is placed first has the choice: totals, roofs, then names.
        const placer = new LabelPlacer(size);
        for (const line of lines) if (line) placer.addLine(line);
        for (const { point, x, y, radius } of marks) if (!point.dimmed) placer.addPoint(x, y, radius);
        this.m_overlays.draw(map, placer, totalLabels);
        this.roofs.label(lines, placer);
        drawNames(names, marks, size, pinned, placer);
    }

    /** @param {number|null} hovered @param {number|null} pinned rows */
    emphasise(hovered, pinned) {
        const rows = [...new Set([pinned, hovered])].filter((row) => row !== null);
        this.m_overlays.emphasise(rows.map((row) => ({ row, pinned: row === pinned })));
    }
}
