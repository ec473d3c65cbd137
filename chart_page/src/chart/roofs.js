// Draws the roofs and places their labels along them.
import { px, svg, textWidth, translate } from './dom.js';
import { makeBox } from './labels.js';
import { shownBounds, shownRoofs } from './scales.js';

/** @typedef {import('./view.js').Roof} Roof */
/** @typedef {import('./scales.js').Mapping} Mapping */
/** @typedef {import('./scales.js').Size} Size */
/**
 * The part of a roof inside the plot, left end first; null outside of it.
 * @typedef {import('./labels.js').Segment|null} Line
 */

const TEXT_HEIGHT = 13;
const GAP = 9; // from the line to the middle of its text
const STEP = 14; // between places that are tried
const EDGE = 8;
const LITTLE = 28; // what a place of a light roof's label may cost; a strong roof has its label at any price
const BEYOND = 50; // pixels outside of the plot, where an outline's own sides aren't seen

/**
 * Where each roof lies: memory roofs end at the highest compute roof, compute roofs begin at the highest
 * memory roof.
 * @param {Roof[]} roofs
 * @param {Mapping} map
 * @param {Size} size
 * @returns {Line[]}
 */
export function roofLines(roofs, map, size) {
    const view = shownBounds(map, size);
    const logs = roofs.map((roof) => Math.log10(roof.value));
    const top = (/** @type {boolean} */ memory) =>
        Math.max(-Infinity, ...logs.filter((_, i) => roofs[i].isMemory === memory));
    const [topMemory, topCompute] = [top(true), top(false)];
    return roofs.map((roof, i) => {
        const log = logs[i];
        let [from, to] = [view.minX, view.maxX];
        if (roof.isMemory) {
            from = Math.max(from, view.minY - log);
            to = Math.min(to, view.maxY - log, topCompute > -Infinity ? topCompute - log : Infinity);
        } else {
            if (log < view.minY || log > view.maxY) return null;
            if (topMemory > -Infinity) from = Math.max(from, log - topMemory);
        }
        if (!(from < to)) return null;
        const y = (/** @type {number} */ x) => map.ay * (roof.isMemory ? x + log : log) + map.by;
        return { x1: map.ax * from + map.bx, y1: y(from), x2: map.ax * to + map.bx, y2: y(to) };
    });
}

export class RoofLayer {
    /**
     * @param {SVGGElement} lines
     * @param {SVGGElement} traces the lines once more, over the points
     * @param {SVGGElement} hits what the cursor meets
     * @param {SVGGElement} labels
     */
    constructor(lines, traces, hits, labels) {
        this.m_beyond = svg('path', { class: 'roof-beyond' });
        this.m_hits = hits;
        this.m_lines = svg('g', { class: 'roof-lines' });
        lines.append(this.m_beyond, this.m_lines);
        this.m_halo = svg('path', { class: 'roof-halo' });
        this.m_traces = svg('g');
        traces.append(this.m_halo, this.m_traces);
        this.m_labels = labels;
        /** @type {Roof[]} */
        this.m_roofs = [];
    }

    /** @param {import('./view.js').View} view */
    setRoofs(view) {
        // Strong ones last, so that they lie over the light ones; high ones last, so that they are labelled
        // first.
        this.m_roofs = shownRoofs(view).sort(
            (a, b) => Number(a.selected) - Number(b.selected) || a.value - b.value,
        );
        const elements = (/** @type {(roof: Roof) => string} */ name) =>
            this.m_roofs.map((roof) => svg('path', { class: name(roof), 'data-roof': roof.key }));
        this.m_lines.replaceChildren(...elements((roof) => `roof ${look(roof)}`));
        this.m_traces.replaceChildren(...elements((roof) => `roof-trace ${look(roof)}`));
        this.m_hits.replaceChildren(...elements(() => 'roof-hit'));
    }

    /** @param {string|undefined} key */
    find(key) {
        return this.m_roofs.find((roof) => roof.key === key) ?? null;
    }

