// Starts the page: reads the model, and keeps chart, controls and lists in step with the one state.
import { createChart } from './chart/chart.js';
import { chartView, linksOf } from './chart_view.js';
import { createControls } from './controls.js';
import { make, saveFile } from './dom.js';
import { createHelp } from './help.js';
import { findPinned, loadScene, pinOf, roofSide, roofsOf } from './model.js';
import { createSidePanel } from './side_panel.js';
import { createSplitter } from './splitter.js';
import { inflateModel, makeSource } from './source.js';
import { createStore } from './store.js';
import { setTexts, texts } from './texts.js';

const app = document.getElementById('app');

/** The members of the state that change each part. */
const CHART_MEMBERS = ['setUp', 'roofs', 'machine', 'search', 'least', 'colourBy'];
const CONTROL_MEMBERS = ['setUp', 'roofs', 'machine', 'colourBy'];
const LIST_MEMBERS = ['search', 'least', 'sort', 'descending', 'list'];

async function start() {
    const model = await inflateModel(document.getElementById('model').textContent);
    setTexts(model.texts);
    document.documentElement.lang = model.language;
    const source = makeSource(model);
    const usual = model.results[0].configuration.split('-');
    const store = createStore({ tokens: usual });
    const notice = createNotice();
    const fail = (error) => notice.show(error.message);

    let scene = null;
    let pinned = null;
    let hovered = null;
    let view = null;
    let wanted = 0;          // number of the load whose answer counts
    let isFallback = false;  // what loads stands in for what failed: the error stays in sight

    const togglePin = (row) => store.set({ pinned: scene?.items[row ?? -1] ? pinOf(scene.items[row]) : '' });
    const hover = (row) => {
        if (row === hovered) return;
        hovered = row;
        chart.highlight(hovered, pinned?.row ?? null);
        side.grid.highlight({ hovered, pinned: pinned?.row ?? null });
    };
    const fileName = model.results.map(({ program }) => program).join('-')
        .replace(/[^\p{L}\p{N}_.-]+/gu, '_') || 'roofline';
    const controls = createControls(model, store, source, {
        saveSvg: () => saveFile(`${fileName}.svg`, chart.exportSvg(), 'image/svg+xml'),
        savePng: () => chart.exportPng().then((blob) => saveFile(`${fileName}.png`, blob), fail),
        saveCsv: () => saveFile(`${fileName}.csv`, side.csv(), 'text/csv'),
        help: () => help.open(),
        fail,
    });
    const side = createSidePanel(model, store, { onPin: togglePin, onHover: hover });
    const stage = make('section.stage', { 'aria-label': texts('page_chart') });
    const help = createHelp({
        '/': side.focusSearch, t: side.focusList, 0: () => chart.resetZoom(), Escape: () => togglePin(null),
        l: () => store.set({ colourBy: store.state.colourBy === 'limit' ? 'level' : 'limit' }),
    });
    app.replaceChildren(pageHead(model), controls.element, notice.element,
        make('main', null, stage, createSplitter(() => side.element), side.element),
        pageFoot(model), help.element);
    const chart = createChart(stage, {
        onHover: hover,
        onPin: togglePin,
        onRoof: (key) => {
            const { how } = roofsOf(roofSide(scene, store.state), store.state)
                .find((roof) => roof.key === key);
            store.set({ roofs: { ...store.state.roofs, [key]: how === 'strong' ? 'thin' : 'strong' } });
        },
    });

    async function load(state) {
        const mine = ++wanted;
        app.setAttribute('aria-busy', 'true');
        try {
            const loaded = await loadScene(model, source, state.tokens);
            if (mine !== wanted) return;
            scene = { ...loaded, tokens: state.tokens };
            side.setScene(scene);
            if (!isFallback) notice.hide();
            isFallback = false;
            show(store.state, null);
        } catch (error) {
            if (mine !== wanted) return;
            notice.show(error.message, () =>
                (store.state.tokens === state.tokens ? load(state) : store.set({ tokens: state.tokens })));
            // What is seen stays, and the controls go on telling what it is.
            if (scene) store.set({ tokens: scene.tokens });
            else if (!isSame(state.tokens, usual)) {
                isFallback = true;
                store.set({ tokens: usual });
            }
        } finally {
            if (mine === wanted) app.removeAttribute('aria-busy');
        }
    }

    function show(state, before) {
        const differs = (members) => !before || members.some((member) => state[member] !== before[member]);
        if (differs(['pinned'])) showPinned(state);
        if (differs(CONTROL_MEMBERS)) controls.update(scene, state);
        if (differs(LIST_MEMBERS)) side.showList(state);
        side.grid.highlight({ hovered, pinned: pinned?.row ?? null }, differs(['pinned']));
        if (differs(CHART_MEMBERS)) view = chartView(scene, state, titleOf(model));
        else if (!differs(['pinned'])) return;
        const links = linksOf(pinned, view, scene.sides);
        // Without lines to draw a pin changes the emphasis alone, which is much cheaper in a large chart.
        if (differs(CHART_MEMBERS) || links.length || view.links.length) {
            view = { ...view, links };
            chart.update({ ...view, pinned: pinned?.row ?? null, hovered });
        } else chart.highlight(hovered, pinned?.row ?? null);
    }

    async function showPinned(state) {
        const item = pinned = findPinned(scene.items, state.pinned);
        const { sides } = scene;
        if (!item) return side.showDetails(null, sides, []);
        try {
            const found = await Promise.all(item.sides.map((row, at) => row && source.details(at, row.id)));
            if (pinned === item) side.showDetails(item, sides, found);
        } catch (error) {
            if (pinned !== item) return;
            side.showDetails(item, sides, []);
            fail(error);
        }
    }

    store.subscribe((state, before) => {
        if (!scene || !isSame(state.tokens, scene.tokens)) return void load(state);
        ++wanted;  // an answer that is still on its way isn't wanted any more
        app.removeAttribute('aria-busy');
        show(state, before);
    });
    let isLost = false;
    source.watch(() => location.reload(), (lost) => {
        if (lost) notice.show(texts('page_connection_lost'));
        else if (isLost) notice.hide();
        isLost = lost;
    }, (fault) => notice.show(texts('page_file_fault', fault)));
}

