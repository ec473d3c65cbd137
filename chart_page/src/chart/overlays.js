// What lies over the points: program totals, arrows of a comparison, links, and the emphasised rows.
import { px, shorten, svg, textWidth, translate } from './dom.js';
import { makeBox } from './labels.js';
import { pointClass } from './marks.js';
import { markPath } from './points.js';

/** @typedef {import('./view.js').View} View */
/** @typedef {import('./points.js').Mark} Mark */
/** @typedef {import('./points.js').PointLayer} PointLayer */

export const CHANGES = /** @type {const} */ (['faster', 'slower', 'noise', 'unknown']);
const HEAD = 7; // pixels: length of an arrow's head
const SHORTEST = 4; // an arrow between rims that are nearer isn't drawn
const MANY = 300; // arrows from which labels don't mind them
const TOTAL_ROOM = 200;
/** The outline of a total. */
export const TOTAL = 'M0,-8L8,0L0,8L-8,0Z';

/** @param {import('./view.js').Total} total @param {View['texts']} texts */
export const totalName = ({ name }, texts) =>
    name ? texts('page_chart_total', name) : texts('page_chart_legend_total');

/**
 * From rim to rim; the head is filled for faster, open for all others.
 * @param {{x: number, y: number, radius: number}} from
 * @param {{x: number, y: number, radius: number}} to
 * @param {boolean} filled
 */
export function arrowPath(from, to, filled) {
    const [dx, dy] = [to.x - from.x, to.y - from.y];
    const length = Math.hypot(dx, dy);
    if (length - from.radius - to.radius < SHORTEST) return '';
    const [cos, sin] = [dx / length, dy / length];
    const [x1, y1] = [from.x + cos * from.radius, from.y + sin * from.radius];
    const [x2, y2] = [to.x - cos * (to.radius + 1), to.y - sin * (to.radius + 1)];
    const wing = (/** @type {number} */ side) =>
        `${px(x2 - HEAD * cos + side * 0.5 * HEAD * sin)},${px(y2 - HEAD * sin - side * 0.5 * HEAD * cos)}`;
    const shaft = `M${px(x1)},${px(y1)}L${px(x2)},${px(y2)}`;
    return filled
        ? `${shaft}M${wing(1)}L${px(x2)},${px(y2)}L${wing(-1)}Z`
        : `${shaft}M${wing(1)}L${px(x2)},${px(y2)}L${wing(-1)}`;
}

export class Overlays {
    /**
     * @param {SVGGElement} under below the points
     * @param {SVGGElement} over above them
     * @param {PointLayer} points
     */
    constructor(under, over, points) {
        this.m_points = points;
        this.m_links = svg('path', { class: 'link' });
        this.m_arrows = CHANGES.map((change) => svg('path', { class: `arrow ${change}` }));
        this.m_totals = svg('g', { class: 'totals' });
        this.m_emphasis = svg('g', { class: 'emphasis' });
        under.append(this.m_links, ...this.m_arrows);
        over.append(this.m_totals, this.m_emphasis);
        /** @type {View|null} */
        this.m_view = null;
    }

    /** @param {View} view */
    setView(view) {
        this.m_view = view;
        this.m_totals.replaceChildren(
            ...view.totals.map((total, i) =>
                svg('path', {
                    class: `total ${total.side === 'base' ? 'base' : ''}`,
                    d: TOTAL,
                    'data-total': i,
                }),
            ),
        );
    }

    /**
     * Marks of both ends where both are shown.
     * @param {{from: string, to: string}} pair
     * @returns {[Mark, Mark]|null}
     */
    m_ends({ from, to }) {
        const [a, b] = [this.m_points.byKey.get(from), this.m_points.byKey.get(to)];
        return a && b ? [a, b] : null;
    }

