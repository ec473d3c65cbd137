// The bar between chart and lists, dragged or moved by the arrow keys.
import { make } from './dom.js';
import { texts } from './texts.js';

const LEAST = 320;  // pixels that the lists keep; the chart keeps as much
const STEP = 24;

/** @param {() => HTMLElement} side the element on the right of the bar */
export function createSplitter(side) {
    const setWidth = (/** @type {number} */ width) => {
        const { parentElement } = side();
        const most = Math.max(LEAST, parentElement.clientWidth - LEAST);
        parentElement.style.setProperty('--side', `${Math.min(most, Math.max(LEAST, width))}px`);
    };
    /** Says the lists' width, in pixels, to those who can't see it. */
    const tell = () => {
        const { parentElement, offsetWidth } = side();
        const max = Math.max(LEAST, parentElement.clientWidth - LEAST);
        const said = { min: LEAST, max, now: offsetWidth };
        for (const [name, value] of Object.entries(said)) element.setAttribute(`aria-value${name}`, value);
    };
    const element = make('div.splitter', {
        role: 'separator', tabIndex: 0, 'aria-orientation': 'vertical', 'aria-label': texts('page_splitter'),
        title: texts('page_splitter'),
        onkeydown: (event) => {
            const step = { ArrowLeft: STEP, ArrowRight: -STEP }[event.key];
            if (!step) return;
            event.preventDefault();
            setWidth(side().offsetWidth + step);
        },
        ondblclick: () => side().parentElement.style.removeProperty('--side'),
        onpointerdown: (event) => element.setPointerCapture(event.pointerId),
        onpointermove: (event) => {
            if (!element.hasPointerCapture(event.pointerId)) return;
            setWidth(side().getBoundingClientRect().right - event.clientX);
        },
    });
    new ResizeObserver(tell).observe(side());
    return element;
}
