// The library's option tree as choices: what is chosen in each group, and the configurations that follow.

/**
 * @typedef {object} Group
 * @property {string} caption
 * @property {'one'|'switch'|'many'} kind
 * @property {boolean} isLevels the memory levels: one chart holds several of them
 * @property {Array<{value: string, caption: string, expl: string}>} values
 * @property {string} fallback the value of the complete default configuration
 */

/**
 * The groups of a result's option tree. A value that the tree names twice is offered once.
 * @param {{options: {groups: object[]}, configuration: string}} result
 * @returns {Group[]}
 */
export function readGroups(result) {
    const fallbacks = result.configuration.split('-');
    return (result.options?.groups ?? []).map((group, at) => {
        const values = new Map(group.options.map((o) => [o.value, { expl: '', ...o }]));
        return {
            caption: group.caption,
            kind: group.isTwoStates ? 'switch' : group.isCertainValue ? 'many' : 'one',
            isLevels: Boolean(group.provideCaption),
            values: [...values.values()],
            fallback: fallbacks[at] ?? group.defRooflineTypes?.[0] ?? group.options[0]?.value ?? '',
        };
    });
}

/** Whether a group has any of the wanted values. @param {Group} group @param {string[]} wanted */
export const offers = (group, wanted) => group.values.some(({ value }) => wanted.includes(value));

/**
 * What is chosen in each group for the wanted tokens, in the order of the group; its default where nothing
 * is.
 * @param {Group[]} groups @param {Iterable<string>} wanted
 * @returns {string[][]}
 */
export function select(groups, wanted) {
    const tokens = new Set(wanted);
    return groups.map((group) => {
        const found = group.values.map((v) => v.value).filter((v) => tokens.has(v));
        if (!found.length) return [group.fallback];
        return group.kind === 'many' ? found : found.slice(0, 1);
    });
}

/**
 * The tokens after a click on a value: a switch or radio group takes the new value alone, a set adds or drops
 * it but never becomes empty.
 * @param {Group[]} groups @param {string[][]} selection @param {number} at @param {string} value
 * @returns {string[]}
 */
export function choose(groups, selection, at, value) {
    const chosen = selection[at];
    const next = groups[at].kind !== 'many' ? [value]
        : !chosen.includes(value) ? [...chosen, value]
            : chosen.length > 1 ? chosen.filter((v) => v !== value) : chosen;
    return selection.map((values, i) => (i === at ? next : values)).flat();
}

/**
 * One configuration for each chosen memory level, with the level's token and caption (empty without such a
 * group).
 * @param {Group[]} groups @param {string[][]} selection
 * @returns {Array<{configuration: string, level: string, caption: string}>}
 */
export function configurations(groups, selection) {
    const at = groups.findIndex((group) => group.isLevels);
    const levels = at < 0 ? [''] : selection[at];
    return levels.map((level) => ({
        configuration: selection.map((values, i) => (i === at ? level : values[0])).filter(Boolean).join('-'),
        level,
        caption: at < 0 ? '' : groups[at].values.find((v) => v.value === level)?.caption ?? level,
    }));
}
