// The bar above the chart: the library's options, the thread set-up of the roofs, colours and exports.
import { make, menu, refill, segments } from './dom.js';
import { roofSide, setUpKey } from './model.js';
import { choose, readGroups, select } from './options.js';
import { createRoofMenu } from './roof_menu.js';
import { texts } from './texts.js';

/**
 * @param {object} model @param {ReturnType<import('./store.js').createStore>} store
 * @param {import('./source.js').Source} source
 * @param {{saveSvg: () => void, savePng: () => void, saveCsv: () => void, help: () => void,
 *          fail: (error: Error) => void}} actions
 */
export function createControls(model, store, source, actions) {
    const groups = readGroups(model.results[0]);
    const options = make('div.group');
    const setUp = make('div.group');
    const roofMenu = createRoofMenu(model, store, source, actions.fail);
    const exports = menu(texts('page_export'), make('div.list', null,
        ...[['svg', actions.saveSvg], ['png', actions.savePng], ['csv', actions.saveCsv]]
        .map(([kind, save]) =>
            make('button', {
                type: 'button', id: `export-${kind}`,
                onclick: () => {
                    save();
                    exports.open = false;
                },
            }, texts(`page_export_${kind}`)))));
    exports.classList.add('right');
    const element = make('div.controls', { role: 'group', 'aria-label': texts('page_controls') },
        options, setUp, make('div.group.end', null, roofMenu.element,
            exports,
            make('button', {
                type: 'button', title: texts('page_help'), 'aria-label': texts('page_help'),
                onclick: actions.help,
            }, '?')));

    return {
        element,
        /** @param {{sides: import('./model.js').Side[]}} scene @param {import('./store.js').State} state */
        update(scene, state) {
            const selection = select(groups, state.tokens);
            refill(options, [
                ...groups.map((group, at) => optionGroup(group, selection[at],
                    (value) => store.set({ tokens: choose(groups, selection, at, value) }))),
                segments(texts('page_colour_by'), texts('page_colour_by_expl'),
                    ['limit', 'level'].map((value) => ({ value, caption: texts(`page_colour_${value}`) })),
                    (value) => value === state.colourBy, (colourBy) => store.set({ colourBy })),
            ]);
            refill(setUp, setUpFields(roofSide(scene, state), state, (key) => store.set({ setUp: key })));
            roofMenu.update(scene, state);
        },
    };
}

function optionGroup(group, chosen, onChoose) {
    const expl = group.values.map((value) => value.expl).filter(Boolean).length === 1
        ? group.values.find((value) => value.expl).expl : '';
    return segments(group.caption, group.kind === 'many' ? texts('page_levels_expl') : expl, group.values,
        (value) => chosen.includes(value), onChoose, group.kind === 'many' ? 'many' : 'one');
}

/** Threads and packages, and one thread's roofs, as far as the result offers a choice. */
function setUpFields(side, state, onChoose) {
    const { setUps } = side.roofs;
    if (!setUps.length) return [];
    const { threads } = side.result;
    const now = setUps.find((setUp) => setUpKey(setUp) === state.setUp) ?? null;
    const distinct = (member) => [...new Set(setUps.map((setUp) => setUp[member]))].sort((a, b) => a - b);
    const used = threads?.usedNumberOfThreads;
    const packages = distinct('packageCount');
    // A run's threads are taken to share as few packages as hold them; a device is used whole.
    const holdsRun = (count) =>
        setUps.some(({ packageCount, threadCount }) => packageCount === count && threadCount >= used);
    const run = { ...setUps[0], threadCount: used, packageCount: packages.find(holdsRun) ?? packages.at(-1) };
    const move = (wanted) => onChoose(setUpKey(nearestSetUp(setUps, now ?? run, wanted)));
    const field = (name, choices, value, onPick) => make('label', { title: texts(`page_${name}_expl`) },
        make('span.caption', null, texts(`page_${name}`)),
        make('select', { 'data-focus': name, onchange: (event) => onPick(event.target.value) },
            ...choices.map(([key, caption]) =>
                make('option', { value: key, selected: String(key) === String(value) }, caption))));
    const asRun = ['', used ? texts('page_as_run_threads', used) : texts('page_as_run')];
    const options = threads?.group?.options ?? [];
    const captions = new Map([...options.map(({ value, caption }) => [value, caption]),
        ...setUps.filter(({ caption }) => caption).map((setUp) => [setUp.packageCount, setUp.caption])]);
    const counts = distinct('threadCount').filter(Number.isFinite);
    const isSingle = now?.strategyId === 'rsiSingleThread';
    return [
        counts.length > 1 && field('threads', [asRun, ...counts.map((n) => [n, String(n)])],
            now?.threadCount ?? '',
            (n) => (n === '' ? onChoose('') : move({ threadCount: Number(n) }))),
        packages.length > 1 && field('packages',
            [...(counts.length > 1 && now ? [] : [['', texts('page_as_run')]]),
                ...packages.map((n) => [n, captions.get(n) ?? n])],
            now?.packageCount ?? '',
            (n) => (n === '' ? onChoose('') : move({ packageCount: Number(n) }))),
        distinct('strategyId').length > 1 && now && make('label', { title: texts('page_single_thread_expl') },
            make('input', {
                type: 'checkbox', checked: isSingle, 'data-focus': 'single',
                onchange: () => move({
                    threadCount: now.threadCount, packageCount: now.packageCount,
                    strategyId: isSingle ? 'rsiMultiThread' : 'rsiSingleThread',
                }),
            }), texts('page_single_thread')),
    ].filter(Boolean);
}

/**
 * The set-up with the wanted members whose others are nearest to those of `from`, the threads first.
 * @param {object[]} setUps @param {object} from @param {object} wanted
 */
function nearestSetUp(setUps, from, wanted) {
    const near = { ...from, ...wanted };
    const distances = (setUp) => [
        Object.keys(wanted).filter((key) => setUp[key] !== wanted[key]).length,
        Math.abs(setUp.threadCount - near.threadCount) || 0,
        Number(setUp.packageCount !== near.packageCount), Number(setUp.strategyId !== near.strategyId),
    ];
    const isNearer = (a, b) => {
        const at = a.findIndex((distance, i) => distance !== b[i]);
        return at >= 0 && a[at] < b[at];
    };
    return setUps.reduce((best, setUp) => (isNearer(distances(setUp), distances(best)) ? setUp : best));
}
