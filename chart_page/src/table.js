// The columns of the list of rows, for the table and for CSV.
import { number, percent, texts } from './texts.js';

const figure = (id, width, value, more) => ({
    id, width, numeric: true, value, text: (item) => number(value(item)),
    caption: texts(`page_column_${id}`), expl: texts(`page_column_${id}_expl`), ...more,
});

const share = (value) => ({ text: (item) => percent(value(item)),
    look: (item) => (value(item) > 1 + 1e-9 ? 'odd' : '') });

const power = (logarithm) => (logarithm === undefined ? null : 10 ** logarithm);

/**
 * The columns of one result's rows; with several memory levels each has its own intensity and traffic.
 * @param {import('./model.js').Side} side
 * @param {object} axes the chart document that names them
 * @returns {Array<import('./grid.js').Column<import('./model.js').Item>>}
 */
export function rowColumns(side, axes) {
    const row = (item) => item.sides[side.number];
    const several = side.levels.length > 1;
    const { measureX = '', measureY = '' } = axes;
    const first = (item) => row(item).points.find(Boolean);
    const of = (caption, level) =>
        (several ? texts('page_column_of_level', caption, level.caption) : caption);
    const perLevel = side.levels.flatMap((level, at) => [
        figure('intensity', several ? 88 : 72, (item) => power(row(item).points[at]?.x), {
            id: several ? `intensity_${level.level}` : 'intensity',
            caption: of(texts('page_column_intensity'), level), unit: measureX,
            expl: texts('page_column_intensity_expl', measureX),
        }),
        figure('traffic', several ? 88 : 72, (item) => row(item).points[at]?.traffic ?? null, {
            id: several ? `traffic_${level.level}` : 'traffic',
            caption: of(texts('page_column_traffic'), level),
        }),
    ]);
    const [intensity, ...others] = perLevel;
    const kindLook = { memory: 'memory', compute: 'compute' };
    const limit = {
        id: 'limit', width: 142, caption: texts('page_column_limit'), expl: texts('page_column_limit_expl'),
        value: (item) => row(item).limit, text: (item) => row(item).limit || texts('page_missing'),
        look: (item) => `limit ${kindLook[row(item).limitKind] ?? ''}`,
    };
    return [
        {
            id: 'name', width: 140, caption: texts('page_column_name'), expl: '',
            value: (item) => row(item).name,
            look: (item) => (row(item).cause ? 'unplaced' : ''),
        },
        figure('share', 76, (item) => row(item).share, share((item) => row(item).share)),
        figure('time', 72, (item) => row(item).time),
        intensity,
        figure('performance', 72, (item) => power(first(item)?.y), {
            unit: measureY, expl: texts('page_column_performance_expl', measureY),
        }),
        limit,
        figure('fraction', 78, (item) => row(item).fraction, share((item) => row(item).fraction)),
        figure('speed_up', 72, (item) => row(item).speedUp),
        ...others,
        figure('calls', 76, (item) => row(item).calls),
    ];
}
