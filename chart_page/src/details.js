// What is known of the pinned row: verdict, memory levels, the library's messages, tables and explanations.
import { visible } from './chart/dom.js';
import { changeText } from './chart_view.js';
import { figures, make } from './dom.js';
import { gainText, hasLevelRoofs, nearestRoof } from './model.js';
import { isAbove, number, percent, plain, texts } from './texts.js';

/** A bar of a fraction, full at 1. @param {number|null} fraction @param {string} [look] */
export function bar(fraction, look = '') {
    const fill = make('i');
    fill.style.width = `${Math.min(1, Math.max(0, fraction ?? 0)) * 100}%`;
    return make('span', { className: `bar ${look}`, 'aria-hidden': true }, fill);
}

/** A fraction as text and bar. */
export const barred = (fraction, look) =>
    make('span.barred', null, make(`span${isAbove(fraction) ? '.odd' : ''}`, null, percent(fraction)),
        fraction !== null && fraction !== undefined && bar(fraction, look));

/**
 * @param {import('./model.js').Item} item
 * @param {import('./model.js').Side[]} sides
 * @param {Array<object|null>} details by side
 * @param {() => void} onClose
 */
export function showDetails(item, sides, details, onClose) {
    const present = item.sides.flatMap((row, at) =>
        (row ? [{ row, side: sides[at], detail: details[at] }] : []));
    const head = make('header', null,
        make('h2', { title: present[0].row.name }, visible(present.at(-1).row.name)),
        make('button.quiet', { type: 'button', title: texts('page_unpin'), 'aria-label': texts('page_unpin'),
            onclick: onClose },
            '\u00d7'));
    const bodies = present.map(({ row, side, detail }) => rowDetails(row, side, detail));
    if (sides.length < 2) return [head, ...bodies[0]];
    return [
        head,
        item.pair ? pairTable(item, sides)
            : make('p', null, texts(item.sides[0] ? 'page_only_base' : 'page_only_new')),
        ...present.map(({ side }, i) => make('details.sub', { open: i === present.length - 1 },
            make('summary', null, texts(side.number ? 'page_new_of' : 'page_base_of', side.result.program)),
            ...bodies[i])),
    ];
}

function pairTable({ sides: [base, next], pair }) {
    // Points of different levels can't be compared.
    const at = (row, wanted) => row.points.find((point) => point && point.level === wanted);
    const level = base.points.find((point) => point && at(next, point.level))
        ?? [...base.points, ...next.points].find(Boolean);
    const point = (row, axis) => {
        const found = level && at(row, level.level);
        return number(found ? 10 ** found[axis] : null);
    };
    const captionOf = (id) => texts(`page_column_${id}`);
    const line = (id, cell, caption = captionOf(id)) => [caption, cell(base), cell(next)];
    const levelLine = (id, axis) => line(id, (row) => point(row, axis),
        level?.caption ? texts('page_column_of_level', captionOf(id), level.caption) : captionOf(id));
    return make('div', null,
        make(`p.change.${pair.change}`, null, make('strong', null, changeText(pair))),
        figures(['', texts('page_base'), texts('page_new')], [
            line('time', (row) => number(row.time)),
            line('share', (row) => percent(row.share)),
            levelLine('performance', 'y'),
            levelLine('intensity', 'x'),
            line('limit', (row) => row.limit || texts('page_missing')),
            line('fraction', (row) => percent(row.fraction)),
            line('gain', (row) => number(row.gain)),
        ]));
}

function rowDetails(row, side, detail) {
    const { rows } = side.result;
    const dictionary = (index) => plain(side.result.dictionary[index] ?? '');
    const type = plain(rows.type[row.index] ?? '');
    const vectorised = rows.vectorised[row.index];
    const facts = [
        row.location, type,
        vectorised !== null && texts(vectorised ? 'page_vectorised' : 'page_not_vectorised'),
        texts(row.total ? 'page_card_time_total' : 'page_card_time', number(row.time), percent(row.share)),
        row.calls !== null && texts('page_card_calls', number(row.calls)),
    ].filter(Boolean);
    return [
        make('p.facts', null, ...facts.map((fact) => make('span', null, fact))),
        verdict(row, side, dictionary),
        row.doubt && make('p.warning', null, row.withCallees ? texts('page_verdict_total')
            : texts('page_remark', row.doubt)),
        row.cause && make('p', null, texts('page_not_in_chart', row.cause)),
        ...(detail ? messages(detail) : []),
        levelTable(row, side),
        ...(detail ? tables(detail) : []),
        detail === null && make('p.note', null, texts('page_details_none')),
        detail === undefined && make('p.note', null,
            texts('page_details_left_out', Object.keys(side.result.details ?? {}).length)),
    ].filter(Boolean);
}

