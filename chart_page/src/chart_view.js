// Makes the object that the chart draws out of the rows at the chosen configuration.
import { filterOf, roofSide, roofsOf } from './model.js';
import { number, percent, plain, texts } from './texts.js';

const SIDE_NAMES = ['base', 'new'];
const LINE = 60;

/**
 * @param {{sides: import('./model.js').Side[], items: import('./model.js').Item[]}} scene
 * @param {import('./store.js').State} state @param {string} title of the exported picture
 * @returns {import('./chart/view.js').View}
 */
export function chartView(scene, state, title) {
    const { sides, items } = scene;
    const documents = sides.flatMap((side) => side.levels.map(({ chart }) => chart.document));
    const drawn = documents.filter((document) => !document.noDataMessage);
    const axes = drawn[0] ?? documents[0];
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
                key, id: String(roof.id), name: plain(roof.name), isMemory: roof.isMem, value,
                measure: roof.measure,
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
        pinned: null,
        hovered: null,
        message: drawn.length ? '' : messageOf(documents[0]),
        title,
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
            if (places.has(place)) places.get(place).captions.push(point.caption);
            else places.set(place, { point, captions: [point.caption] });
        }
        return [...places.values()].map(({ point, captions }) => {
            const { result } = sides[at];
            return {
                key: pointKey(at, row, point.level), row: item.row, name: row.name, level: point.level,
                levelCaption: captions.join(', '), x: point.x, y: point.y, share: row.share,
                limitKind: row.limitKind, limit: row.limit, fraction: row.fraction,
                vectorised: result.rows.vectorised[row.index], dimmed,
                side: sides.length > 1 ? SIDE_NAMES[at] : '',
                // Made when asked: thousands of cards aren't read.
                get lines() {
                    return cardLines(item, row, point, captions, sides[at], axes);
                },
            };
        });
    });
}

function cardLines(item, row, point, captions, side, axes) {
    const level = captions.filter(Boolean).join(', ');
    const { operations } = side.result.rows;
    const limit = row.limit ? texts('page_card_limit', row.limit, percent(row.fraction))
        : texts('page_card_no_limit');
    return [
        row.name,
        item.pair && texts(side.number ? 'page_card_new' : 'page_card_base', side.result.program),
        row.location,
        level && texts('page_card_level', level),
        `${number(10 ** point.x)} ${axes.measureX}`,
        `${number(10 ** point.y)} ${axes.measureY}`,
        operations[row.index] === 'int' ? texts('page_card_by_int', limit) : limit,
        row.speedUp > 0 && texts('page_card_speed_up', number(row.speedUp)),
        texts(side.total ? 'page_card_time_total' : 'page_card_time', number(row.time), percent(row.share)),
        row.calls !== null && texts('page_card_calls', number(row.calls)),
        item.pair && texts('page_card_change', changeText(item.pair)),
    ].filter(Boolean);
}

/** Such as "1.5 times faster". */
export function changeText({ change, speedUp }) {
    if (speedUp === null) return texts('page_change_unknown');
    return texts(`page_change_${change}`, number(speedUp >= 1 ? speedUp : 1 / speedUp));
}

function totalsOf(side, isComparison) {
    const seen = new Set();
    return side.levels.flatMap(({ chart }) => chart.document.programTotal ?? []).filter((total) => {
        const place = [total.name, total.x, total.y].join(' ');
        return !seen.has(place) && seen.add(place);
    }).map((total) => ({
        name: plain(total.name), x: total.x, y: total.y, description: plain(total.descr ?? ''),
        side: isComparison ? SIDE_NAMES[side.number] : '',
    }));
}

function lanesOf(item, dimmed) {
    const row = item.sides.find((side) => side?.cause);
    return row ? [{ row: item.row, name: row.name, cause: row.cause, dimmed }] : [];
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
