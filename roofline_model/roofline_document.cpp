#include "roofline_model/roofline_document.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/no_data_rules.h"
#include "roofline_model/roof_names.h"
#include "roofline_model/translation.h"

namespace data_models2 {

namespace {

constexpr int kAnyLibrary = 1;

// The count that tells whether a chart of these types has anything to show; the first match decides.
constexpr std::pair<const char*, FieldId> kOperationFields[]{
    {"i", FieldId::SelfIntOps},
    {"b", FieldId::SelfMixedOps},
};

FieldId operationField(const RooflineConfiguration& configuration) {
    for (const auto& [type, field] : kOperationFields)
        if (configuration.hasType(type)) return field;
    return FieldId::SelfFloatOps;
}

// Looks at each row on its way into the chart.
class RowCollector {
public:
    RowCollector(const sptr_t<IDataset>& dataset, FieldId operations, FieldId time)
        : m_operations(dataset->getColumn(operations)), m_time(dataset->getColumn(time)) {}

    void see(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) {
        m_rowOps = read(dataset, row, m_operations);
        m_statistics.programOps += m_rowOps;
        if (m_rowOps > 0.0) m_statistics.rowTime = read(dataset, row, m_time);
        if (!m_statistics.libraryRowSeen && m_rowOps != 0.0)
            m_statistics.libraryRowSeen = library_helpers::hasLibrary(row, dataset, kAnyLibrary);
    }
    void chart() { m_statistics.chartOps += m_rowOps; }
    const RowStatistics& statistics() const { return m_statistics; }

private:
    static double read(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row,
                       const sptr_t<ColumnNode>& column) {
        variant_t cell;
        return dataset->getValue(row, column, 0, cell) ? cell.toDouble() : 0.0;
    }

    sptr_t<ColumnNode> m_operations;
    sptr_t<ColumnNode> m_time;
    double m_rowOps = 0.0;
    RowStatistics m_statistics;
};

void fillDocument(rabbit::object& root, const DocumentRequest& request, RooflineViewRect& viewRect) {
    const auto& [dataset, options, configurations, programTotals, tables, selfData, time] = request;
    constexpr auto kTitle = "roofline_no_data_generic_error_title";
    constexpr auto kDescr = "roofline_no_data_generic_error_descr";
    if (!dataset || !options || configurations.empty()) return addNoDataMessage(root, kTitle, kDescr);
    options->translate();
    if (!programTotals.empty() && programTotals.front().time == 0.0)
        return addNoDataMessage(root, kTitle, kDescr);

    const std::vector<RooflineAttrsTotal> totals(programTotals.begin(), programTotals.end());
    const RooflineConfiguration& first = *configurations.begin();
    RowCollector collector(dataset, operationField(first), time);
    const auto rowFilter = [&](const sptr_t<IDataset>& rows, const sptr_t<RowNode>& row) {
        collector.see(rows, row);
        return true;
    };
    const auto onLoop = [&](CLoopInfo&) { collector.chart(); };
    if (fillRooflineData(root, dataset, options, configurations, totals, tables, selfData, viewRect,
                         rowFilter, onLoop))
        return;
    if (time == FieldId::None)
        return addNoDataMessage(root, "roofline_no_data_title", "roofline_no_data_descr");
    addNoDataMessage(root, dataset, selfData, first, collector.statistics());
}

void addBounds(rabbit::object& object, const RooflineViewRect& rect) {
    object.append("minX", rect.minX);
    object.append("minY", rect.minY);
    object.append("maxX", rect.maxX);
    object.append("maxY", rect.maxY);
}

void addLoopTypes(rabbit::object& object, const LoopTypes& loopTypes) {
    rabbit::object result(object.allocator());
    for (const auto& [text, id] : loopTypes) result.append(id, text);
    object.append("loopTypes", std::move(result));
}

std::string levelCaption(const std::string& level, const CRooflineOptions& options) {
    return level == "L1" ? roofline::translate("roofline_options_l1") : options.getOptionCaption(level);
}

}  // namespace

std::string makeRooflineDocument(const DocumentRequest& request, RooflineViewRect& viewRect) {
    return rabbit::writeObject([&](rabbit::object& root) { fillDocument(root, request, viewRect); });
}

bool fillRooflineData(rabbit::object& object, const sptr_t<IDataset>& dataset,
                      const std::shared_ptr<const CRooflineOptions>& options,
                      const RooflineConfigurations& configurations,
                      const std::vector<RooflineAttrsTotal>& totals, const ChartTables& tables, bool selfData,
                      RooflineViewRect& viewRect, const RowFilter& rowFilter,
                      const std::function<void(CLoopInfo&)>& onLoop) {
    if (!dataset || !options || configurations.empty()) return false;
    std::vector<CLoopInfo> loops;
    LoopTypes loopTypes;
    std::vector<std::string> captions;
    fillLoops(dataset, tables.params, configurations, options, selfData, loops, loopTypes, captions, viewRect,
              onLoop, rowFilter);
    if (loops.empty()) return false;

    const RooflineConfiguration& configuration = *configurations.begin();
    rabbit::object attributes(object.allocator());
    addRooflineAttributes(attributes, tables.attributes, configuration);
    object.set("attrs", std::move(attributes));
    addRooflineProperties(object, tables.properties, configuration);
    object.set("memoryLevelPref", roofline::getMemoryLevelCaption(captions));
    object.set("withCallstacks", selfData ? 0 : 1);
    for (const auto& total : totals) updateViewRect(viewRect, total.x, total.y);
    addBounds(object, viewRect);
    object.set("roofs", rabbit::array(object.allocator()));
    addLoopTypes(object, loopTypes);
    if (!totals.empty())
        addProgramTotalRooflineAttributes(object, tables.attributes, configuration, totals.front());
    rabbit::array programTotal(object.allocator());
    for (const auto& total : totals) {
        rabbit::object item(object.allocator());
        fillProgramTotal(item, total, options, configuration, tables.attributes);
        programTotal.push(std::move(item));
    }
    object.set("programTotal", std::move(programTotal));
    const auto count = loops.size();
    object.stream("loops", count, [records = std::move(loops)](std::size_t i, rabbit::object& record) {
        records[i].toJSON(record);
    });
    return true;
}

void fillProgramTotal(rabbit::object& object, const RooflineAttrsTotal& total,
                      const std::shared_ptr<const CRooflineOptions>& options,
                      const RooflineConfiguration& configuration, const RooflineAttributes& attributes) {
    const std::string caption = levelCaption(total.name, *options);
    object.set("name", caption);
    object.set("descr", roofline::translate("roofline_summary_total_point_descr", caption));
    object.set("memoryLevelPref", roofline::getMemoryLevelCaption(options->getCaptions({total.name})));
    object.set("x", total.x);
    object.set("y", total.y);
    addProgramTotalRooflineAttributes(object, attributes, configuration, total);
}

void fillProgramTotal(rabbit::object& object, const RooflineAttrsTotal& total,
                      const std::shared_ptr<const CRooflineOptions>& options,
                      const RooflineTypes& configurationTypes, const RooflineAttributes& attributes) {
    RooflineConfigurations configurations;
    configurations.init(options->getRooflineConfigurationStr(configurationTypes), options);
    if (!configurations.empty())
        fillProgramTotal(object, total, options, *configurations.begin(), attributes);
}

}  // namespace data_models2
