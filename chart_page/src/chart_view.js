// Makes the object that the chart draws out of the rows at the chosen configuration.
import { axesOf, filterOf, gainText, hasLevelRoofs, levelRoof, roofSide, roofsOf } from './model.js';
import { number, percent, plain, texts } from './texts.js';

const SIDE_NAMES = ['base', 'new'];
const LINE = 60;

/**
 * @param {{sides: import('./model.js').Side[], items: import('./model.js').Item[]}} scene
 * @param {import('./store.js').State} state @param {string} title of the saved picture
 * @param {string} subtitle what it shows
 * @returns {import('./chart/view.js').View}
 */
export function chartView(scene, state, title, subtitle) {
    const { sides, items } = scene;
    const documents = sides.flatMap((side) => side.levels.map(({ chart }) => chart.document));
    const drawn = documents.filter((document) => !document.noDataMessage);
    const axes = axesOf(sides);
    const matches = filterOf(state);
    const isComparison = sides.length > 1;
    const points = items.flatMap((item) => itemPoints(item, sides, axes, !matches(item)));
    return {
        axes: {
            nameX: axes.nameX ?? '', measureX: axes.measureX ?? '', nameY: axes.nameY ?? '',
            measureY: axes.measureY ?? '',
        },
        bounds: boundsOf(drawn),
        // Without points the library's words stand alone: over roofs they couldn't be read.
        roofs: !drawn.length ? [] : roofsOf(roofSide(scene, state), state).map(({ key, roof, how }) => {
            const value = roof.val / 1e9;
            return {
                key, name: plain(roof.name), isMemory: roof.isMem, value,
                valueText: `${number(value)} ${roof.measure}`, selected: how === 'strong',
                hidden: how === 'off',
                description: plain(roof.desc ?? ''),
            };
        }),
        points,
        totals: sides.flatMap((side) => totalsOf(side, isComparison)),
        lanes: items.flatMap((item) => lanesOf(item, !matches(item))),
        arrows: isComparison ? arrowsOf(items, new Set(points.map((point) => point.key))) : [],
        links: [],
        colourBy: state.colourBy,
        without: state.without,
        zoom: state.zoom,
        pinned: null,
        hovered: null,
        message: drawn.length ? '' : messageOf(documents[0]),
        title,
        subtitle,
        texts,
    };
}

/** What the library says where nothing can be drawn. */
const messageOf = ({ noDataMessage: { title = '', descr = '' } = {} }) =>
    [title, descr].flatMap((text) => lines(plain(text))).join('\n') || texts('page_no_data');

/**
 * A text in lines of at most LINE characters, since the chart's text doesn't break by itself.
 * @param {string} text
 */
const lines = (text) => text.split(/\s+/).filter(Boolean).reduce((done, word) => {
    const longer = done.length ? `${done.at(-1)} ${word}` : word;
    return done.length && longer.length <= LINE ? [...done.slice(0, -1), longer] : [...done, word];
}, /** @type {string[]} */ ([]));

function boundsOf(documents) {
    const all = (key) => documents.map((document) => document[key]).filter(Number.isFinite);
    if (!all('minX').length) return null;
    return {
        minX: Math.min(...all('minX')), maxX: Math.max(...all('maxX')),
        minY: Math.min(...all('minY')), maxY: Math.max(...all('maxY')),
    };
}

const pointKey = (side, row, level) => `${side}:${row.index}:${level}`;

/** The points of an item; levels that land on one place are one point. */
function itemPoints(item, sides, axes, dimmed) {
    return item.sides.flatMap((row, at) => {
        if (!row) return [];
        const places = new Map();
        for (const point of row.points) {
            if (!point) continue;
            const place = `${point.x} ${point.y}`;
            if (places.has(place)) places.get(place).push(point);
            else places.set(place, [point]);
        }
        return [...places.values()].map((points) => {
            const [point] = points;
            const { result } = sides[at];
            return {
                key: pointKey(at, row, point.level), row: item.row, name: row.short,
                level: point.level,
                levelCaption: points.map(({ caption }) => caption).join(', '),
                x: point.x, y: point.y, share: row.share,
                limitKind: row.limitKind,
                vectorised: result.rows.vectorised[row.index], dimmed,
                side: sides.length > 1 ? SIDE_NAMES[at] : '',
                // Made when asked: thousands of cards aren't read.
                get lines() {
                    return cardLines(item, row, points, sides[at], axes);
                },
            };
        });
    });
}

/** The library's verdict on a row, and of what it is where that isn't the point. */
function limitText(row, result) {
    if (!row.limit) return texts('page_card_no_limit');
    const limit = texts('page_card_limit', row.limit, percent(row.fraction));
    const said = result.rows.operations[row.index] === 'int' ? texts('page_card_by_int', limit) : limit;
    // Beside the roof of a level it has to be told that this one isn't of a level.
    const of = [
        hasLevelRoofs(result, row.index) && texts('page_verdict_core'),
        row.withCallees && row.doubt,
    ].filter(Boolean);
    return of.length ? `${said} (${of.join(', ')})` : said;
}

