// The page: keeps chart, controls and lists in step with the one state.
import { createChart } from './chart/chart.js';
import { chartView, linksOf } from './chart_view.js';
import { createControls } from './controls.js';
import { make, saveFile } from './dom.js';
import { createNotices, fileNameOf, pageFoot, pageHead, titleOf } from './frame.js';
import { createHelp } from './help.js';
import { findPinned, loadScene, pinOf, roofSide, roofsOf } from './model.js';
import { createSidePanel } from './side_panel.js';
import { createSplitter } from './splitter.js';
import { createStore } from './store.js';
import { subtitleOf } from './subtitle.js';
import { texts } from './texts.js';

/** The members of the state that change each part. */
const CHART_MEMBERS = ['setUp', 'roofs', 'machine', 'search', 'least', 'colourBy', 'without'];
const CONTROL_MEMBERS = ['setUp', 'roofs', 'machine', 'colourBy'];
const LIST_MEMBERS = ['search', 'least', 'without', 'sort', 'descending', 'list'];

const isSame = (/** @type {string[]} */ a, /** @type {string[]} */ b) => a.join() === b.join();

export class Page {
    /** @param {HTMLElement} app @param {object} model @param {import('./source.js').Source} source */
    constructor(app, model, source) {
        this.m_app = app;
        this.m_model = model;
        this.m_source = source;
        this.m_usual = model.results[0].configuration.split('-');
        this.m_store = createStore({ tokens: this.m_usual });
        this.m_notices = createNotices();

        this.m_scene = null;
        this.m_view = null;
        this.m_pinned = null;
        this.m_hovered = null;
        this.m_wanted = 0;          // number of the load whose answer counts
        this.m_isFallback = false;  // what loads stands in for what failed: the error stays in sight

        this.m_build();
    }

    start() {
        this.m_store.subscribe((state, before) => this.m_follow(state, before));
        const { m_notices: notices } = this;
        const say = (sort, isSo, text) => (isSo ? notices.show(sort, text) : notices.hide(sort));
        this.m_source.watch(() => location.reload(),
            (isLost) => say('connection', isLost, texts('page_connection_lost')),
            (fault) => say('files', fault, texts('page_file_fault', fault)));
    }

    m_build() {
        const { m_model: model, m_store: store } = this;
        const on = { onPin: (row) => this.m_pin(row), onHover: (row) => this.m_hover(row) };
        const side = this.m_side = createSidePanel(model, store, on);
        const stage = make('section.stage', { 'aria-label': texts('page_chart') });
        const help = createHelp({
            '/': side.focusSearch, t: side.focusList, 0: () => this.m_chart.resetZoom(),
            Escape: () => this.m_pin(null),
            l: () => store.set({ colourBy: store.state.colourBy === 'limit' ? 'level' : 'limit' }),
        });
        this.m_controls = createControls(model, store, this.m_source,
            { ...this.m_exports(), help: () => help.open(), fail: (error) => this.m_fail(error) });
        this.m_app.replaceChildren(pageHead(model), this.m_controls.element, this.m_notices.element,
            make('main', null, stage, createSplitter(() => side.element), side.element),
            pageFoot(model), help.element);
        this.m_chart = createChart(stage, {
            ...on, onRoof: (key) => this.m_toggleRoof(key),
            onZoom: (zoom) => store.set({ zoom }),
            onLimit: (kind) => {
                const { without } = store.state;
                store.set({ without: without.includes(kind) ? without.filter((other) => other !== kind)
                    : [...without, kind] });
            },
        });
    }

    /** What saves the view; what was typed a moment ago counts. */
    m_exports() {
        const name = fileNameOf(this.m_model);
        const save = (kind, type, content) => async () => {
            try {
                this.m_side.flush();
                saveFile(`${name}.${kind}`, await content(), type);
            } catch (error) {
                this.m_fail(error);
            }
        };
        return {
            saveSvg: save('svg', 'image/svg+xml', () => this.m_chart.exportSvg()),
            savePng: save('png', 'image/png', () => this.m_chart.exportPng()),
            saveCsv: save('csv', 'text/csv', () => this.m_side.csv()),
        };
    }

    m_fail(error) {
        this.m_notices.show('action', error.message);
    }

