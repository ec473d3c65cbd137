// Makes what the page shows out of model and state: the rows of each result at the chosen configuration.
import { configurations, offers, readGroups, select } from './options.js';
import { shortNames } from './short_name.js';
import { fold, number, plain, texts } from './texts.js';

/**
 * @typedef {object} LevelPoint a row at one memory level
 * @property {string} level option value; "" without a choice of levels
 * @property {string} caption
 * @property {number} x decimal logarithms
 * @property {number} y
 * @property {number|null} traffic in GB
 */

/**
 * @typedef {object} Row
 * @property {number} index
 * @property {string} id
 * @property {string} name its id where it has none
 * @property {string} short the name without what a C++ signature has around it
 * @property {string} location
 * @property {number|null} time in seconds
 * @property {boolean} total the time is that of the row with all that it calls
 * @property {number|null} share fraction of the program's time
 * @property {number|null} calls
 * @property {string} limit name of the limiting roof, "" for none
 * @property {'memory'|'compute'|''} limitKind
 * @property {number|null} fraction of the limiting roof
 * @property {number|null} speedUp
 * @property {number|null} gain seconds that the row would save on its limiting roof
 * @property {string} doubt about that verdict; ""
 * @property {boolean} withCallees the verdict is of more than the row's own data, and the points aren't
 * @property {Array<LevelPoint|null>} points by chosen level
 * @property {string} cause why the row isn't in the chart; "" where it is
 * @property {number|null} parent index of the row that calls
 */

/**
 * @typedef {object} Side one result at the chosen configuration
 * @property {number} number 0, or 1 for the new result of a comparison
 * @property {object} result
 * @property {Array<{level: string, caption: string, chart: object}>} levels
 * @property {Row[]} rows
 * @property {{asRun: object[], setUps: object[]}} roofs
 */

/**
 * @typedef {object} Item a row, or a pair of rows of two results
 * @property {number} row its number in the page
 * @property {Array<Row|null>} sides
 * @property {object|null} pair
 * @property {string} key folded names, for the search
 */

/**
 * Loads both results at the state's configuration.
 * @param {object} model @param {import('./source.js').Source} source @param {string[]} tokens
 * @returns {Promise<{sides: Side[], items: Item[]}>}
 */
export async function loadScene(model, source, tokens) {
    const groups = readGroups(model.results[0]);
    const wanted = select(groups, tokens).flat();
    const hasLevels = groups.some(({ isLevels }) => isLevels);
    const loads = model.results.map((result, number) =>
        loadSide(source, result, number, wanted, number > 0 && hasLevels));
    const sides = await Promise.all(loads);
    return { sides, items: makeItems(sides, model.comparison) };
}

/**
 * @param {boolean} isStrict memory levels that the result hasn't got leave it without points: those of
 * another level would look like the same ones
 * @returns {Promise<Side>}
 */
async function loadSide(source, result, number, tokens, isStrict) {
    const groups = readGroups(result);
    const lacking = isStrict && !hasLevelOf(result, groups, tokens);
    const selection = select(groups, tokens);
    const wanted = configurations(groups, selection);
    const [roofs, ...loaded] = await Promise.all([
        source.roofs(number, selection[0]?.[0] ?? ''),
        ...wanted.map(({ configuration }) => source.chart(number, configuration)),
    ]);
    const levels = wanted.map((level, i) => ({ ...level, ...loaded[i] })).filter((level) => level.chart)
        .map((level) => (lacking ? { ...level, chart: withoutPoints(level.chart), causes: [] } : level));
    const names = wanted.map(({ configuration }) => configuration);
    if (!levels.length) throw new Error(texts('page_error_chart', names.join(', ')));
    const total = levels.some(({ chart }) => chart.placed === 'x1');
    const cause = lacking ? texts('page_level_not_offered') : '';
    return { number, result, levels, roofs, rows: makeRows(result, levels, total, cause) };
}

/** Whether the result has one of the wanted levels, to choose or as its only one. */
function hasLevelOf(result, groups, tokens) {
    const choice = groups.find((group) => group.isLevels);
    const { memoryLevel } = result.template;
    return choice ? offers(choice, tokens) : !memoryLevel || tokens.includes(memoryLevel);
}

/** A chart's axes and roofs, and the times of its rows. */
const withoutPoints = (chart) => ({
    ...chart, document: { ...chart.document, programTotal: [] }, parents: null, causes: null,
    loops: Object.fromEntries(Object.entries(chart.loops ?? {})
        .filter(([key]) => key.endsWith('ElapsedTime'))),
});

