// The card with a point's or a roof's figures beside the cursor.
import { make } from '../dom.js';
import { visible } from './dom.js';

const AWAY = 14; // pixels from the cursor

export class HoverCard {
    /** @param {HTMLElement} container */
    constructor(container) {
        this.m_container = container;
        this.m_card = make('div.chart-card', { role: 'tooltip', hidden: true });
        container.append(this.m_card);
    }

    /**
     * @param {string[]} lines the first is the head
     * @param {number} x pixels in the container
     * @param {number} y
     */
    show(lines, x, y) {
        const [head = '', ...rest] = lines.map(visible);
        this.m_card.replaceChildren(
            make('strong', null, head),
            ...rest.map((line) => make('div', null, line)),
        );
        this.m_card.hidden = false;
        const { offsetWidth: width, offsetHeight: height } = this.m_card;
        const frame = this.m_container.getBoundingClientRect();
        const left = placed(x, width, -frame.left, Math.min(frame.width, innerWidth - frame.left));
        const top = placed(y, height, -frame.top, Math.min(frame.height, innerHeight - frame.top));
        this.m_card.style.left = `${left}px`;
        this.m_card.style.top = `${top}px`;
    }

    hide() {
        this.m_card.hidden = true;
    }
}

/**
 * Where the card begins along an axis: after the cursor, else before it; in the chart and in sight of the
 * window.
 * @param {number} cursor pixels in the chart
 * @param {number} length of the card
 * @param {number} windowStart
 * @param {number} end of what is in sight of the chart
 */
function placed(cursor, length, windowStart, end) {
    const start = cursor + AWAY + length > end ? cursor - AWAY - length : cursor + AWAY;
    return Math.max(0, windowStart, Math.min(start, end - length));
}
