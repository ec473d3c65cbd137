// The chart by keyboard: one stop for Tab, arrows go from point to point, plus and minus zoom.

/** @typedef {import('./points.js').Mark} Mark */
/**
 * @typedef {object} KeyTarget what the keys act on
 * @property {() => Mark[]} marks that can be reached
 * @property {() => Mark|null} current
 * @property {(mark: Mark) => void} go
 * @property {() => void} pin the current one
 * @property {() => void} leave unpins, and forgets the current one
 * @property {(dx: number, dy: number) => void} pan pixels
 * @property {(factor: number) => void} zoom
 * @property {() => void} reset
 */

const PAN = 60; // pixels
const ZOOM = 1.5;
/** @type {Record<string, [number, number]>} */
const WAYS = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };

/**
 * The nearest point in a direction; what lies aside counts as farther away.
 * @param {Mark[]} marks
 * @param {Mark} from
 * @param {[number, number]} way
 */
function neighbour(marks, from, [wayX, wayY]) {
    let best = null;
    let least = Infinity;
    for (const mark of marks) {
        const along = (mark.x - from.x) * wayX + (mark.y - from.y) * wayY;
        if (mark === from || along <= 0.01) continue;
        const distance = along + 2 * Math.abs((mark.x - from.x) * wayY + (mark.y - from.y) * wayX);
        if (distance < least) [best, least] = [mark, distance];
    }
    return best;
}

/**
 * From row to row by share of time, the greatest first.
 * @param {Mark[]} marks
 * @param {Mark|null} from
 * @param {number} step
 */
function ranked(marks, from, step) {
    const rows = [...new Map(marks.map((mark) => [mark.point.row, mark])).values()];
    const order = rows.sort((a, b) => (b.point.share ?? 0) - (a.point.share ?? 0));
    const at = from ? order.findIndex((mark) => mark.point.row === from.point.row) : -1;
    return order[at < 0 ? 0 : Math.max(0, Math.min(order.length - 1, at + step))];
}

/**
 * @param {KeyboardEvent} event
 * @param {KeyTarget} target
 * @returns {boolean} whether the key was meant for the chart
 */
export function handleKey(event, target) {
    if (event.ctrlKey || event.metaKey || event.altKey) return false;
    const way = WAYS[event.key];
    const marks = target.marks();
    const current = target.current();
    if (way && (event.shiftKey || marks.length === 0)) {
        target.pan(-way[0] * PAN, -way[1] * PAN);
        return true;
    }
    if (way || ['PageDown', 'PageUp', 'Home', 'End'].includes(event.key)) {
        if (marks.length === 0) return false;
        const steps = { PageDown: 1, PageUp: -1, Home: -Infinity, End: Infinity };
        const next =
            way && current
                ? neighbour(marks, current, way)
                : ranked(marks, current, steps[/** @type {keyof steps} */ (event.key)] ?? 0);
        if (next) target.go(next);
        return true;
    }
    switch (event.key) {
        case '+':
        case '=':
            target.zoom(ZOOM);
            return true;
        case '-':
            target.zoom(1 / ZOOM);
            return true;
        case '0':
            target.reset();
            return true;
        case 'Enter':
        case ' ':
            target.pin();
            return true;
        case 'Escape':
            target.leave();
            return true;
        default:
            return false;
    }
}
