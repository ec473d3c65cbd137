// Draws the grid, the numbers along both axes and their names.
import { px, svg } from './dom.js';
import { makeTicks, shownBounds } from './scales.js';

const TICK_GAP = 8;

/** @typedef {import('./scales.js').Tick} Tick */

/** @param {Tick} tick @returns {(Node|string)[]} */
const numberParts = ({ text, power }) =>
    power === null
        ? [text]
        : [text, svg('tspan', { class: 'axis-power', dy: '-0.45em' }, String(power).replace('-', '\u2212'))];

/**
 * @param {Tick[]} ticks
 * @param {(tick: Tick) => Record<string, string|number>} placeOf attributes
 * @returns {Node[]}
 */
const numbersOf = (ticks, placeOf) =>
    ticks
        .filter((tick) => tick.text)
        .map((tick) => {
            const name = tick.major ? 'axis-number' : 'axis-number axis-between';
            return svg('text', { class: name, ...placeOf(tick) }, ...numberParts(tick));
        });

export class Axes {
    /** @param {SVGGElement} grid inside the clipped plot @param {SVGGElement} outside */
    constructor(grid, outside) {
        this.m_minor = svg('path', { class: 'grid grid-minor' });
        this.m_major = svg('path', { class: 'grid grid-major' });
        grid.append(this.m_minor, this.m_major);
        this.m_numbers = svg('g', { class: 'axis-numbers' });
        this.m_nameX = svg('text', { class: 'axis-name', 'text-anchor': 'middle' });
        this.m_nameY = svg('text', { class: 'axis-name', 'text-anchor': 'middle' });
        outside.append(this.m_numbers, this.m_nameX, this.m_nameY);
    }

    /** @param {import('./view.js').View} view */
    setNames({ axes, texts }) {
        const name = (/** @type {string} */ what, /** @type {string} */ measure) =>
            measure ? texts('page_chart_axis', what, measure) : what;
        this.m_nameX.textContent = name(axes.nameX, axes.measureX);
        this.m_nameY.textContent = name(axes.nameY, axes.measureY);
    }

    /** @param {import('./scales.js').Mapping} map @param {import('./scales.js').Size} size */
    draw(map, size) {
        const bounds = shownBounds(map, size);
        const ticksX = makeTicks(bounds.minX, bounds.maxX, map.ax);
        const ticksY = makeTicks(bounds.minY, bounds.maxY, -map.ay);
        const lines = (/** @type {boolean} */ major) =>
            [
                ...ticksX
                    .filter((t) => t.major === major)
                    .map((t) => `M${px(map.ax * t.log + map.bx)},0V${size.height}`),
                ...ticksY
                    .filter((t) => t.major === major)
                    .map((t) => `M0,${px(map.ay * t.log + map.by)}H${size.width}`),
            ].join('');
        this.m_minor.setAttribute('d', lines(false));
        this.m_major.setAttribute('d', lines(true));

        this.m_numbers.replaceChildren(
            ...numbersOf(ticksX, ({ log }) => ({
                x: px(map.ax * log + map.bx),
                y: size.height + TICK_GAP,
                dy: '0.71em',
                'text-anchor': 'middle',
            })),
            ...numbersOf(ticksY, ({ log }) => ({
                x: -TICK_GAP,
                y: px(map.ay * log + map.by),
                dy: '0.32em',
                'text-anchor': 'end',
            })),
        );
        this.m_nameX.setAttribute('transform', `translate(${px(size.width / 2)},${px(size.height + 40)})`);
        this.m_nameY.setAttribute('transform', `translate(-48,${px(size.height / 2)})rotate(-90)`);
    }
}
