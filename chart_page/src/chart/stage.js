// The chart's elements, and where legend, plot and lane lie.
import { make } from '../dom.js';
import { setFont, svg, translate } from './dom.js';

/** @typedef {import('./scales.js').Size} Size */

const MARGIN = { left: 70, right: 18, top: 8, bottom: 54 };
const BUTTONS = { width: 84, height: 32 };
const ENDS = { left: '\u2190', right: '\u2192', top: '\u2191', bottom: '\u2193' };
const LEAST = 60; // pixels of the plot in either direction
let stages = 0;

export class Stage {
    /** @param {HTMLElement} container that the chart fills */
    constructor(container) {
        const id = `chart-${++stages}`;
        this.m_clip = `url(#${id}-clip)`;
        this.left = MARGIN.left;
        this.top = MARGIN.top;
        /** @type {Size} of the plot */
        this.size = { width: 1, height: 1 };
        this.root = make('div.chart');
        container.append(this.root);

        // Three pictures, one over the other. The middle one holds the points alone: a zoom moves it as it is
        // painted, and what changes below and above doesn't paint thousands of points again.
        this.m_buildBelow(id);
        this.points = group('points');
        this.m_middle = svg('svg', { class: 'chart-points', 'aria-hidden': 'true' }, this.points);
        this.m_window = make('div.chart-window', null, this.m_middle);
        this.m_buildAbove();
        this.root.append(this.m_below, this.m_window, this.svg);

        this.m_help = make('p.chart-hidden', { id: `${id}-help` });
        this.m_status = make('p.chart-hidden', { role: 'status' });
        this.m_buttons = make('div.chart-buttons');
        this.svg.setAttribute('aria-describedby', this.m_help.id);
        /** @type {Record<string, HTMLButtonElement>} */
        this.m_more = Object.fromEntries(Object.keys(ENDS).map((end) =>
            [end, make(`button.chart-more.${end}`, { type: 'button', hidden: true })]));
        this.root.append(this.m_help, this.m_status, this.m_buttons, ...Object.values(this.m_more));
        setFont(getComputedStyle(this.svg).fontFamily);
    }

    /** @param {string} id */
    m_buildBelow(id) {
        this.m_paper = svg('rect', { class: 'paper' });
        this.m_back = svg('rect', { class: 'plot-back' });
        this.m_clipRect = svg('rect');
        this.grid = group('grids');
        this.roofs = group('roofs');
        this.under = group('under');
        const clip = svg('defs', {}, svg('clipPath', { id: `${id}-clip` }, this.m_clipRect));
        this.m_plotBelow = svg('g', {}, clip, this.m_back, this.m_clipped(this.grid, this.roofs, this.under));
        this.m_below = svg(
            'svg',
            { class: 'chart-below', 'aria-hidden': 'true' },
            this.m_paper,
            this.m_plotBelow,
        );
    }

    m_buildAbove() {
        this.legend = group('legend');
        this.lane = group('lane');
        this.axes = group('axes');
        this.traces = group('roof-traces');
        this.hits = group('roof-hits');
        this.over = group('over');
        this.roofLabels = group('roof-labels');
        this.totalLabels = group('total-labels');
        this.names = group('names');
        const labels = group('labels');
        labels.append(this.roofLabels, this.totalLabels, this.names);
        this.m_catch = svg('rect', { class: 'catch' });
        this.m_plotFrame = svg('rect', { class: 'plot-frame' });
        this.m_message = svg('text', { class: 'message', 'text-anchor': 'middle' });
        this.pane = group('pane');
        this.pane.append(this.m_catch, this.m_clipped(this.traces, this.hits, labels, this.over));
        this.m_plot = svg('g', {}, this.pane, this.m_plotFrame, this.axes, this.m_message);
        this.svg = svg(
            'svg',
            { class: 'chart-above', tabindex: 0, role: 'application' },
            this.legend,
            this.m_plot,
            this.lane,
        );
    }

    /** @param {...Node} parts */
    m_clipped(...parts) {
        return svg('g', { 'clip-path': this.m_clip }, ...parts);
    }

    /** @param {string} id of its text @param {string} sign @param {() => void} action */
    addButton(id, sign, action) {
        this.m_buttons.append(make('button', { type: 'button', 'data-text': id, onclick: action }, sign));
    }

