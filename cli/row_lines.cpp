// Takes a row's roofline apart. Nothing is judged here: which roof limits a row is the library's answer.
#include "cli/row_lines.h"

#include "host_interfaces/host_functions.h"

#include "cli/cells.h"
#include "cli/operations.h"
#include "cli/unplaced_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace cli {
namespace {

using namespace data_models2;

constexpr double kGiga = 1e9;
constexpr double kPercent = 100.0;

class RowReader {
public:
    RowReader(const Session& session, const RowRooflines& rooflines)
        : m_rooflines(rooflines),
          m_data(*rooflines.dataset()),
          m_name(m_data.getColumn(FieldId::FunctionName)),
          m_location(m_data.getColumn(rooflines.kind().location)),
          m_time(
              m_data.getColumn(rooflines.isTotal() ? rooflines.kind().totalTime : rooflines.kind().selfTime)),
          m_floatOps(m_data.getColumn(rooflines.kind().operations[0].self)),
          m_intOps(m_data.getColumn(rooflines.kind().operations[1].self)),
          m_programSeconds(session.models.all->getProgramInfo().elapsedTime),
          m_levelCaptions(optionCaptions(session)),
          m_types(mainTypes(session)) {}

    RowLine read(const sptr_t<RowNode>& row) const;

private:
    bool hasCell(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column) const {
        return numberIn(m_data, row, column).has_value();
    }

    // As the chart's options call it.
    void nameLevels(RowLine& line) const {
        for (auto& each : line.levels)
            if (const auto found = m_levelCaptions.find(each.level); found != m_levelCaptions.end())
                each.level = found->second;
    }
    std::string causeWithoutCompute(const RowLine& line) const;

