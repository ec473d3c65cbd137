// Tells what shapes, colours and sizes mean; only those that occur in the view.
import { svg, textWidth, translate } from './dom.js';
import { hasHole, LEAST_SHARE, levelSlots, limitInk, outline, radiusOf } from './marks.js';
import { arrowPath, CHANGES } from './overlays.js';

/** @typedef {import('./view.js').View} View */
/** @typedef {{mark: Node, width: number, text: string}} Item width: of the mark */

const LINE = 24; // pixels; room for the largest of the sizes
const GAP = 18;
const SIZE_STEPS = [0.2, 0.1, 0.05, 0.03];
const SIZES = 2; // of them that are shown

/** @param {View} view @returns {Item[]} */
function makeItems(view) {
    const { texts, points } = view;
    const item = (
        /** @type {string} */ className,
        /** @type {number} */ slot,
        /** @type {string} */ text,
        radius = 5.5,
        hole = false,
    ) => ({
        mark: svg('path', { class: `point ${className}`, d: `M0,0${outline(slot, radius, hole)}` }),
        width: 2 * Math.max(6, radius),
        text,
    });
    const items = [];

    const byLimit = view.colourBy === 'limit';
    const slots = levelSlots(view);
    if (slots.size > 1 || (!byLimit && !slots.has('')))
        for (const [level, slot] of slots) {
            // A point that stands for several levels has the captions of all; the shortest is the level's
            // own.
            const caption =
                points
                    .filter((point) => point.level === level)
                    .reduce(
                        (least, { levelCaption: other }) =>
                            least && least.length <= other.length ? least : other,
                        '',
                    ) || level;
            if (caption) items.push(item(byLimit ? 'ink-neutral' : `ink-${slot}`, slot, caption));
        }
    if (byLimit)
        for (const kind of /** @type {const} */ (['memory', 'compute', '']))
            if (points.some((point) => point.limitKind === kind)) {
                const slot = slots.size === 1 ? [...slots.values()][0] : 0;
                items.push(item(limitInk(kind), slot, texts(`page_chart_legend_${kind || 'no_limit'}`)));
            }

    for (const side of /** @type {const} */ (['base', 'new']))
        if (points.some((point) => point.side === side))
            items.push(item(`ink-neutral ${side}`, 0, texts(`page_chart_legend_${side}`)));
    for (const change of CHANGES) {
        if (!view.arrows.some((arrow) => arrow.change === change)) continue;
        const d = arrowPath({ x: -14, y: 0, radius: 0 }, { x: 14, y: 0, radius: 0 }, change === 'faster');
        items.push({
            mark: svg('path', { class: `arrow ${change}`, d }),
            width: 28,
            text: texts(`page_chart_change_${change}`),
        });
    }
    if (points.some(hasHole))
        items.push(item('ink-neutral', 0, texts('page_chart_legend_vectorised'), 5.5, true));

    const greatest = Math.max(0, ...points.map((point) => point.share ?? 0));
    for (const share of SIZE_STEPS.filter((step) => step <= greatest).slice(0, SIZES))
        items.push(
            item(
                'ink-neutral',
                0,
                texts('page_chart_legend_share', Math.round(share * 100)),
                radiusOf(share),
            ),
        );
    if (greatest > LEAST_SHARE && points.some((point) => (point.share ?? 0) < LEAST_SHARE))
        items.push(
            item(
                'ink-neutral',
                0,
                texts('page_chart_legend_least', Math.round(LEAST_SHARE * 100)),
                radiusOf(0),
            ),
        );

    if (view.totals.length) {
        const mark = svg('path', { class: 'total', d: 'M0,-7L7,0L0,7L-7,0Z' });
        items.push({ mark, width: 14, text: texts('page_chart_legend_total') });
    }
    return items;
}

/**
 * Fills the group and tells its height.
 * @param {SVGGElement} group
 * @param {View} view
 * @param {number} width pixels
 * @param {number} taken pixels at the right of the first line
 * @returns {number} pixels
 */
export function drawLegend(group, view, width, taken) {
    const items = makeItems(view);
    let [x, middle] = [0, LINE / 2];
    const parts = items.flatMap((item) => {
        const needed = item.width + 6 + textWidth(item.text);
        const room = middle < LINE ? width - taken : width;
        if (x > 0 && x + needed > room) [x, middle] = [0, middle + LINE];
        const left = x;
        x += needed + GAP;
        return [
            svg('g', { transform: translate(left + item.width / 2, middle) }, item.mark),
            svg(
                'text',
                { class: 'legend-text', x: left + item.width + 6, y: middle, dy: '0.35em' },
                item.text,
            ),
        ];
    });
    group.replaceChildren(...parts);
    return items.length ? middle + LINE / 2 : 0;
}