    /** @param {import('./view.js').View} view */
    setTexts({ texts, points, roofs, message }) {
        const shown = roofs.filter((roof) => !roof.hidden).length;
        this.svg.setAttribute('aria-label', texts('page_chart_label', points.length, shown));
        this.m_help.textContent = texts('page_chart_keys');
        const lines = message && !points.length ? message.split('\n') : [];
        this.m_message.replaceChildren(
            ...lines.map((line, i) => svg('tspan', { x: 0, dy: i ? '1.5em' : 0 }, line)),
        );
        for (const button of this.m_buttons.children) {
            button.title = texts(button.dataset.text);
            button.setAttribute('aria-label', button.title);
        }
    }

    /** @param {() => void} action of those at the ends of the plot */
    onMore(action) {
        for (const end in this.m_more) this.m_more[end].onclick = action;
    }

    /**
     * Says at each end how many points lie far beyond it.
     * @param {Record<string, number>} counts @param {import('./view.js').View['texts']} texts
     */
    showMore(counts, texts) {
        for (const [end, arrow] of Object.entries(ENDS)) {
            const button = this.m_more[end];
            button.hidden = !counts[end];
            if (button.hidden) continue;
            const parts = [texts('page_chart_more', counts[end]), arrow];
            button.textContent = (end === 'right' ? parts : parts.reverse()).join(' ');
            button.title = texts('page_chart_more_expl');
        }
    }

    /** What stands at the ends of the plot, for a picture. @returns {import('./picture.js').Note[]} */
    get notes() {
        const corner = this.root.getBoundingClientRect();
        return Object.values(this.m_more).filter((button) => !button.hidden).map((button) => {
            const { left, top, width, height } = button.getBoundingClientRect();
            return { text: button.textContent ?? '', x: left - corner.left + width / 2,
                y: top - corner.top + height / 2 };
        });
    }

    /** Tells a screen reader. @param {string} text */
    tell(text) {
        this.m_status.textContent = text;
    }

    /** @returns {Size} of the whole chart; 0 while it isn't shown */
    get whole() {
        return { width: this.root.clientWidth, height: this.root.clientHeight };
    }

    /** @returns {[number, number]} pixels, and those of them that the buttons take in the first line */
    get legendWidth() {
        return [this.whole.width - MARGIN.left - MARGIN.right, BUTTONS.width];
    }

    /** @param {number} legend height, pixels @param {number} lane height */
    place(legend, lane) {
        const { width, height } = this.whole;
        this.top = MARGIN.top + Math.max(BUTTONS.height - 2, legend + 6);
        this.size = {
            width: Math.max(LEAST, width - MARGIN.left - MARGIN.right),
            height: Math.max(LEAST, height - this.top - MARGIN.bottom - lane),
        };
        setSize(this.m_paper, { width, height });
        for (const rect of [this.m_back, this.m_catch, this.m_clipRect, this.m_plotFrame, this.m_middle])
            setSize(rect, this.size);
        for (const plot of [this.m_plotBelow, this.m_plot])
            plot.setAttribute('transform', translate(this.left, this.top));
        this.legend.setAttribute('transform', translate(this.left, MARGIN.top));
        this.m_message.setAttribute('transform', translate(this.size.width / 2, this.size.height / 2));
        setStyle(this.m_window, { left: this.left, top: this.top, ...this.size });
        setStyle(this.m_buttons, { right: MARGIN.right, top: MARGIN.top - 2 });
        const [low, middle] = [height - this.top - this.size.height + 6, this.left + this.size.width / 2];
        setStyle(this.m_more.left, { left: this.left + 6, bottom: low });
        setStyle(this.m_more.right, { right: MARGIN.right + 6, bottom: low });
        setStyle(this.m_more.top, { left: middle, top: this.top + 6 });
        setStyle(this.m_more.bottom, { left: middle, bottom: low });
    }

    /** @returns {import('./picture.js').Layers['parts']} */
    get parts() {
        return [
            { source: this.m_below },
            {
                source: this.m_middle,
                place: { transform: translate(this.left, this.top), 'clip-path': this.m_clip },
            },
            { source: this.svg },
        ];
    }
}

/** @param {string} name */
const group = (name) => svg('g', { class: name });

/** @param {Element} element @param {Size} size */
function setSize(element, { width, height }) {
    element.setAttribute('width', String(width));
    element.setAttribute('height', String(height));
}

/** @param {HTMLElement} element @param {Record<string, number>} pixels by property */
function setStyle(element, pixels) {
    for (const name in pixels) element.style.setProperty(name, `${pixels[name]}px`);
}
