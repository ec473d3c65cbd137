// The card with a point's or a roof's figures beside the cursor.
import { html } from './dom.js';

const AWAY = 14; // pixels from the cursor

export class HoverCard {
    /** @param {HTMLElement} container */
    constructor(container) {
        this.m_container = container;
        this.m_card = html('div', { class: 'chart-card', role: 'tooltip', hidden: '' });
        container.append(this.m_card);
    }

    /**
     * @param {string[]} lines the first is the head
     * @param {number} x pixels in the container
     * @param {number} y
     */
    show(lines, x, y) {
        const [head, ...rest] = lines;
        this.m_card.replaceChildren(
            html('strong', {}, head ?? ''),
            ...rest.map((line) => html('div', {}, line)),
        );
        this.m_card.hidden = false;
        const { offsetWidth: width, offsetHeight: height } = this.m_card;
        const { clientWidth: roomX, clientHeight: roomY } = this.m_container;
        const left = x + AWAY + width > roomX ? x - AWAY - width : x + AWAY;
        const top = y + AWAY + height > roomY ? y - AWAY - height : y + AWAY;
        this.m_card.style.left = `${Math.max(0, Math.min(left, roomX - width))}px`;
        this.m_card.style.top = `${Math.max(0, Math.min(top, roomY - height))}px`;
    }

    hide() {
        this.m_card.hidden = true;
    }
}
