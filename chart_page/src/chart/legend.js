// Tells what shapes, colours and sizes mean; only those that occur in the view. Kinds of limits are buttons
// that leave their rows out.
import { svg, textWidth, translate } from './dom.js';
import { hasHole, LEAST_SHARE, levelSlots, limitInk, outline, radiusOf } from './marks.js';
import { arrowPath, CHANGES, TOTAL } from './overlays.js';

/** @typedef {import('./view.js').View} View */
/** @typedef {{mark: Node, width: number, text: string, kind?: string}} Item width: of the mark */

const LINE = 24; // pixels; room for the largest of the sizes
const GAP = 18;
const SIZE_STEPS = [0.2, 0.1, 0.05, 0.03];
const SIZES = 2; // of them that are shown
const SIDES = /** @type {const} */ (['base', 'new']);

/**
 * @param {string} className
 * @param {number} slot
 * @param {string} text
 * @param {{radius?: number, hole?: boolean}} [look]
 * @returns {Item}
 */
const pointItem = (className, slot, text, { radius = 5.5, hole = false } = {}) => ({
    mark: svg('path', { class: `point ${className}`, d: `M0,0${outline(slot, radius, hole)}` }),
    width: 2 * Math.max(6, radius),
    text,
});

/**
 * A point that stands for several levels has the captions of all; the shortest is the level's own.
 * @param {View} view
 * @param {string} level
 */
const levelCaption = ({ points }, level) =>
    points
        .filter((point) => point.level === level)
        .map((point) => point.levelCaption)
        .reduce((least, other) => (least && least.length <= other.length ? least : other), '') || level;

/** @param {View} view @returns {Item[]} */
function levelItems(view) {
    const isByLimit = view.colourBy === 'limit';
    const slots = levelSlots(view);
    if (slots.size < 2 && (isByLimit || slots.has(''))) return [];
    return [...slots]
        .map(([level, slot]) =>
            pointItem(isByLimit ? 'ink-neutral' : `ink-${slot}`, slot, levelCaption(view, level)),
        )
        .filter(({ text }) => text);
}

/** @param {View} view @returns {Item[]} */
function limitItems(view) {
    const isByLimit = view.colourBy === 'limit';
    if (!isByLimit && !view.without.length) return [];
    const slots = [...levelSlots(view).values()];
    return /** @type {const} */ (['memory', 'compute', ''])
        .filter((kind) => view.points.some((point) => point.limitKind === kind)
            || view.without.includes(kind || 'none'))
        .map((kind) => ({
            ...pointItem(
                isByLimit ? limitInk(kind) : 'ink-neutral',
                slots.length === 1 ? slots[0] : 0,
                view.texts(`page_chart_legend_${kind || 'no_limit'}`),
            ),
            kind: kind || 'none',
        }));
}

/** @param {View} view @returns {Item[]} */
function comparisonItems({ points, arrows, texts }) {
    const sides = SIDES.filter((side) => points.some((point) => point.side === side));
    const changes = CHANGES.filter((change) => arrows.some((arrow) => arrow.change === change));
    const shaft = /** @type {const} */ ([
        { x: -14, y: 0, radius: 0 },
        { x: 14, y: 0, radius: 0 },
    ]);
    return [
        ...sides.map((side) => pointItem(`ink-neutral ${side}`, 0, texts(`page_chart_legend_${side}`))),
        ...changes.map((change) => ({
            mark: svg('path', { class: `arrow ${change}`, d: arrowPath(...shaft, change === 'faster') }),
            width: 28,
            text: texts(`page_chart_change_${change}`),
        })),
    ];
}

/** @param {View} view @returns {Item[]} */
function sizeItems({ points, texts }) {
    const greatest = points.reduce((most, point) => Math.max(most, point.share ?? 0), 0);
    const item = (/** @type {string} */ id, /** @type {number} */ share, radius = radiusOf(share)) =>
        pointItem('ink-neutral', 0, texts(id, Math.round(share * 100)), { radius });
    const items = SIZE_STEPS.filter((step) => step <= greatest)
        .slice(0, SIZES)
        .map((share) => item('page_chart_legend_share', share));
    if (greatest > LEAST_SHARE && points.some((point) => (point.share ?? 0) < LEAST_SHARE))
        items.push(item('page_chart_legend_least', LEAST_SHARE, radiusOf(0)));
    return items;
}

/** @param {View} view @returns {Item[]} */
const totalItems = ({ totals, texts }) =>
    /** @type {const} */ (['', ...SIDES])
        .filter((side) => totals.some((total) => (total.side ?? '') === side))
        .map((side) => ({
            mark: svg('path', { class: `total ${side}`, d: TOTAL }),
            width: 16,
            text: texts(`page_chart_legend_total${side && `_${side}`}`),
        }));

/** @param {View} view @returns {Item[]} */
const makeItems = (view) => [
    ...levelItems(view),
    ...limitItems(view),
    ...comparisonItems(view),
    ...(view.points.some(hasHole)
        ? [pointItem('ink-neutral', 0, view.texts('page_chart_legend_vectorised'), { hole: true })]
        : []),
    ...sizeItems(view),
    ...totalItems(view),
];

/**
 * An entry as a button that is pressed while its rows are shown.
 * @param {Item} item @param {View} view @param {Node[]} parts @param {(kind: string) => void} onLimit
 */
function filterButton({ kind = '', text }, view, parts, onLimit) {
    const isOut = view.without.some((other) => other === kind);
    const button = svg('g', {
        class: isOut ? 'legend-button out' : 'legend-button', 'data-kind': kind, role: 'button', tabindex: 0,
        'aria-pressed': !isOut, 'aria-label': text,
    }, svg('title', {}, view.texts('page_chart_legend_filter')), ...parts);
    button.addEventListener('click', () => onLimit(kind));
    button.addEventListener('keydown', (/** @type {KeyboardEvent} */ event) => {
        if (event.key !== 'Enter' && event.key !== ' ') return;
        event.preventDefault();
        event.stopPropagation();
        onLimit(kind);
    });
    return button;
}

/**
 * Fills the group and tells its height.
 * @param {SVGGElement} group
 * @param {View} view
 * @param {number} width pixels
 * @param {number} taken pixels at the right of the first line
 * @param {(kind: string) => void} onLimit a kind of limits was pressed
 * @returns {number} pixels
 */
export function drawLegend(group, view, width, taken, onLimit) {
    const items = makeItems(view);
    const focused = group.querySelector(':focus-visible')?.getAttribute('data-kind');
    let [x, middle] = [0, LINE / 2];
    const parts = items.flatMap((item) => {
        const needed = item.width + 6 + textWidth(item.text);
        const room = middle < LINE ? width - taken : width;
        if (x > 0 && x + needed > room) [x, middle] = [0, middle + LINE];
        const left = x;
        x += needed + GAP;
        const drawn = [
            svg('g', { transform: translate(left + item.width / 2, middle) }, item.mark),
            svg(
                'text',
                { class: 'legend-text', x: left + item.width + 6, y: middle, dy: '0.35em' },
                item.text,
            ),
        ];
        if (!item.kind) return drawn;
        const place = { x: left - 4, y: middle - LINE / 2 + 1, width: needed + 8, height: LINE - 2, rx: 4 };
        const hit = svg('rect', { class: 'legend-hit', ...place });
        return [filterButton(item, view, [hit, ...drawn], onLimit)];
    });
    group.replaceChildren(...parts);
    if (focused) /** @type {any} */ (group.querySelector(`[data-kind=${focused}]`))?.focus();
    return items.length ? middle + LINE / 2 : 0;
}
