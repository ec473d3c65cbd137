// The program as a whole: how much of its roofs it reaches, and with which threads it ran.
import { barred, mixTable } from './details.js';
import { figures, make } from './dom.js';
import { number, plain, texts } from './texts.js';

/** @param {object} model */
export function showSummary(model) {
    const isComparison = model.results.length > 1;
    const head = make('summary', null, texts('page_summary'));
    return make('details.summary', { open: true }, head,
        isComparison && totals(model.comparison),
        ...model.results.map((result, side) => programSummary(result, isComparison
            ? texts(side ? 'page_new_of' : 'page_base_of', result.program) : result.program)));
}

function programSummary(result, title) {
    const { summary, threads } = result;
    const facts = [
        result.machine, result.place, result.isProjected && texts('page_projected'),
        threads?.physicalCoreCount && texts('page_cores', threads.physicalCoreCount,
            threads.processorPackageCount),
        result.file,
    ].filter(Boolean);
    return make('section', null,
        make('h3', null, title),
        make('p.facts', null, ...facts.map((fact) => make('span', null, fact))),
        summary?.metrics ? metricTable(summary)
            : result.hasSummary && make('p', null, texts('page_no_summary')),
        mixTable(programMix(summary)));
}

/** The library's groups of instructions as one list. */
const programMix = (summary) => (summary?.instructionMix ?? [])
    .flatMap((group) => group.instructions.map((entry) => ({
    group: group.name, name: entry.instruction, type: entry.dataType?.title ?? '',
    instructions: entry.instructionCount?.value ?? null, operations: entry.operationCount?.value ?? null,
})));

function metricTable({ metrics, roofs }) {
    const byKey = new Map((roofs ?? []).map((roof) => [roof.key, roof]));
    // The library writes 0 for what wasn't measured.
    const known = ({ value }) => (value > 0 ? value : null);
    // Metric and roof have one measure, which the roof writes as the chart does.
    const value = (of, measure = of.measure) =>
        [number(known(of)), known(of) && plain(measure)].filter(Boolean).join(' ');
    return figures(['metric', 'reached', 'fraction', 'roof_value'].map((id) => texts(`page_column_${id}`)),
        metrics.flatMap((metric) => {
            const roof = byKey.get(metric.roofName);
            const described = ({ caption, description }, text = caption) =>
                make('span', { title: plain(description ?? '') }, plain(text));
            const parts = (metric.children ?? []).filter(known)
                .map((child) => described(child, `${child.caption}: ${number(child.value)}`));
            return [
                [
                    make(`span${metric.isDominatingOps ? '.chief' : ''}`,
                        { title: plain(metric.description ?? '') },
                        plain(metric.caption)),
                    value(metric, roof?.measure),
                    barred(known(metric) && roof?.value > 0 ? metric.value / roof.value : null),
                    roof ? value(roof) : texts('page_missing'),
                ],
                make('tr.minor', null, make('td', { colSpan: 4 }, roof && described(roof), ...parts)),
            ];
        }));
}

/** Times of both results, in seconds, of the pairs and of all rows. */
function totals({ totals: sums, noise }) {
    const line = (caption, base, next) =>
        [caption, number(base), number(next), number(next > 0 ? base / next : null)];
    return make('section', null,
        figures(['', ...['time_base', 'time_new', 'pair_speed_up'].map((id) => texts(`page_column_${id}`))], [
            line(texts('page_total_pairs'), sums.pairsBase, sums.pairsNew),
            line(texts('page_total_all'), sums.allBase, sums.allNew),
            [texts('page_total_mean'), '', '', number(sums.meanSpeedUp)],
        ]),
        make('p.note', null, texts('page_noise', number(noise))));
}