/** The library's judgement of the row as a whole. */
function verdict(row, { result }, dictionary) {
    const { rows } = result;
    const cause = dictionary(rows.cause[row.index]);
    const nearest = nearestRoof(result, row.index);
    const nearestLine = nearest
        && make('p', null, texts('page_nearest_level', nearest.roof, percent(nearest.fraction)));
    if (!row.limit)
        return make('div.verdict', null,
            make('p', null, texts('page_no_verdict', cause || texts('page_missing'))), nearestLine);
    const [intensity, performance, operations] = [rows.intensity, rows.performance, rows.operations]
        .map((column) => column[row.index]);
    const gain = gainText(row);
    return make('div.verdict', null,
        make('p', null, make(`span.limit${row.limitKind ? `.${row.limitKind}` : ''}`, null, row.limit), ' ',
            make(`span${isAbove(row.fraction) ? '.odd' : ''}`, null,
                texts('page_of_roof', percent(row.fraction))),
            gain && `, ${gain}`),
        bar(row.fraction, row.limitKind),
        make('p.facts', null,
            make('span', null, texts('page_verdict_point', number(intensity), number(performance))),
            operations && make('span', null, texts(`page_operations_${operations}`)),
            hasLevelRoofs(result, row.index) && make('span', null, texts('page_verdict_core'))),
        nearestLine);
}

function messages({ bottleneck, conclusions }) {
    const all = [...(bottleneck?.messages ?? []), ...(conclusions ?? [])].filter(Boolean);
    return all.map((message) => make('p.message', null, plain(message)));
}

/** Each level's traffic with its own roof. */
function levelTable({ index }, { result }) {
    const known = result.levels.filter(({ traffic, roof }) => (traffic[index] ?? roof[index]) !== null);
    if (!known.length) return null;
    const roofName = (at) => plain(result.dictionary[at] ?? texts('page_missing'));
    return make('section', null,
        make('h3', { title: texts('page_levels_table_expl') }, texts('page_levels_table')),
        figures(['level', 'traffic', 'intensity', 'level_roof', 'fraction', 'memory_time']
            .map((id) => texts(`page_column_${id}`)),
            known.map((entry) => [
                entry.nearest[index] ? make('span.chief', { title: texts('page_nearest') }, entry.level)
                    : entry.level,
                number(entry.traffic[index]), number(entry.intensity[index]), roofName(entry.roof[index]),
                barred(entry.fraction[index], 'memory'), barred(entry.timeShare[index]),
            ])));
}

function tables(detail) {
    const small = detail.roofline?.data;
    const roofs = small?.roofs ?? [];
    const explanations = [...new Set([
        ...(detail.roofline?.explanation ?? []), ...(detail.memoryMetrics?.explanation ?? []),
    ])];
    return [
        ...(detail.memoryMetrics?.metrics ?? []).map((metric) => make('section', null,
            make('h3', { title: plain(metric.explanation ?? '') }, plain(metric.caption)),
            figures([], metric.metrics.map(({ label, val }) =>
                [plain(label), barred(val === null ? null : val / 100)])))),
        roofs.length && make('section', null,
            make('h3', { title: texts('page_row_roofs_expl') }, texts('page_row_roofs')),
            figures([], roofs.map((roof) => [
                roof.name === small.limitingRoof
                    ? make('span.chief', { title: texts('page_column_limit') }, plain(roof.name))
                    : plain(roof.name),
                `${number(10 ** roof.val)} ${plain(roof.measure)}`,
            ]))),
        mixTable(detail.mix),
        explanations.length && make('details.sub', null, make('summary', null, texts('page_explanations')),
            ...explanations.map((text) => make('p', null, plain(text)))),
    ].filter(Boolean);
}

/**
 * Instructions and operations by kind and type.
 * @param {Array<object>|null} mix each with group, name, type, instructions and operations
 */
export function mixTable(mix) {
    if (!mix?.length) return null;
    return make('section', null, make('h3', null, texts('page_mix')),
        figures(['instruction', 'data_type', 'instructions', 'operations']
            .map((id) => texts(`page_column_${id}`)),
            mix.map(({ group, name, type, instructions, operations }) => [
                plain([group, name].filter(Boolean).join(': ')), plain(type),
                number(instructions), number(operations),
            ])));
}