/** A point's memory level with how much of that level's own roof the row reaches. */
function levelText({ level, caption }, result, { index, withCallees, doubt }) {
    const roof = levelRoof(result, result.levels.find(({ option }) => option === level), index);
    const text = texts('page_card_level', caption);
    if (!roof) return text;
    const reached = texts('page_card_limit', roof.roof, percent(roof.fraction));
    return `${text} (${[reached, withCallees && doubt].filter(Boolean).join(', ')})`;
}

/** The lines of the hover card. @param {import('./model.js').LevelPoint[]} points on one place */
function cardLines(item, row, points, { result, number: side }, axes) {
    const [{ x, y }] = points;
    return [
        row.name,
        item.pair && texts(side ? 'page_card_new' : 'page_card_base', result.program),
        row.location,
        ...points.filter(({ caption }) => caption).map((point) => levelText(point, result, row)),
        `${number(10 ** x)} ${axes.measureX}`,
        `${number(10 ** y)} ${axes.measureY}`,
        limitText(row, result),
        gainText(row),
        row.doubt && !row.withCallees && texts('page_remark', row.doubt),
        texts(row.total ? 'page_card_time_total' : 'page_card_time', number(row.time), percent(row.share)),
        row.calls !== null && texts('page_card_calls', number(row.calls)),
        item.pair && texts('page_card_change', changeText(item.pair)),
    ].filter(Boolean);
}

/** Such as "1.5 times faster". */
export function changeText({ change, speedUp }) {
    if (speedUp === null) return texts('page_change_unknown');
    return texts(`page_change_${change}`, number(speedUp >= 1 ? speedUp : 1 / speedUp));
}

/** A name or a cause with its side of the comparison. */
const ofSide = (side, name) => {
    const caption = texts(side ? 'page_new' : 'page_base');
    return name ? texts('page_of_side', caption, name) : caption;
};

function totalsOf(side, isComparison) {
    const seen = new Set();
    return side.levels.flatMap(({ chart }) => chart.document.programTotal ?? []).filter((total) => {
        const place = [total.name, total.x, total.y].join(' ');
        return !seen.has(place) && seen.add(place);
    }).map((total) => ({
        name: isComparison ? ofSide(side.number, plain(total.name)) : plain(total.name),
        x: total.x, y: total.y, description: plain(total.descr ?? ''),
        side: isComparison ? SIDE_NAMES[side.number] : '',
    }));
}

/** A row is once in the lane; where its sides differ, the entry says which side has what cause. */
function lanesOf(item, dimmed) {
    const causes = item.sides.map((side) => side?.cause);
    const at = causes.findIndex(Boolean);
    if (at < 0) return [];
    const { name, cause } = item.sides[at];
    const entry = { row: item.row, name, cause, dimmed };
    if (!causes.every(Boolean)) return [{ ...entry, name: ofSide(at, name) }];
    if (causes.every((each) => each === cause)) return [entry];
    return [{ ...entry, cause: causes.map((each, side) => ofSide(side, each)).join('; ') }];
}

/** From each point of the base to that of the same level of the new one. */
function arrowsOf(items, keys) {
    return items.filter((item) => item.pair).flatMap(({ sides: [base, next], pair }) =>
        base.points.filter(Boolean).map(({ level }) => ({
            from: pointKey(0, base, level), to: pointKey(1, next, level), change: pair.change,
        })).filter(({ from, to }) => keys.has(from) && keys.has(to)));
}

/**
 * The lines of the pinned item: between its points of all levels, from its caller and to what it calls.
 * @param {import('./model.js').Item|null} item
 * @param {import('./chart/view.js').View} view @param {import('./model.js').Side[]} sides
 */
export function linksOf(item, view, sides) {
    if (!item) return [];
    const keys = new Set(view.points.map((point) => point.key));
    return item.sides.flatMap((row, at) => {
        if (!row) return [];
        const { rows } = sides[at];
        const levels = row.points.filter(Boolean).map((point) => pointKey(at, row, point.level));
        const steps = levels.slice(1).map((to, i) => ({ from: levels[i], to }));
        const calls = [
            ...(row.parent === null ? [] : [[rows[row.parent], row]]),
            ...rows.filter((callee) => callee.parent === row.index).map((callee) => [row, callee]),
        ];
        const tree = calls.flatMap(([caller, callee]) => callee.points.flatMap((point, i) =>
            (point && caller.points[i] ? [{
                from: pointKey(at, caller, point.level), to: pointKey(at, callee, point.level),
            }] : [])));
        return [...steps, ...tree].filter(({ from, to }) => keys.has(from) && keys.has(to));
    });
}