    /**
     * @param {Mapping} map
     * @param {Size} size
     * @param {boolean} traced whether a cloud of points would hide them
     * @returns {Line[]} of the roofs, for label()
     */
    draw(map, size, traced) {
        const lines = roofLines(this.m_roofs, map, size);
        const paths = lines.map((line) =>
            line ? `M${px(line.x1)},${px(line.y1)}L${px(line.x2)},${px(line.y2)}` : '',
        );
        paths.forEach((d, i) => {
            this.m_lines.children[i].setAttribute('d', d);
            this.m_hits.children[i].setAttribute('d', d);
        });
        const traces = paths.map((d) => (traced ? d : ''));
        this.m_halo.setAttribute('d', traces.join(''));
        traces.forEach((d, i) => this.m_traces.children[i].setAttribute('d', d));
        this.m_beyond.setAttribute('d', this.m_outline(map, size));
        return lines;
    }

    /** The area above all roofs, which no code can reach. @param {Mapping} map @param {Size} size */
    m_outline(map, size) {
        const top = (/** @type {boolean} */ memory) =>
            Math.max(
                ...this.m_roofs
                    .filter((roof) => roof.isMemory === memory)
                    .map((roof) => Math.log10(roof.value)),
            );
        const [memory, compute] = [top(true), top(false)];
        if (memory === -Infinity || compute === -Infinity) return '';
        const view = shownBounds(map, size);
        const [left, right] = [view.minX - BEYOND / map.ax, view.maxX + BEYOND / map.ax];
        const corners = [left, compute - memory, right]
            .filter((x) => x >= left && x <= right)
            .map((x) => `${px(map.ax * x + map.bx)},${px(map.ay * Math.min(x + memory, compute) + map.by)}`);
        return `M${corners.join('L')}V${-BEYOND}H${-BEYOND}Z`;
    }

    /**
     * Labels of strong roofs first; one without a place is left out, its line tells its name on hover.
     * @param {Line[]} lines
     * @param {import('./labels.js').LabelPlacer} placer
     */
    label(lines, placer) {
        const labels = [];
        for (let i = this.m_roofs.length - 1; i >= 0; i--) {
            const [roof, line] = [this.m_roofs[i], lines[i]];
            const label = line && placeLabel(roof, line, placer);
            if (label) labels.push(label);
        }
        this.m_labels.replaceChildren(...labels);
    }
}

/**
 * The label at its best place, without the value where the room doesn't suffice.
 * @param {Roof} roof
 * @param {NonNullable<Line>} line
 * @param {import('./labels.js').LabelPlacer} placer
 * @returns {SVGTextElement|null}
 */
function placeLabel(roof, line, placer) {
    const rules = { own: line, limit: roof.selected ? Infinity : LITTLE };
    const full = placer.place(places(roof, line, `${roof.name}  ${roof.valueText}`), rules);
    const found = full ?? placer.place(places(roof, line, roof.name), rules);
    if (!found) return null;
    const { box, text, angle } = found;
    const degrees = px((angle * 180) / Math.PI);
    const attributes = {
        class: `roof-label ${look(roof)}`,
        transform: `${translate(box.x, box.y)}rotate(${degrees})`,
        dy: '0.35em',
        'text-anchor': 'middle',
        'data-roof': roof.key,
    };
    return svg('text', attributes, text);
}

/** @param {Roof} roof @returns {string} classes */
const look = ({ isMemory, selected }) =>
    `${isMemory ? 'memory' : 'compute'} ${selected ? 'strong' : 'light'}`;

/**
 * Memory roofs are labelled from their lower end on, compute roofs from the right; above the line rather than
 * below.
 * @param {Roof} roof
 * @param {NonNullable<Line>} line
 * @param {string} text
 */
function* places(roof, line, text) {
    const width = textWidth(text, 12, roof.selected ? 600 : 400) + 4;
    const length = Math.hypot(line.x2 - line.x1, line.y2 - line.y1);
    const [cos, sin] = [(line.x2 - line.x1) / length, (line.y2 - line.y1) / length];
    const angle = Math.atan2(sin, cos);
    for (let moved = 0; moved + width + 2 * EDGE <= length; moved += STEP) {
        const middle = EDGE + moved + width / 2;
        const along = roof.isMemory ? middle : length - middle;
        for (const side of [1, -1]) {
            const [x, y] = [
                line.x1 + along * cos + side * GAP * sin,
                line.y1 + along * sin - side * GAP * cos,
            ];
            yield {
                box: makeBox(x, y, width, TEXT_HEIGHT, angle),
                cost: (0.4 * moved) / STEP + (side < 0 ? 2 : 0),
                text,
                angle,
            };
        }
    }
}