const isSame = (/** @type {string[]} */ a, /** @type {string[]} */ b) => a.join() === b.join();
const titleOf = (model) => model.results.map(({ program, file }) => program || file).join(' \u2192 ');

function pageHead(model) {
    const facts = (result) => [result.machine, result.place].filter(Boolean).join(', ');
    const places = [...new Set(model.results.map(facts))].filter(Boolean);
    return make('header.top', null, make('h1', null, titleOf(model)),
        ...places.map((place) => make('p', null, place)),
        make('p', null, model.results.map(({ file }) => file).join(' \u2192 ')));
}

const pageFoot = (model) => make('footer', null, ...(model.notes ?? []).map((note) => make('p', null, note)));

/** A line for errors: said in words, and with a way to try again. */
function createNotice() {
    const element = make('div.notice', { role: 'alert', hidden: true });
    return {
        element,
        show(text, again) {
            element.replaceChildren(...[
                make('p', null, text),
                again && make('button', { type: 'button', onclick: again }, texts('page_try_again')),
                make('button.quiet', { type: 'button', 'aria-label': texts('page_close'),
                    onclick: () => this.hide() }, '\u00d7'),
            ].filter(Boolean));
            element.hidden = false;
        },
        hide() {
            element.hidden = true;
        },
    };
}

// Without a model there is no catalogue: these words stand in the program's first language.
if (!globalThis.DecompressionStream) {
    app.replaceChildren(make('p.boot', { role: 'alert' },
        'This browser is too old for the page: it needs one of 2023 or later.'));
} else {
    start().catch((error) => {
        app.replaceChildren(make('p.boot', { role: 'alert' },
            `The page can't show its data: ${error.message}`));
        throw error;
    });
}
