// The page's one state, and its copy in the address, so that a link shows the same view.

/**
 * @typedef {object} State
 * @property {string[]} tokens chosen option values
 * @property {string} setUp thread set-up of the roofs, "threads/packages/strategy"; "" for that of the run
 * @property {Record<string, 'strong'|'thin'|'off'>} roofs the reader's own choice, by roof
 * @property {number} machine the result whose roofs are shown
 * @property {string} search
 * @property {number} least share of time in percent below which rows are left out
 * @property {'level'|'limit'} colourBy
 * @property {string} sort column; "" for the list's own order
 * @property {boolean} descending
 * @property {Array<'memory'|'compute'|'none'>} without kinds of limits whose rows are left out
 * @property {string} zoom "x,y,width,height" of what the chart shows, decimal logarithms; "" at first
 * @property {string} pinned "side:hash:id"; "" for none
 * @property {string} list of the side panel
 */

/** @type {State} */
const START = {
    tokens: [], setUp: '', roofs: {}, machine: 0, search: '', least: 0, colourBy: 'limit', sort: '',
    descending: true, without: [], zoom: '',
    pinned: '', list: '',
};

const ROOF_STATES = ['strong', 'thin', 'off'];
const LIMIT_KINDS = ['memory', 'compute', 'none'];

/** A part of an address as it was before encodeURIComponent; nothing of one that can't be such. */
function decoded(text) {
    try {
        return decodeURIComponent(text);
    } catch {
        return '';
    }
}

/** How each member travels in the address; a member that isn't here doesn't. */
const CODECS = {
    tokens: { write: (v) => v.join('-'), read: (t) => t.split('-').filter(Boolean) },
    setUp: { write: String, read: String },
    roofs: {
        // A roof may have any name.
        write: (v) => Object.entries(v).map(([key, how]) => `${encodeURIComponent(key)}:${how}`).join(','),
        read: (t) => Object.fromEntries(t.split(',').map((pair) => pair.split(':').map(decoded))
            .filter(([key, how]) => key && key !== '__proto__' && ROOF_STATES.includes(how))),
    },
    machine: { write: String, read: (t) => (t === '1' ? 1 : 0) },
    search: { write: String, read: String },
    least: { write: String, read: (t) => Math.min(100, Math.max(0, Number(t) || 0)) },
    colourBy: { write: String, read: (t) => (t === 'level' ? 'level' : 'limit') },
    sort: { write: String, read: String },
    descending: { write: (v) => (v ? '1' : '0'), read: (t) => t !== '0' },
    without: {
        write: (v) => v.join(),
        read: (t) => LIMIT_KINDS.filter((kind) => t.split(',').includes(kind)),
    },
    zoom: { write: String, read: String },
    pinned: { write: String, read: String },
    list: { write: String, read: String },
};

/**
 * @param {string} hash of the address
 * @returns {Partial<State>}
 */
export function readHash(hash) {
    const given = new URLSearchParams(hash.replace(/^#/, ''));
    return Object.fromEntries(Object.entries(CODECS).filter(([key]) => given.has(key))
        .map(([key, codec]) => [key, codec.read(given.get(key))]));
}

/** What differs from the start, as the address's hash. @param {State} state @param {State} start */
export function writeHash(state, start) {
    const written = new URLSearchParams();
    for (const [key, codec] of Object.entries(CODECS)) {
        const text = codec.write(state[key]);
        if (text !== codec.write(start[key])) written.set(key, text);
    }
    return written.toString();
}

/**
 * @param {Partial<State>} defaults of this model
 */
export function createStore(defaults) {
    const start = { ...START, ...defaults };
    /** @type {State} */
    let state = { ...start, ...readHash(location.hash) };
    /** @type {Array<(state: State, before: State|null) => void>} */
    const views = [];

    const show = (/** @type {State|null} */ before) => views.forEach((view) => view(state, before));
    const remember = () => {
        const hash = writeHash(state, start);
        try {
            // Not location.hash: a view shouldn't fill the history with each key of a search.
            history.replaceState(null, '', hash ? `#${hash}` : location.pathname + location.search);
        } catch {
            // Some browsers refuse more than so many in a while: the next change takes this one with it.
        }
    };
    addEventListener('hashchange', () => {
        const before = state;
        state = { ...start, ...readHash(location.hash) };
        show(before);
    });

    return {
        get state() {
            return state;
        },
        /** @param {Partial<State>} changes */
        set(changes) {
            const before = state;
            state = { ...state, ...changes };
            remember();
            show(before);
        },
        /** @param {(state: State, before: State|null) => void} view called now and at each change */
        subscribe(view) {
            views.push(view);
            view(state, null);
        },
    };
}
