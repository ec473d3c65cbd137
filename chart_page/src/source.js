// Where the page's data comes from: the model that a report carries, or the program that serves the page.
import { texts } from './texts.js';

/**
 * @typedef {{chart: object, columns: Array<Array<number|null>>, dictionary: string[]}} ChartData
 * @typedef {object} Source
 * @property {(result: number, configuration: string) => Promise<ChartData>} chart
 * @property {(result: number, operations: string) => Promise<object>} roofs
 * @property {(result: number, id: string) => Promise<object|null|undefined>} details null: the library tells
 * nothing of the row; undefined: the row isn't among those with details
 * @property {((roof: object) => Promise<void>)|null} setRoof null where roofs can't be set
 * @property {(onChange: () => void, onLoss: (lost: boolean) => void,
 *     onFault: (text: string) => void) => void} watch
 */

/**
 * Reads the model of the page: base64 of a deflated JSON text.
 * @param {string} base64
 */
export async function inflateModel(base64) {
    const packed = Uint8Array.from(atob(base64.trim()), (c) => c.charCodeAt(0));
    const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream('deflate'));
    return JSON.parse(await new Response(stream).text());
}

/** @param {object} model @returns {Source} */
export const makeSource = (model) => (model.live ? liveSource(model.live) : reportSource(model));

/** @param {object} model @returns {Source} */
function reportSource(model) {
    return {
        async chart(result, configuration) {
            const { charts, columns, dictionary } = model.results[result];
            return { chart: charts[configuration] ?? null, columns, dictionary };
        },
        async roofs(result, operations) {
            return model.results[result].roofs[operations] ?? { asRun: [], setUps: [] };
        },
        async details(result, id) {
            return model.results[result].details[id];
        },
        setRoof: null,
        watch() {},
    };
}

const RETRY = 5000;  // milliseconds, before a tab whom the program has turned away asks to listen again
const CONFLICT = 409;

/** @param {{token: string, version: number}} live @returns {Source} */
function liveSource(live) {
    // One request for each address: charts and roofs change only with the version, and then the page loads
    // itself again.
    const answers = new Map();
    const get = (/** @type {string} */ path, /** @type {Record<string, string|number>} */ query) => {
        const values = /** @type {any} */ ({ ...query, version: live.version });
        const address = `${path}?${new URLSearchParams(values)}`;
        if (!answers.has(address)) {
            const answer = ask(address).then((response) =>
                (response.status === CONFLICT ? loadAgain() : readAnswer(response)));
            answer.catch(() => answers.delete(address));
            answers.set(address, answer);
        }
        return answers.get(address);
    };
    return {
        async chart(result, configuration) {
            const { charts, columns, dictionary } = await get('chart', { result, config: configuration });
            return { chart: charts[configuration] ?? Object.values(charts)[0] ?? null, columns, dictionary };
        },
        roofs: (result, operations) => get('roofs', { result, operations }),
        details: (result, id) => get('details', { result, id }),
        async setRoof(roof) {
            const headers = { 'Content-Type': 'application/json', 'X-Roofline-Token': live.token };
            await readAnswer(await ask('roof', { method: 'POST', headers, body: JSON.stringify(roof) }));
        },
        // One tab listens for all: a browser makes six connections to an address, for all its tabs together.
        watch(onChange, onLoss, onFault) {
            const name = `roofline-${live.token}`;
            const channel = new BroadcastChannel(name);
            /** @type {{version: number, fault: string, isLost: boolean}|null} */
            let told = null; // by this tab, where it is the one
            let heard = { version: live.version, fault: '', isLost: false };
            const hear = (/** @type {typeof heard} */ news) => {
                const before = heard;
                heard = news;
                if (news.version > live.version) return onChange();
                if (news.isLost !== before.isLost) onLoss(news.isLost);
                if (news.fault !== before.fault) onFault(news.fault);
            };
            const tell = (/** @type {object} */ change) => {
                told = { ...heard, ...change };
                channel.postMessage(told);
                hear(told);
            };
            channel.onmessage = ({ data }) => (data ? hear(data) : told && channel.postMessage(told));
            channel.postMessage(null); // a tab that comes late asks what it has missed
            // A browser tries again by itself, unless turned away: then another tab may have more luck.
            const listen = () => navigator.locks.request(name, () => new Promise((leave) => {
                const events = new EventSource(`events?version=${live.version}`);
                events.addEventListener('changed', ({ data }) => tell({ version: Number(data) }));
                events.addEventListener('fault', ({ data }) => tell({ fault: data }));
                events.addEventListener('open', () => tell({ isLost: false }));
                events.addEventListener('error', () => {
                    if (!heard.isLost) tell({ isLost: true });
                    if (events.readyState !== EventSource.CLOSED) return;
                    told = null;
                    leave();
                });
            })).then(() => setTimeout(listen, RETRY));
            listen();
        },
    };
}

/** A page of another version than the program's is out of date: what would come now isn't wanted any more. */
function loadAgain() {
    location.reload();
    return new Promise(() => {});
}

/** @param {string} address @param {RequestInit} [options] */
const ask = (address, options) => fetch(address, options).catch(() => {
    throw new Error(texts('page_no_answer'));
});

/** The JSON of an answer; an error's own words as an exception. @param {Response} response */
async function readAnswer(response) {
    const answer = await response.json().catch(() => undefined);
    if (response.ok && answer !== undefined) return answer;
    throw new Error(answer?.error ?? texts('page_request_failed', response.status));
}