    const RowRooflines& m_rooflines;
    const IDataset& m_data;
    sptr_t<ColumnNode> m_name, m_location, m_time, m_floatOps, m_intOps;
    double m_programSeconds;
    std::map<std::string, std::string> m_levelCaptions;
    std::map<std::string, MainTypes> m_types;  // by row id
};

RoofOver roofOver(const std::string& name, double height, double performance) {
    return {name, height, performance / height};
}

std::optional<RoofOver> roofOver(const LimitingRoof& roof, double performance) {
    if (roof.name.empty() && roof.boundCategory == BoundCategory::None) return {};
    return roofOver(roof.name, roof.limitValue, performance);
}

std::optional<double> shareIn(const std::vector<MemoryValue>& values, MemoryLevel level) {
    const auto found = std::find_if(values.begin(), values.end(),
                                    [&](const MemoryValue& each) { return each.memoryLevel == level; });
    if (found == values.end()) return {};
    return found->value / kPercent;
}

std::vector<LevelLine> levelsOf(const IRowRooflineInfo& info) {
    const auto traffic = info.getMemoryValues(RooflineMemoryValuesType::Traffic);
    const auto time = info.getMemoryValues(RooflineMemoryValuesType::Time);
    const auto roofs = info.getMemoryRoofs();
    std::vector<LevelLine> lines;
    for (const auto& point : info.getMemLevelPoints()) {
        auto& line = lines.emplace_back();
        const auto named = std::find_if(traffic.begin(), traffic.end(), [&](const MemoryValue& each) {
            return each.memoryLevel == point.memoryLevel;
        });
        if (named != traffic.end()) line.level = named->caption;
        line.traffic = point.traffic;
        line.intensity = point.ai;
        const auto roof = std::find_if(roofs.begin(), roofs.end(), [&](const RoofItem& each) {
            return each.memoryLevel == point.memoryLevel;
        });
        if (roof != roofs.end())
            line.roof =
                roofOver(roof->name, point.ai * static_cast<double>(roof->value) / kGiga, point.performance);
        line.trafficShare = shareIn(traffic, point.memoryLevel);
        line.timeShare = shareIn(time, point.memoryLevel);
        line.isNearest = point.limitingRoofId != RoofId::None;
    }
    return lines;
}

std::string limitKindOf(const LimitingRoof& limit) {
    if (limit.boundCategory == BoundCategory::Compute || roof::hasType(limit, RoofItem::Compute))
        return "compute";
    return limit.memoryLevel != MemoryLevel::None || roof::hasType(limit, RoofItem::Memory) ? "memory" : "";
}

// The roofs that the point stands on or above: why the library passed them over.
void readRoofsBelow(RowLine& line, const IRowRooflineInfo& info) {
    const auto memory = info.getMemoryRoofs();
    if (!line.limit && !memory.empty()) {
        const auto& highest = memory.back();
        auto over = roofOver(highest.name, *line.intensity * static_cast<double>(highest.value) / kGiga,
                             *line.performance);
        if (over.fraction > 1.0) line.underMemory = std::move(over);
    }
    const auto compute = info.getComputeRoof(OperationsType::Undefined);
    const auto over = roofOver(compute.name, static_cast<double>(compute.value) / kGiga, *line.performance);
    if (compute.id != RoofId::None && over.fraction >= 1.0) line.underCompute = over;
}

std::string causeWithoutLimit(const RowLine& line, const IRowRooflineInfo& info,
                              const std::string& withoutCompute) {
    if (line.limit || line.underMemory) return {};
    const bool hasCompute = info.getComputeRoof(OperationsType::Undefined).id != RoofId::None;
    const bool hasMemory = !info.getMemoryRoofs().empty();
    if (!hasCompute && !hasMemory) return "no roofs";
    if (!hasCompute) return withoutCompute;
    return hasMemory ? "no roof found" : "no memory roof";
}

std::string doubtOf(const RowLine& line, const IRowRooflineInfo& info, const ResultTraits& kind) {
    if (line.isValid || !line.limit) return {};
    if (info.getLimitingRoof(true).boundCategory == BoundCategory::None)
        return "limited by a roof of no known kind";
    if (info.areMemLevelMetricsAvailable() && !line.nearest)
        return line.levels.empty() ? line.levelCause : "above the roofs of all its levels";
    return kind.invalidRow;
}

// Of a kernel it is known which type of data lacks a roof.
std::string RowReader::causeWithoutCompute(const RowLine& line) const {
    if (!m_rooflines.kind().countsInstructions) return fmt::format("no {} roof for it", line.operations);
    const auto found = m_types.find(line.id);
    const auto type = found == m_types.end() ? std::string() : found->second.of(line.operations);
    return type.empty() ? "no compute roof: its instructions weren't counted" : "no compute roof for " + type;
}

RowLine RowReader::read(const sptr_t<RowNode>& row) const {
    RowLine line;
    line.id = std::to_string(row->getId());
    line.name = textIn(m_data, row, m_name);
    line.location = textIn(m_data, row, m_location);
    line.seconds = numberIn(m_data, row, m_time);
    if (line.seconds && m_programSeconds > 0) line.share = *line.seconds / m_programSeconds;

    const auto info = m_rooflines.of(row);
    const auto point = info->getPoint();
    line.isValid = info->isValid();
    // On logarithmic axes there is no place for a 0.
    if (point.operationsType == OperationsType::Undefined || !(point.performance > 0.0 && point.ai > 0.0)) {
        line.cause = missingOf(row, m_rooflines.dataset(), m_rooflines.kind(), m_rooflines.isTotal());
        return line;
    }
    line.operations = point.operationsType == OperationsType::Int ? "int" : "float";
    line.intensity = point.ai;
    line.performance = point.performance;
    const auto limit = info->getLimitingRoof(true);
    line.limit = roofOver(limit, point.performance);
    if (line.limit) line.limitKind = limitKindOf(limit);
    line.nearest = roofOver(info->getLimitingRoof(false), point.performance);
    readRoofsBelow(line, *info);
    line.cause = causeWithoutLimit(line, *info, causeWithoutCompute(line));
    line.levels = levelsOf(*info);
    nameLevels(line);
    if (line.levels.empty() && m_rooflines.levelCount() > 1)
        line.levelCause =
            levelsNeed(hasCell(row, m_floatOps) && hasCell(row, m_intOps) ? m_rooflines.kind().levelNeeds
                                                                          : "float and integer counts");
    line.doubt = doubtOf(line, *info, m_rooflines.kind());
    if (line.doubt.empty() && m_rooflines.isWithCallees(row, *info)) line.doubt = kWithCallees;
    return line;
}

std::optional<double> keyOf(const RowLine& line, RowOrder order) {
    return order == RowOrder::Time       ? line.share
           : order == RowOrder::Distance ? line.speedUp()
                                         : line.performance;
}

}  // namespace

std::optional<double> RowLine::speedUp() const {
    if (!limit) return {};
    return limit->height / *performance;
}

std::string levelsNeed(std::string_view what) { return fmt::format("levels need {}, 0 included", what); }

std::vector<RowLine> readRows(const Session& session, const RowRooflines& rooflines) {
    const RowReader reader(session, rooflines);
    std::vector<RowLine> lines;
    forEachChartRow(rooflines.dataset(), [&](const auto& row) { lines.push_back(reader.read(row)); });
    return lines;
}

std::vector<RowLine> readAllRows(const Session& session, const RowRooflines& rooflines) {
    const RowReader reader(session, rooflines);
    std::vector<RowLine> lines;
    forEachRow(rooflines.dataset(), [&](const auto& row) { lines.push_back(reader.read(row)); });
    return lines;
}

void sortLines(std::vector<RowLine>& lines, RowOrder order) {
    std::stable_sort(lines.begin(), lines.end(), [order](const RowLine& a, const RowLine& b) {
        return keyOf(a, order).value_or(-1.0) > keyOf(b, order).value_or(-1.0);
    });
}

}  // namespace cli
