// The columns of the list of rows, for the table and for CSV.
import { figure, fraction, limitColumn, power } from './columns.js';
import { nearestRoof } from './model.js';
import { texts } from './texts.js';

/**
 * The columns of one result's rows, the verdict first; with several memory levels each has its own intensity
 * and traffic.
 * @param {import('./model.js').Side} side
 * @param {object} axes the chart document that names them
 * @returns {Array<import('./grid.js').Column<import('./model.js').Item>>}
 */
export function rowColumns(side, axes) {
    const row = (item) => item.sides[side.number];
    const { measureX = '', measureY = '' } = axes;
    const own = (id, width, more) => figure(id, width, (item) => row(item)[id], more);
    const part = (id, width) => own(id, width, fraction((item) => row(item)[id]));
    const [intensity, ...others] = levelColumns(side, row, axes);
    return [
        {
            id: 'name', width: 140, caption: texts('page_column_name'), expl: '',
            value: (item) => row(item).name, text: (item) => row(item).short,
            title: (item) => row(item).name,
            look: (item) => (row(item).cause ? 'unplaced' : ''),
        },
        part('share', 82),
        limitColumn('limit', 150, row),
        part('fraction', 86),
        own('time', 80),
        intensity,
        figure('performance', 80, (item) => power(row(item).points.find(Boolean)?.y), {
            unit: measureY, exportCaption: axes.nameY,
            expl: texts('page_column_performance_expl', measureY),
        }),
        figure('speed_up', 80, (item) => row(item).speedUp),
        own('gain', 80),
        ...nearestColumns(side, row),
        ...others,
        own('calls', 84),
    ];
}

/** Intensity and traffic of each level that is shown. */
function levelColumns(side, row, axes) {
    const several = side.levels.length > 1;
    const { measureX = '' } = axes;
    const of = (caption, level) =>
        (several ? texts('page_column_of_level', caption, level.caption) : caption);
    const idOf = (id, level) => (several ? `${id}_${level.level}` : id);
    const width = several ? 96 : 80;
    return side.levels.flatMap((level, at) => [
        figure('intensity', width, (item) => power(row(item).points[at]?.x), {
            id: idOf('intensity', level), unit: measureX,
            caption: of(texts('page_column_intensity'), level),
            exportCaption: axes.nameX && of(axes.nameX, level),
            expl: texts('page_column_intensity_expl', measureX),
        }),
        figure('traffic', width, (item) => row(item).points[at]?.traffic ?? null, {
            id: idOf('traffic', level), caption: of(texts('page_column_traffic'), level),
        }),
    ]);
}

/** The nearest roof above the points of the levels, where the result has levels. */
function nearestColumns({ result }, row) {
    if (result.rows.nearest.every((roof) => roof === null)) return [];
    const nearest = (item) => nearestRoof(result, row(item).index);
    const reached = (item) => nearest(item)?.fraction ?? null;
    return [
        {
            id: 'nearest', width: 150, caption: texts('page_column_nearest'),
            expl: texts('page_column_nearest_expl'),
            value: (item) => nearest(item)?.roof ?? '',
            text: (item) => nearest(item)?.roof ?? texts('page_missing'),
        },
        figure('nearest_fraction', 86, reached, fraction(reached)),
    ];
}
