// Short forms of the names of functions: what tells them apart stands first, and signatures are left out.

const SUFFIX = /(?:\s+(?:const|volatile|noexcept|&&?))*\s*(?:\[clone[^\]]*\])?$/;
const OPENING = '(<[{';
const CLOSING = ')>]}';

/** Depth of brackets before each letter; arrows aren't brackets. @param {string} text @returns {number[]} */
function depths(text) {
    let depth = 0;
    return [...text].map((letter, i, all) => {
        if (CLOSING.includes(letter) && !(letter === '>' && all[i - 1] === '-')) --depth;
        const here = depth;
        if (OPENING.includes(letter)) ++depth;
        return here;
    });
}

/** Where the argument list at the end of a text opens, or -1. @param {string} text */
function argumentsOf(text) {
    let depth = 0;
    for (let at = text.length - 1; at > 0; --at) {
        if (text[at] === ')') ++depth;
        if (text[at] === '(' && --depth === 0) return at;
    }
    return -1;
}

/**
 * A C++ signature without its return type and outer argument list; any other name as it is.
 * @param {string} name such as "void scale<float>(float*, int) const", or "[loop in NAME at file.cpp:3]"
 * @returns {string} such as "scale<float>"
 */
export function shortName(name) {
    const loop = /^(\[loop in )(.+)( at \S+\])$/.exec(name);
    if (loop) return loop[1] + shortName(loop[2]) + loop[3];
    const text = name.replace(SUFFIX, '');
    const end = text.endsWith(')') ? argumentsOf(text) : -1;
    const head = text.slice(0, Math.max(0, end));
    const operator = /\boperator\b/.exec(head);
    const isName = operator ? head.slice(operator.index) !== 'operator' : /[\w$>~]$/.test(head);
    if (!head || !isName) return name;
    // The signs of an operator aren't brackets.
    const scanned = operator ? head.slice(0, operator.index) : head;
    const depth = depths(scanned);
    if (depth.some((level) => level < 0)) return name;
    const space = [...scanned].findLastIndex((letter, i) => /\s/.test(letter) && depth[i] === 0);
    const found = [...head].slice(space + 1).join('').replace(/^[*&]+/, '');
    return found || name;
}

/**
 * Short names of a list: the whole one where two different names would look the same.
 * @param {string[]} names
 */
export function shortNames(names) {
    const owners = new Map();
    const short = names.map(shortName);
    short.forEach((text, i) => {
        const owner = owners.get(text) ?? names[i];
        owners.set(text, owner === names[i] ? owner : null);
    });
    return short.map((text, i) => (owners.get(text) === null ? names[i] : text));
}