/** A column of a chart by the key of the loop records; empty where the chart hasn't one. */
const column = ({ chart, columns }, key) => columns[chart.loops?.[key]] ?? [];

/**
 * @param {boolean} total the points are those of rows with all that they call
 * @param {string} why the rows of a chart without points aren't in it; ""
 * @returns {Row[]}
 */
function makeRows(result, levels, total, why) {
    const { rows, dictionary } = result;
    const read = levels.map((level) => {
        const suffix = level.chart.placed === 'x1' ? '1' : '';
        return {
            ...level,
            placed: column(level, level.chart.placed),
            x: column(level, `x${suffix}`),
            y: column(level, `y${suffix}`),
            traffic: column(level, suffix ? 'totalMem' : 'selfMem'),
            time: column(level, suffix ? 'totalElapsedTime' : 'selfElapsedTime'),
            parents: level.chart.parents === null ? [] : level.columns[level.chart.parents] ?? [],
        };
    });
    const names = rows.name.map((name, i) => (name.trim() ? name : `#${rows.id[i]}`));
    const short = shortNames(names);
    const doubts = rows.doubt.map((doubt) => plain(dictionary[doubt] ?? ''));
    const isPlaced = (level, i) => isFinite(level.placed[i] ?? NaN) && isFinite(level.y[i] ?? NaN);

    return rows.id.map((id, i) => {
        const points = read.map((level) => (!isPlaced(level, i) ? null : {
            level: level.level, caption: level.caption, x: level.x[i], y: level.y[i],
            traffic: level.traffic[i] ?? null,
        }));
        const placed = points.some(Boolean);
        const at = placed ? points.findIndex(Boolean) : 0;
        const { chart, dictionary: causes } = read[at];
        // With call stacks the chart's time is that of the row with all that it calls.
        const totalTime = (total ? read[at].time[i] : null) ?? null;
        const time = totalTime ?? rows.time[i];
        const speedUp = rows.speedUp[i];
        return {
            index: i, id, name: names[i], short: short[i], location: rows.location[i],
            time, total: totalTime !== null,
            share: time === rows.time[i] ? rows.share[i] : result.seconds && time / result.seconds,
            calls: rows.calls[i],
            limit: dictionary[rows.limit[i]] ?? '', limitKind: rows.limitKind[i], fraction: rows.fraction[i],
            speedUp, points,
            // Of the time that the verdict is of: with all that it calls it is known with call stacks alone.
            gain: gainOf(rows.withCallees[i] ? totalTime : rows.time[i], speedUp),
            // Shown with all that it calls it is what the verdict is of.
            withCallees: rows.withCallees[i] && totalTime === null,
            doubt: rows.withCallees[i] && totalTime !== null ? '' : doubts[i],
            cause: placed ? '' : why || plain(causes[chart.causes?.[i]] ?? texts('page_not_drawn')),
            parent: read[at].parents[i] ?? null,
        };
    });
}

/** Seconds less on the limiting roof; null for a row that stands on it, or above. */
const gainOf = (time, speedUp) => (speedUp > 1 && time !== null ? time * (1 - 1 / speedUp) : null);

/** @returns {Item[]} */
function makeItems(sides, comparison) {
    const [base, next] = sides.map((side) => side.rows);
    const members = !comparison ? base.map((row) => ({ sides: [row], pair: null })) : [
        ...comparison.pairs.map((pair) => ({ sides: [base[pair.base], next[pair.new]], pair })),
        ...comparison.baseOnly.map((i) => ({ sides: [base[i], null], pair: null })),
        ...comparison.newOnly.map((i) => ({ sides: [null, next[i]], pair: null })),
    ];
    return members.map((member, row) => ({
        ...member, row,
        key: fold([...new Set(member.sides.flatMap((side) => (side ? [side.name, side.location] : [])))]
            .join('\n')),
    }));
}

/**
 * Whether an item is within the search and the filter.
 * @param {import('./store.js').State} state
 * @returns {(item: Item) => boolean}
 */
export function filterOf(state) {
    const words = fold(state.search).split(/\s+/).filter(Boolean);
    const least = state.least / 100;
    const isAmong = (side) => (!least || (side.share ?? 0) >= least)
        && !state.without.includes(side.limitKind || 'none');
    return (item) => words.every((word) => item.key.includes(word))
        && item.sides.some((side) => side && isAmong(side));
}

