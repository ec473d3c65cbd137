// The points: one element each, moved when the view moves, found by their place.
import { px, svg } from './dom.js';
import { hasHole, levelSlots, outline, pointClass, radiusOf } from './marks.js';

/** @typedef {import('./view.js').Point} Point */
/**
 * @typedef {object} Mark a point as it is drawn
 * @property {Point} point
 * @property {number} radius pixels
 * @property {number} slot of its level
 * @property {string} outline
 * @property {number} x pixels in the plot, of the last draw()
 * @property {number} y
 */

const REACH = 7; // pixels from a point's rim at which it is still meant
const MANY = 2000; // points from which the eye needs them fainter
const FAST = 600; // points that can be moved one by one in each frame

export class PointLayer {
    /** @param {SVGGElement} group alone in its picture */
    constructor(group) {
        this.m_group = group;
        /** @type {SVGPathElement[]} */
        this.m_elements = [];
        /** @type {import('./scales.js').Mapping|null} of the elements' own places */
        this.m_drawn = null;
        /**
         * @type {Mark[]} by share, the greatest first: drawn in this order, large ones don't cover small ones
         */
        this.marks = [];
        /** @type {Map<number, Mark[]>} */
        this.byRow = new Map();
        /** @type {Map<string, Mark>} */
        this.byKey = new Map();
    }

    /** @param {import('./view.js').View} view */
    setPoints(view) {
        const slots = levelSlots(view);
        this.marks = view.points
            .map((point) => {
                const [radius, slot] = [radiusOf(point.share), slots.get(point.level) ?? 0];
                return { point, radius, slot, outline: outline(slot, radius, hasHole(point)), x: 0, y: 0 };
            })
            .sort((a, b) => (b.point.share ?? 0) - (a.point.share ?? 0));
        this.byKey = new Map(this.marks.map((mark) => [mark.point.key, mark]));
        this.byRow = new Map();
        for (const mark of this.marks) {
            const others = this.byRow.get(mark.point.row);
            if (others) others.push(mark);
            else this.byRow.set(mark.point.row, [mark]);
        }
        this.m_fit(this.marks.length);
        this.m_drawn = null;
        this.m_group.classList.toggle('many', this.isCloud);
        this.marks.forEach(({ point, slot }, i) => {
            const element = this.m_elements[i];
            set(element, 'class', pointClass(point, view.colourBy, slot));
            set(element, 'data-row', String(point.row));
            set(element, 'data-key', point.key);
        });
    }

    /** Whether the points are so many that they hide each other and what lies below. */
    get isCloud() {
        return this.marks.length > MANY;
    }

    /** @param {number} count */
    m_fit(count) {
        const fresh = [];
        while (this.m_elements.length < count) {
            const element = svg('path');
            this.m_elements.push(element);
            fresh.push(element);
        }
        this.m_group.append(...fresh);
        for (const element of this.m_elements.splice(count)) element.remove();
    }

    /**
     * Moves the points: each one where that is fast enough or rest is true, else all at once with their
     * picture, which scales the shapes too until the next exact drawing. Their middles are exact either way.
     * @param {import('./scales.js').Mapping} map
     * @param {boolean} rest whether the view has come to rest
     */
    draw(map, rest) {
        for (const mark of this.marks) {
            mark.x = map.ax * mark.point.x + map.bx;
            mark.y = map.ay * mark.point.y + map.by;
        }
        const drawn = this.m_drawn;
        if (drawn && !rest && this.marks.length > FAST) {
            const scale = map.ax / drawn.ax;
            this.m_move(
                `translate(${map.bx - scale * drawn.bx}px, ${map.by - scale * drawn.by}px) scale(${scale})`,
            );
            return;
        }
        this.m_move('');
        if (drawn && drawn.ax === map.ax && drawn.bx === map.bx && drawn.ay === map.ay && drawn.by === map.by)
            return;
        this.m_drawn = map;
        // Not with a transform for each: the browser takes far longer to layer thousands of those than to
        // paint them.
        this.marks.forEach((mark, i) => this.m_elements[i].setAttribute('d', markPath(mark)));
    }

    /** @param {string} transform */
    m_move(transform) {
        const { style } = /** @type {SVGSVGElement} */ (this.m_group.ownerSVGElement);
        if (style.transform !== transform) style.transform = transform;
    }

    /** @param {import('./scales.js').Size} size @returns {Set<Element>} those of no use in a picture */
    outside({ width, height }) {
        const isOutside = (/** @type {Mark} */ { x, y, radius }) =>
            x < -2 * radius || y < -2 * radius || x > width + 2 * radius || y > height + 2 * radius;
        return new Set(this.m_elements.filter((_, i) => isOutside(this.marks[i])));
    }

    /**
     * The point that is meant at a place: the smallest one under it, else the one with the nearest rim.
     * @param {number} x pixels
     * @param {number} y
     * @returns {Mark|null}
     */
    pick(x, y) {
        let best = null;
        let least = REACH;
        for (let i = this.marks.length - 1; i >= 0; i--) {
            const mark = this.marks[i];
            if (mark.point.dimmed) continue;
            const [dx, dy] = [mark.x - x, mark.y - y];
            if (Math.abs(dx) > 60 || Math.abs(dy) > 60) continue;
            const distance = Math.hypot(dx, dy) - mark.radius;
            // Under the cursor: a smaller point lies over a larger one.
            const rank = distance <= 0 ? -100 + mark.radius + Math.hypot(dx, dy) / 100 : distance;
            if (rank < least) [best, least] = [mark, rank];
        }
        return best;
    }
}

/** @param {Mark} mark @returns {string} data of a path; begins at the point's exact place */
export const markPath = ({ x, y, outline: shape }) => `M${px(x)},${px(y)}${shape}`;

/** @param {Element} element @param {string} name @param {string} value */
function set(element, name, value) {
    if (element.getAttribute(name) !== value) element.setAttribute(name, value);
}
