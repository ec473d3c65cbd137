// The list of roofs: which are drawn, which drawn strong; on a served page also values of the reader's own.
import { make, menu, refill, segments } from './dom.js';
import { OTHERS, roofSide, roofsOf, setUpKey } from './model.js';
import { number, plain, texts } from './texts.js';

export function createRoofMenu(model, store, source, fail) {
    const panel = make('div.roofs');
    const element = menu(texts('page_roofs'), panel);
    element.classList.add('right', 'roof-menu');
    return {
        element,
        update(scene, state) {
            const machines = scene.sides.map(({ roofs }) => JSON.stringify(roofs.asRun));
            const side = roofSide(scene, state);
            const roofs = roofsOf(side, state);
            const change = (key, how) => store.set({ roofs: { ...state.roofs, [key]: how } });
            refill(panel, [
                machines.length > 1 && machines[0] !== machines[1]
                    && segments(texts('page_machine'), texts('page_machine_expl'),
                    model.results.map((result, value) => ({
                        value, caption: texts(value ? 'page_new' : 'page_base'), expl: result.machine,
                    })), (value) => value === state.machine, (machine) => store.set({ machine })),
                ...[true, false].map((isMemory) =>
                    roofTable(roofs.filter(({ roof }) => roof.isMem === isMemory), isMemory, change)),
                make('div.list.row', null,
                    make('button', { type: 'button', 'data-focus': 'as-library',
                        onclick: () => store.set({ roofs: {} }) },
                        texts('page_roofs_reset')),
                    make('button', {
                        type: 'button', 'data-focus': 'strong-only',
                        // Not by name: which ones are strong follows from what is chosen later.
                        onclick: () => store.set({ roofs: {
                            ...Object.fromEntries(Object.entries(state.roofs)
                                .filter(([, how]) => how === 'strong')),
                            [OTHERS]: 'off',
                        } }),
                    }, texts('page_roofs_strong_only'))),
                source.setRoof && roofs.length > 0
                    && customRoof(side, state, roofs, source.setRoof, fail),
            ].filter(Boolean));
        },
    };
}

function roofTable(roofs, isMemory, change) {
    if (!roofs.length) return null;
    return make('table', null,
        make('thead', null, make('tr', null,
            make('th', { scope: 'col' }, texts('page_roof_show')),
            make('th', { scope: 'col', title: texts('page_roof_strong_expl') }, texts('page_roof_strong')),
            make('th', { scope: 'col' }, texts(isMemory ? 'page_roofs_memory' : 'page_roofs_compute')),
            make('th.number', { scope: 'col' }, texts('page_roof_value')))),
        make('tbody', null, ...roofs.map(({ key, roof, how }) => {
            const tick = (what, checked, next) => make('td', null, make('input', {
                type: 'checkbox', checked, 'aria-label': `${texts(`page_roof_${what}`)}: ${roof.name}`,
                'data-focus': `${what}.${key}`, onchange: () => change(key, next),
            }));
            return make('tr', { title: plain(roof.desc ?? '') },
                tick('show', how !== 'off', how === 'off' ? 'thin' : 'off'),
                tick('strong', how === 'strong', how === 'strong' ? 'thin' : 'strong'),
                make('td', null, plain(roof.name)),
                make('td.number', null, `${number(roof.val / 1e9)} ${roof.measure}`));
        })));
}

/**
 * A form for a roof's own value. What follows from roofs is worked out anew by the program, so the page loads
 * again.
 */
function customRoof(side, state, roofs, setRoof, fail) {
    const setUp = side.roofs.setUps.find((candidate) => setUpKey(candidate) === state.setUp);
    const send = (id, value) => setRoof({
        result: side.number, id, value, threadCount: setUp?.threadCount ?? 0,
        packageCount: setUp?.packageCount ?? 0,
        single: setUp?.strategyId === 'rsiSingleThread',
    }).then(() => location.reload(), fail);
    const which = make('select', { 'data-focus': 'own-roof', 'aria-label': texts('page_own_roof') },
        ...roofs.map(({ roof }) => make('option', { value: roof.id }, plain(roof.name))));
    const chosen = () => roofs.find(({ roof }) => String(roof.id) === which.value)?.roof;
    const measure = make('span', null, chosen()?.measure ?? '');
    const value = make('input', {
        type: 'number', min: '1e-9', step: 'any', required: true, 'data-focus': 'own-value',
        'aria-label': texts('page_own_roof_value'),
    });
    which.addEventListener('change', () => {
        measure.textContent = chosen().measure;
    });
    return make('form.list', {
        onsubmit: (event) => {
            event.preventDefault();
            send(chosen().id, Math.round(Number(value.value) * 1e9));
        },
    }, make('strong', { title: texts('page_own_roof_expl') }, texts('page_own_roof')),
    make('div.row', null, which, value, measure),
    make('div.row', null,
        make('button', { type: 'submit' }, texts('page_own_roof_set')),
        make('button', { type: 'button', 'data-focus': 'own-clear',
            onclick: () => send(chosen()?.id ?? 0, null) },
            texts('page_own_roof_clear'))));
}
