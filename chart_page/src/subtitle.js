// What a saved picture shows, in words: the choice of options, what the roofs assume, and the machine.
import { roofSide, setUpKey } from './model.js';
import { readGroups, select } from './options.js';
import { plain, texts } from './texts.js';

const numbered = (id, count) => texts(count === 1 ? id : `${id}s`, count);

/** Such as "18 threads on 1 package". */
function placeOf({ result, roofs }, state) {
    const setUp = roofs.setUps.find((candidate) => setUpKey(candidate) === state.setUp);
    if (!setUp) return result.place;
    const { caption, threadCount, packageCount, strategyId } = setUp;
    if (caption) return caption;
    const isSingle = threadCount > 1 && strategyId === 'rsiSingleThread';
    const threads = isSingle ? texts('page_place_single', threadCount)
        : numbered('page_place_thread', threadCount);
    return `${threads} ${numbered('page_place_package', packageCount)}`;
}

/**
 * @param {object} model @param {{sides: import('./model.js').Side[]}} scene
 * @param {import('./store.js').State} state
 */
export function subtitleOf(model, scene, state) {
    const groups = readGroups(model.results[0]);
    const captions = select(groups, state.tokens).flatMap((values, at) =>
        groups[at].values.filter(({ value }) => values.includes(value)).map(({ caption }) => plain(caption)));
    const side = roofSide(scene, state);
    const place = placeOf(side, state);
    return [captions.join(', '), place && texts('page_subtitle_roofs', place), side.result.machine,
        side.result.isProjected && texts('page_projected')]
        .filter(Boolean).join(' \u00b7 ');
}
