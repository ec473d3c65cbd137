// Places texts so that none lies over another or over the edge, and few over lines and points.

/**
 * A rectangle that may be turned, by its middle, half sizes and angle.
 * @typedef {{x: number, y: number, halfWidth: number, halfHeight: number, cos: number, sin: number}} Box
 */
/** @typedef {{x1: number, y1: number, x2: number, y2: number}} Segment */

const CELL = 6; // pixels
const OVER_LINE = 4; // costs; a step along a roof is about a half
const OVER_PIXEL = 0.2;
const OVER_CELL = 4;

/**
 * @param {number} x of the middle
 * @param {number} y
 * @param {number} width
 * @param {number} height
 * @param {number} [angle] radians
 * @returns {Box}
 */
export const makeBox = (x, y, width, height, angle = 0) => ({
    x,
    y,
    halfWidth: width / 2,
    halfHeight: height / 2,
    cos: Math.cos(angle),
    sin: Math.sin(angle),
});

/**
 * Half the length of the box's shadow on an axis.
 * @param {Box} box
 * @param {number} cos
 * @param {number} sin
 */
const reach = (box, cos, sin) =>
    box.halfWidth * Math.abs(box.cos * cos + box.sin * sin) +
    box.halfHeight * Math.abs(box.cos * sin - box.sin * cos);

/** Two rectangles are apart when some side of either separates them. @param {Box} a @param {Box} b */
export function overlap(a, b) {
    const [dx, dy] = [b.x - a.x, b.y - a.y];
    for (const { cos, sin } of [a, b]) {
        if (Math.abs(dx * cos + dy * sin) >= reach(a, cos, sin) + reach(b, cos, sin)) return false;
        if (Math.abs(dy * cos - dx * sin) >= reach(a, -sin, cos) + reach(b, -sin, cos)) return false;
    }
    return true;
}

/** @param {Box} box @param {Segment} line @returns {number} pixels of the line inside the box */
export function lengthInside(box, line) {
    const turn = (/** @type {number} */ x, /** @type {number} */ y) => [
        (x - box.x) * box.cos + (y - box.y) * box.sin,
        (y - box.y) * box.cos - (x - box.x) * box.sin,
    ];
    const [x1, y1] = turn(line.x1, line.y1);
    const [x2, y2] = turn(line.x2, line.y2);
    let [from, to] = [0, 1];
    for (const [start, way, half] of [
        [x1, x2 - x1, box.halfWidth],
        [y1, y2 - y1, box.halfHeight],
    ]) {
        if (Math.abs(way) < 1e-9) {
            if (Math.abs(start) > half) return 0;
            continue;
        }
        const [a, b] = [(-half - start) / way, (half - start) / way];
        from = Math.max(from, Math.min(a, b));
        to = Math.min(to, Math.max(a, b));
    }
    return from < to ? (to - from) * Math.hypot(x2 - x1, y2 - y1) : 0;
}

/** What is already on the picture, and where a text can still go. */
export class LabelPlacer {
    /** @param {import('./scales.js').Size} size */
    constructor(size) {
        this.m_size = size;
        /** @type {Box[]} */
        this.m_boxes = [];
        /** @type {Segment[]} */
        this.m_lines = [];
        this.m_columns = Math.ceil(size.width / CELL);
        this.m_rows = Math.ceil(size.height / CELL);
        this.m_points = new Uint8Array(this.m_columns * this.m_rows);
    }

    /** Nothing may lie over it. @param {Box} box */
    block(box) {
        this.m_boxes.push(box);
    }

    /** @param {Segment} line */
    addLine(line) {
        this.m_lines.push(line);
    }

    /** @param {number} x @param {number} y @param {number} radius */
    addPoint(x, y, radius) {
        const cells = (/** @type {number} */ middle) => [
            Math.floor((middle - radius) / CELL),
            Math.floor((middle + radius) / CELL),
        ];
        const [[left, right], [top, bottom]] = [cells(x), cells(y)];
        for (let row = Math.max(0, top); row <= Math.min(this.m_rows - 1, bottom); row++)
            for (let column = Math.max(0, left); column <= Math.min(this.m_columns - 1, right); column++)
                this.m_points[row * this.m_columns + column] = 1;
    }

    /** @param {number} x @param {number} y */
    m_covers(x, y) {
        const [column, row] = [Math.floor(x / CELL), Math.floor(y / CELL)];
        return column >= 0 && row >= 0 && column < this.m_columns && row < this.m_rows
            ? this.m_points[row * this.m_columns + column]
            : 0;
    }

    /** @param {Box} box */
    m_inside(box) {
        const [w, h] = [reach(box, 1, 0), reach(box, 0, 1)];
        return box.x >= w && box.y >= h && box.x + w <= this.m_size.width && box.y + h <= this.m_size.height;
    }

    /** Cells with points under a text, along its upper and its lower half. @param {Box} box */
    m_covered(box) {
        let covered = 0;
        for (const across of [-box.halfHeight / 2, box.halfHeight / 2])
            for (let along = -box.halfWidth; along <= box.halfWidth; along += CELL)
                covered += this.m_covers(
                    box.x + along * box.cos - across * box.sin,
                    box.y + along * box.sin + across * box.cos,
                );
        return covered;
    }

    /**
     * A line that runs along a text strikes it out; one that crosses it is soon gone.
     * @param {Box} box
     * @param {Segment|null} own
     */
    m_crossed(box, own) {
        return this.m_lines.reduce((cost, line) => {
            const length = line === own ? 0 : lengthInside(box, line);
            return length > 0 ? cost + OVER_LINE + OVER_PIXEL * length : cost;
        }, 0);
    }

    /**
     * The cheapest of some places, now taken; null where there is none.
     * @template {{box: Box, cost: number}} Place
     * @param {Iterable<Place>} places cost: of this place as such
     * @param {{own?: Segment|null, limit?: number}} [rules] own: the line that the text belongs to
     * @returns {Place|null}
     */
    place(places, { own = null, limit = Infinity } = {}) {
        let best = null;
        let least = limit;
        for (const place of places) {
            if (place.cost >= least || !this.m_inside(place.box)) continue;
            if (this.m_boxes.some((box) => overlap(box, place.box))) continue;
            const cost = place.cost + this.m_crossed(place.box, own) + OVER_CELL * this.m_covered(place.box);
            if (cost >= least) continue;
            [best, least] = [place, cost];
        }
        if (best) this.block(best.box);
        return best;
    }
}
