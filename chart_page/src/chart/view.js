// What the chart draws: one plain object, made afresh by the shell for each change of data, filter or theme.
//
// All positions are decimal logarithms: x of operations per byte, y of giga operations per second. Texts are
// texts, never markup. Rows are identified by `row`, an integer that is unique in the view (in compare mode
// the shell gives a matched pair ONE row, so that both points of a pair light up together); points by `key`.

/**
 * @typedef {object} Axes
 * @property {string} nameX such as "Arithmetic intensity"
 * @property {string} measureX such as "FLOP/Byte"
 * @property {string} nameY
 * @property {string} measureY
 */

/**
 * @typedef {object} Bounds what the document proposes to show; at first without what is far from all points
 * @property {number} minX
 * @property {number} maxX
 * @property {number} minY
 * @property {number} maxY
 */

/**
 * @typedef {object} Roof
 * @property {string} key unique in the view
 * @property {string} name
 * @property {boolean} isMemory true: y = x + log10(value); false: y = log10(value)
 * @property {number} value giga units per second (not a logarithm)
 * @property {string} valueText `value` with its measure, as the page writes numbers
 * @property {boolean} selected drawn strong
 * @property {boolean} hidden not drawn
 * @property {string} description
 */

/**
 * @typedef {object} Point
 * @property {string} key unique in the view
 * @property {number} row
 * @property {string} name beside the point; a short form where there is one
 * @property {string} level such as "L1"; "" where the chart has no levels. Decides the shape
 * @property {string} levelCaption such as "L1", "DRAM", for the legend
 * @property {number} x
 * @property {number} y
 * @property {number|null} share of the program's time, a fraction; decides the area
 * @property {'memory'|'compute'|''} limitKind
 * @property {boolean|null} vectorised true: the point has a dot in its middle
 * @property {boolean} dimmed outside of the search or filter: drawn faint, not hovered, not reached by keys
 * @property {'base'|'new'|''} side '' outside of compare mode; base is hollow, new is filled
 * @property {string[]} lines of the hover card, the first is its head; may be a getter, read when shown
 */

/**
 * @typedef {object} Total of the program or of its threads
 * @property {string} name
 * @property {number} x
 * @property {number} y
 * @property {string} description
 * @property {'base'|'new'|''} [side]
 */

/**
 * @typedef {object} Unplaced a row that can't be drawn; in the lane at the lower edge, by cause
 * @property {number} row
 * @property {string} name
 * @property {string} cause
 * @property {boolean} [dimmed] outside of the search or filter: not listed, not counted
 */

/**
 * @typedef {object} Arrow of compare mode
 * @property {string} from key of the base's point
 * @property {string} to key of the new one's point
 * @property {'faster'|'slower'|'noise'|'unknown'} change
 */

/**
 * @typedef {object} Link a thin line between two points, such as from caller to callee
 * @property {string} from
 * @property {string} to
 */

/**
 * @typedef {object} View
 * @property {Axes} axes
 * @property {Bounds|null} bounds
 * @property {Roof[]} roofs
 * @property {Point[]} points
 * @property {Total[]} totals
 * @property {Unplaced[]} lanes
 * @property {Arrow[]} arrows
 * @property {Link[]} links
 * @property {'level'|'limit'} colourBy
 * @property {Array<'memory'|'compute'|'none'>} without kinds of limits whose points are dimmed
 * @property {string} zoom what is shown at first, as onZoom has told it; "" for the whole
 * @property {number|null} pinned row; also emphasised while another is hovered
 * @property {number|null} hovered row (of the table, or of the chart's own onHover)
 * @property {string} message in the middle where no point is drawn; may have several lines; else ""
 * @property {string} title of the saved picture
 * @property {string} subtitle of the saved picture; ""
 * @property {(id: string, ...args: (string|number)[]) => string} texts
 */

/**
 * @typedef {object} Callbacks
 * @property {(row: number|null) => void} onHover the shell marks the row in its table; need not call back
 * @property {(row: number|null) => void} onPin the shell answers with update() or highlight()
 * @property {(roofKey: string) => void} onRoof a roof was clicked: the shell toggles `selected`
 * @property {(kind: 'memory'|'compute'|'none') => void} onLimit a kind of the legend was pressed: the shell
 *     toggles its place in `without`
 * @property {(zoom: string) => void} onZoom the view has come to rest: its text, "" for the whole
 */

/**
 * @typedef {object} Chart
 * @property {(view: View) => void} update draws another view; the zoom stays unless axes, `bounds` or the
 *     extent of the points changed; without a zoom the whole is fitted to the roofs
 * @property {(hovered: number|null, pinned: number|null) => void} highlight cheap: changes the emphasis alone
 * @property {() => void} resetZoom
 * @property {(zoom: string) => void} zoomTo shows what onZoom has told
 * @property {() => string} exportSvg a standalone SVG text of what is seen
 * @property {() => Promise<Blob>} exportPng the same at twice the size
 */

export {};
