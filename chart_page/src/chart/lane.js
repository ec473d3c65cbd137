// The lane at the lower edge: rows that have no place on the chart, grouped by cause.
import { make } from '../dom.js';
import { px, shorten, svg, textWidth, visible } from './dom.js';

/** @typedef {import('./view.js').Unplaced} Unplaced */
/** @typedef {{cause: string, rows: Unplaced[]}} Group */

const LINE = 20; // pixels
const MOST_LINES = 3;
const MOST_LISTED = 500; // rows in an opened list
const STEP = 12; // from mark to mark
const TITLE_SIZE = 11;
const TITLE_GAP = 8;

/** @param {Unplaced[]} rows @returns {Group[]} the largest first */
function grouped(rows) {
    /** @type {Map<string, Unplaced[]>} */
    const groups = new Map();
    for (const row of rows) {
        if (row.dimmed) continue;
        const others = groups.get(row.cause);
        if (others) others.push(row);
        else groups.set(row.cause, [row]);
    }
    return [...groups]
        .map(([cause, members]) => ({ cause, rows: members }))
        .sort((a, b) => b.rows.length - a.rows.length);
}

export class Lane {
    /**
     * @param {SVGGElement} group
     * @param {HTMLElement} container of the list that a count opens
     * @param {(row: number) => void} onPin
     */
    constructor(group, container, onPin) {
        this.m_group = group;
        this.m_onPin = onPin;
        this.m_list = make('div.chart-list', { hidden: true, role: 'dialog' });
        container.append(this.m_list);
        /** @type {Group[]} */
        this.m_groups = [];
        /** @type {Unplaced[]} */
        this.m_rows = [];
        /** @type {import('./view.js').View['texts']} */
        this.m_texts = (id) => id;
        /** @type {Element|null} */
        this.m_opener = null;
        this.m_list.addEventListener('keydown', (/** @type {KeyboardEvent} */ event) => {
            if (event.key !== 'Escape') return;
            event.stopPropagation();
            this.close();
        });
    }

    /** @param {import('./view.js').View} view */
    setRows(view) {
        this.m_texts = view.texts;
        if (view.lanes === this.m_rows) return;
        this.m_rows = view.lanes;
        this.m_groups = grouped(view.lanes);
        this.close();
    }

    /** @returns {number} pixels */
    get height() {
        return this.m_groups.length ? Math.min(this.m_groups.length, MOST_LINES) * LINE + 10 : 0;
    }

    /** @param {number} index @returns {Unplaced|null} */
    find(index) {
        return this.m_groups.flatMap((group) => group.rows).find((entry) => entry.row === index) ?? null;
    }

    /**
     * @param {number} plotLeft where the lines begin, unless the title needs more room
     * @param {number} top
     * @param {number} plotWidth pixels
     */
    draw(plotLeft, top, plotWidth) {
        const title = this.m_texts('page_chart_lane_title');
        const left = Math.max(plotLeft, Math.ceil(textWidth(title, TITLE_SIZE)) + 2 * TITLE_GAP);
        const width = plotWidth - (left - plotLeft);
        const whole = this.m_groups.length <= MOST_LINES;
        const lines = whole ? this.m_groups : this.m_groups.slice(0, MOST_LINES - 1);
        const rest = this.m_groups.slice(lines.length);
        const parts = lines.flatMap((group, i) => {
            const caption = this.m_texts('page_chart_lane_group', group.rows.length, group.cause);
            return this.m_line(group.rows, caption, left, top + (i + 0.5) * LINE, width);
        });
        if (rest.length) {
            const rows = rest.flatMap((group) => group.rows);
            const caption = this.m_texts('page_chart_lane_rest', rows.length, rest.length);
            parts.push(...this.m_line(rows, caption, left, top + (lines.length + 0.5) * LINE, width));
        }
        if (parts.length) {
            const [x, y] = [px(left - TITLE_GAP), px(top + LINE / 2)];
            const looks = { class: 'lane-title', dy: '0.35em', 'text-anchor': 'end' };
            parts.unshift(svg('text', { ...looks, x, y }, title));
        }
        this.m_group.replaceChildren(...parts);
    }

    /**
     * @param {Unplaced[]} rows
     * @param {string} caption
     * @param {number} left
     * @param {number} y
     * @param {number} width
     * @returns {Node[]}
     */
    m_line(rows, caption, left, y, width) {
        const text = shorten(caption, width * 0.55);
        const button = svg(
            'text',
            {
                class: 'lane-caption',
                x: left,
                y,
                dy: '0.35em',
                tabindex: 0,
                role: 'button',
                'aria-haspopup': 'dialog',
            },
            text,
        );
        const open = () => this.m_open(rows, caption, button, y);
        button.addEventListener('click', open);
        button.addEventListener('keydown', (/** @type {KeyboardEvent} */ event) => {
            if (event.key !== 'Enter' && event.key !== ' ') return;
            event.preventDefault();
            event.stopPropagation();
            open();
        });
        const from = left + textWidth(text) + 16;
        const room = Math.max(0, Math.floor((left + width - from - STEP) / STEP));
        const shown = rows.slice(0, room);
        const more =
            shown.length < rows.length && room > 0
                ? [
                      svg(
                          'text',
                          { class: 'lane-more', x: px(from + room * STEP - 4), y, dy: '0.1em' },
                          '\u2026',
                      ),
                  ]
                : [];
        return [
            button,
            ...more,
            ...shown.map((entry, i) =>
                svg('circle', {
                    class: 'unplaced',
                    cx: px(from + i * STEP),
                    cy: y,
                    r: 4,
                    'data-unplaced': entry.row,
                }),
            ),
        ];
    }

    /** @param {number|null} hovered @param {number|null} pinned */
    mark(hovered, pinned) {
        for (const circle of this.m_group.querySelectorAll('.unplaced')) {
            const row = Number(circle.getAttribute('data-unplaced'));
            circle.classList.toggle('strong', row === hovered || row === pinned);
        }
    }

    /**
     * @param {Unplaced[]} rows
     * @param {string} caption
     * @param {Element} opener
     * @param {number} bottom pixels
     */
    m_open(rows, caption, opener, bottom) {
        this.m_opener = opener;
        const close = make('button.chart-list-close', {
            type: 'button',
            'aria-label': this.m_texts('page_chart_close'),
            onclick: () => this.close(),
        }, '\u00d7');
        const more = rows.length - MOST_LISTED;
        const listed = rows.slice(0, MOST_LISTED).map((entry) => make('li', null, make('button', {
            type: 'button',
            title: entry.cause,
            'data-unplaced': entry.row,
            onclick: () => this.m_onPin(entry.row),
        }, visible(entry.name))));
        const entries = make('ul', null, ...listed,
            more > 0 && make('li', null, this.m_texts('page_chart_more', more)));
        this.m_list.replaceChildren(
            make('div.chart-list-head', null, make('strong', null, caption), close),
            entries,
        );
        this.m_list.setAttribute('aria-label', caption);
        this.m_list.hidden = false;
        const above = this.m_list.parentElement.clientHeight - bottom + LINE / 2;
        this.m_list.style.bottom = `${Math.max(8, above)}px`;
        entries.querySelector('button')?.focus();
    }

    close() {
        if (this.m_list.hidden) return;
        const hadFocus = this.m_list.contains(document.activeElement);
        this.m_list.hidden = true;
        if (hadFocus && this.m_opener?.isConnected) /** @type {any} */ (this.m_opener).focus();
    }
}