    /**
     * @param {import('./scales.js').Mapping} map
     * @param {import('./labels.js').LabelPlacer} placer
     * @param {SVGGElement} labels
     */
    draw(map, placer, labels) {
        const view = this.m_view;
        if (!view) return;
        this.m_links.setAttribute(
            'd',
            view.links
                .map((link) => {
                    const ends = this.m_ends(link);
                    return ends ? `M${px(ends[0].x)},${px(ends[0].y)}L${px(ends[1].x)},${px(ends[1].y)}` : '';
                })
                .join(''),
        );
        CHANGES.forEach((change, i) => {
            const arrows = view.arrows
                .filter((arrow) => arrow.change === change)
                .map((arrow) => {
                    const ends = this.m_ends(arrow);
                    if (ends && view.arrows.length < MANY)
                        placer.addLine({ x1: ends[0].x, y1: ends[0].y, x2: ends[1].x, y2: ends[1].y });
                    return ends && !ends[1].point.dimmed
                        ? arrowPath(ends[0], ends[1], change === 'faster')
                        : '';
                });
            this.m_arrows[i].setAttribute('d', arrows.join(''));
        });
        const places = view.totals.map(({ x, y }) => [map.ax * x + map.bx, map.ay * y + map.by]);
        places.forEach(([x, y], i) => {
            this.m_totals.children[i].setAttribute('transform', translate(x, y));
            placer.block(makeBox(x, y, 16, 16));
        });
        const texts = view.totals.flatMap((total, i) => {
            const [x, y] = places[i];
            const name = shorten(totalName(total, view.texts), TOTAL_ROOM, 12, 600);
            const place = placer.place(placesAround(x, y, 9, textWidth(name, 12, 600) + 4));
            return place
                ? [
                      svg(
                          'text',
                          {
                              class: 'total-label',
                              x: px(place.box.x),
                              y: px(place.box.y),
                              dy: '0.35em',
                              'text-anchor': 'middle',
                          },
                          name,
                      ),
                  ]
                : [];
        });
        labels.replaceChildren(...texts);
    }

    /**
     * Draws rows once more, over all others, their points joined.
     * @param {{row: number, pinned: boolean}[]} rows
     */
    emphasise(rows) {
        const view = this.m_view;
        this.m_emphasis.replaceChildren(
            ...rows.flatMap(({ row, pinned }) => {
                const marks = [...(this.m_points.byRow.get(row) ?? [])].sort((a, b) => a.point.x - b.point.x);
                if (!view || marks.length === 0) return [];
                const arrow = view.arrows.length > 0;
                const joined = arrow
                    ? ''
                    : `M${marks.map((mark) => `${px(mark.x)},${px(mark.y)}`).join('L')}`;
                return [
                    svg('path', { class: 'joint', d: joined }),
                    ...marks.map((mark) =>
                        svg('circle', {
                            class: pinned ? 'ring pinned' : 'ring',
                            r: mark.radius + 4,
                            cx: px(mark.x),
                            cy: px(mark.y),
                        }),
                    ),
                    ...this.m_arrowsOf(marks),
                    ...marks.map((mark) =>
                        svg('path', {
                            class: pointClass(mark.point, view.colourBy, mark.slot).replace(' dimmed', ''),
                            d: markPath(mark),
                        }),
                    ),
                ];
            }),
        );
    }

    /** @param {Mark[]} marks */
    m_arrowsOf(marks) {
        const keys = new Set(marks.map((mark) => mark.point.key));
        return (this.m_view?.arrows ?? [])
            .filter((arrow) => keys.has(arrow.from))
            .flatMap((arrow) => {
                const ends = this.m_ends(arrow);
                return ends
                    ? [
                          svg('path', {
                              class: `arrow strong ${arrow.change}`,
                              d: arrowPath(ends[0], ends[1], arrow.change === 'faster'),
                          }),
                      ]
                    : [];
            });
    }
}

/**
 * Places of a text beside a mark: right, left, above, below, then the corners.
 * @param {number} x
 * @param {number} y
 * @param {number} radius
 * @param {number} width
 */
export function* placesAround(x, y, radius, width) {
    const [beside, above, height] = [radius + 3 + width / 2, radius + 9, 14];
    const around = [
        [beside, 0],
        [-beside, 0],
        [0, -above],
        [0, above],
    ];
    const corners = [
        [beside, -above],
        [beside, above],
        [-beside, -above],
        [-beside, above],
    ].map(([dx, dy]) => [dx * 0.85, dy * 0.85]);
    for (const [i, [dx, dy]] of [...around, ...corners].entries())
        yield { box: makeBox(x + dx, y + dy, width, height), cost: i * 0.5 };
}