/** @returns {{roof: string, fraction: number}|null} */
const roofOver = (roof = '', fraction = null) =>
    (roof && fraction !== null ? { roof: plain(roof), fraction } : null);

/** The roof nearest above any of a row's levels' points, and how much of it the row reaches. */
export const nearestRoof = ({ dictionary, rows }, index) =>
    roofOver(dictionary[rows.nearest[index]], rows.nearestFraction[index]);

/** A level's own roof over a row. */
export const levelRoof = ({ dictionary }, level, index) =>
    roofOver(dictionary[level?.roof[index]], level?.fraction[index]);

/** Whether a row has roofs of its memory levels, which the verdict on the whole has to be told apart from. */
export const hasLevelRoofs = ({ rows, levels }, index) =>
    rows.nearest[index] !== null || levels.some(({ roof }) => roof[index] !== null);

/**
 * How much a row would gain on its limiting roof; nothing where it stands on it, or above.
 * @param {Row} row
 */
export function gainText({ speedUp, gain }) {
    if (!(speedUp > 1) || number(speedUp) === '1') return '';
    const text = texts('page_card_speed_up', number(speedUp));
    return gain === null ? text : texts('page_card_gain', text, number(gain));
}

/**
 * The chart document that names the axes: the first one with something to draw.
 * @param {Side[]} sides
 */
export function axesOf(sides) {
    const documents = sides.flatMap((side) => side.levels.map(({ chart }) => chart.document));
    return documents.find((document) => !document.noDataMessage) ?? documents[0];
}

/** A few letters of a name (32 bits, FNV-1a). @param {string} name */
const hashOf = (name) => [...new TextEncoder().encode(name)]
    .reduce((hash, byte) => Math.imul(hash ^ byte, 0x01000193) >>> 0, 0x811c9dc5).toString(36);

/** An item's name in the address. Of another result the same id may be another row's. @param {Item} item */
export function pinOf(item) {
    const side = item.sides.findIndex(Boolean);
    const { id, name } = item.sides[side];
    return [side, hashOf(name), id].join(':');
}

/** The item that the state pins, or null. @param {Item[]} items @param {string} pinned */
export function findPinned(items, pinned) {
    const [side, hash, ...id] = pinned.split(':');
    const found = items.find((item) => item.sides[Number(side)]?.id === id.join(':'));
    return found && hashOf(found.sides[Number(side)].name) === hash ? found : null;
}

/**
 * The library's short name of a roof, by which it tells which ones are selected and hidden.
 * @param {string} name
 */
export const roofKey = (name) => name.toLowerCase().replace('(single-threaded)', '').replace(/\s+/g, '');

/**
 * The result whose roofs are shown.
 * @param {{sides: Side[]}} scene
 * @param {import('./store.js').State} state
 */
export const roofSide = ({ sides }, state) => sides[Math.min(state.machine, sides.length - 1)];

/** The set-up's name in the state. */
export const setUpKey = ({ threadCount, packageCount, strategyId }) =>
    [threadCount, packageCount, strategyId].join('/');

/** In the state's roofs: how those are drawn that would be thin. */
export const OTHERS = '*';

/**
 * The roofs of a result at the chosen set-up.
 * @param {Side} side @param {import('./store.js').State} state
 * @returns {Array<{key: string, roof: object, how: 'strong'|'thin'|'off'}>}
 */
export function roofsOf(side, state) {
    const { asRun, setUps } = side.roofs;
    const chosen = setUps.find((setUp) => setUpKey(setUp) === state.setUp)?.roofs ?? asRun;
    const selected = side.levels[0].chart.selectedRoofs ?? {};
    const seen = new Set();
    return chosen.filter((roof) => roof.val > 0).map((roof) => {
        const name = roofKey(roof.name);
        const key = seen.has(name) ? `${name}.${roof.id}` : name;
        seen.add(key);
        // Another level's bandwidth is selected too when that level is shown.
        const library = side.levels.map(({ chart }) => chart.selectedRoofs?.[name]).filter(Boolean);
        const how = library.some((l) => l.selected) ? 'strong' : (selected[name]?.hidden ? 'off' : 'thin');
        return { key, roof, how: state.roofs[key] ?? (how === 'thin' && state.roofs[OTHERS] || how) };
    });
}