    m_pin(row) {
        const item = this.m_scene?.items[row ?? -1];
        this.m_store.set({ pinned: item ? pinOf(item) : '' });
    }

    m_hover(row) {
        if (row === this.m_hovered) return;
        this.m_hovered = row;
        this.m_chart.highlight(row, this.m_marks.pinned);
        this.m_side.grid.highlight(this.m_marks);
    }

    get m_marks() {
        return { hovered: this.m_hovered, pinned: this.m_pinned?.row ?? null };
    }

    m_toggleRoof(key) {
        const { state } = this.m_store;
        const { how } = roofsOf(roofSide(this.m_scene, state), state).find((roof) => roof.key === key);
        this.m_store.set({ roofs: { ...state.roofs, [key]: how === 'strong' ? 'thin' : 'strong' } });
    }

    m_follow(state, before) {
        if (!this.m_scene || !isSame(state.tokens, this.m_scene.tokens)) return void this.m_load(state);
        ++this.m_wanted;  // an answer that is still on its way isn't wanted any more
        this.m_app.removeAttribute('aria-busy');
        this.m_show(state, before);
    }

    async m_load(state) {
        const mine = ++this.m_wanted;
        this.m_app.setAttribute('aria-busy', 'true');
        try {
            const loaded = await loadScene(this.m_model, this.m_source, state.tokens);
            if (mine !== this.m_wanted) return;
            this.m_scene = { ...loaded, tokens: state.tokens };
            this.m_side.setScene(this.m_scene);
            if (!this.m_isFallback) this.m_notices.hide('load');
            this.m_isFallback = false;
            this.m_show(this.m_store.state, null);
        } catch (error) {
            if (mine === this.m_wanted) this.m_fallBack(state, error);
        } finally {
            if (mine === this.m_wanted) this.m_app.removeAttribute('aria-busy');
        }
    }

    /** After a failure what is seen stays, and the controls go on telling what it is. */
    m_fallBack(state, error) {
        const { m_store: store, m_scene: scene, m_usual: usual } = this;
        this.m_notices.show('load', error.message, () =>
            (store.state.tokens === state.tokens ? this.m_load(state) : store.set({ tokens: state.tokens })));
        if (scene) store.set({ tokens: scene.tokens });
        else if (!isSame(state.tokens, usual)) {
            this.m_isFallback = true;
            store.set({ tokens: usual });
        }
    }

    m_show(state, before) {
        const differs = (members) => !before || members.some((member) => state[member] !== before[member]);
        if (differs(['pinned'])) this.m_showPinned(state);
        if (differs(CONTROL_MEMBERS)) this.m_controls.update(this.m_scene, state);
        if (differs(LIST_MEMBERS)) this.m_side.showList(state);
        this.m_side.grid.highlight(this.m_marks, differs(['pinned']));
        const isNew = differs(CHART_MEMBERS);
        if (before && differs(['zoom'])) this.m_chart.zoomTo(state.zoom);
        if (isNew)
            this.m_view = chartView(this.m_scene, state, titleOf(this.m_model),
                subtitleOf(this.m_model, this.m_scene, state));
        else if (!differs(['pinned'])) return;
        const links = linksOf(this.m_pinned, this.m_view, this.m_scene.sides);
        // Without lines to draw a pin changes the emphasis alone, which is much cheaper in a large chart.
        if (isNew || links.length || this.m_view.links.length) {
            this.m_view = { ...this.m_view, links };
            this.m_chart.update({ ...this.m_view, ...this.m_marks });
        } else this.m_chart.highlight(this.m_hovered, this.m_marks.pinned);
    }

    async m_showPinned(state) {
        const { sides, items } = this.m_scene;
        const item = this.m_pinned = findPinned(items, state.pinned);
        this.m_notices.hide('action');
        if (!item) return this.m_side.showDetails(null, sides, []);
        try {
            const found = await Promise.all(item.sides.map((row, at) =>
                row && this.m_source.details(at, row.id)));
            if (this.m_pinned === item) this.m_side.showDetails(item, sides, found);
        } catch (error) {
            if (this.m_pinned !== item) return;
            this.m_side.showDetails(item, sides, item.sides.map(() => false)); // neither there nor left out
            this.m_fail(error);
        }
    }
}
