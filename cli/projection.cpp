#include "cli/projection.h"

#include "host_interfaces/host_functions.h"

#include "cli/cells.h"
#include "cli/unplaced_rows.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/property_tree/ptree.hpp>

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>
#include <utility>

namespace cli {
namespace {

using namespace data_models2;

constexpr double kWholeMatch = 100.0;

// Cells of one dataset.
class LineReader {
public:
    LineReader(const Session& session, const std::string& operations)
        : m_kind(*session.kind),
          m_dataset(session.rows),
          m_operations(operationsOf(m_kind, operations)),
          m_name(m_dataset->getColumn(FieldId::FunctionName)),
          m_location(m_dataset->getColumn(m_kind.location)),
          m_time(m_dataset->getColumn(m_kind.selfTime)),
          m_count(m_dataset->getColumn(m_operations.self)),
          m_performance(m_dataset->getColumn(m_operations.performance)),
          m_intensity(m_dataset->getColumn(m_operations.intensity)) {}

    RowLine read(const sptr_t<RowNode>& row) const {
        RowLine line;
        line.id = std::to_string(row->getId());
        line.name = textIn(*m_dataset, row, m_name);
        line.location = textIn(*m_dataset, row, m_location);
        line.seconds = number(row, m_time);
        const auto performance = number(row, m_performance), intensity = number(row, m_intensity);
        // On logarithmic axes there is no place for a 0.
        const auto hasPlace = [](double value) { return std::isfinite(value) && value > 0.0; };
        if (hasPlace(performance.value_or(0.0)) && hasPlace(intensity.value_or(0.0))) {
            line.performance = performance;
            line.intensity = intensity;
            return line;
        }
        line.cause = number(row, m_count).value_or(0.0) > 0.0 ? missingOf(row, m_dataset, m_kind, false)
                                                              : m_operations.missing;
        return line;
    }

private:
    std::optional<double> number(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column) const {
        return numberIn(*m_dataset, row, column);
    }

    const ResultTraits& m_kind;
    const sptr_t<IDataset> m_dataset;
    const OperationFields& m_operations;
    const sptr_t<ColumnNode> m_name, m_location, m_time, m_count, m_performance, m_intensity;
};

std::string boundOf(const sptr_t<RowNode>& row) {
    const auto issues = issue_helpers::getRowIssues(row);
    const auto bounds = issues.find("bounded_by");
    if (bounds == issues.not_found()) return {};
    const auto first = bounds->second.find("item");
    return first == bounds->second.not_found() ? std::string() : std::string(first->second.data().text());
}

}  // namespace

const std::string& Projection::boundOf(const RowLine& row) const {
    static const std::string kNone;
    const auto found = bounds.find(row.id);
    return found == bounds.end() ? kNone : found->second;
}

std::vector<std::pair<std::string, std::size_t>> Projection::boundCounts() const {
    std::map<std::string, std::size_t> counts;
    for (const auto& pair : rows.pairs) ++counts[boundOf(pair.after)];
    std::vector<std::pair<std::string, std::size_t>> sorted(counts.begin(), counts.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    return sorted;
}

Projection makeProjection(const Session& measured, const Session& target, const std::string& operations) {
    Projection projection;
    std::unordered_map<std::string, RowLine> onTarget;
    const LineReader targetReader(target, operations), reader(measured, operations);
    forEachChartRow(target.rows, [&](const auto& row) {
        auto line = targetReader.read(row);
        projection.bounds[line.id] = boundOf(row);
        onTarget.emplace(line.id, std::move(line));
    });

    auto& rows = projection.rows;
    rows.noise = 0.0;
    forEachChartRow(measured.rows, [&](const auto& row) {
        auto line = reader.read(row);
        const auto found = onTarget.find(line.id);
        if (found == onTarget.end()) return rows.beforeOnly.push_back(std::move(line));
        projection.renamed += line.name != found->second.name;
        rows.pairs.push_back({kWholeMatch, std::move(line), std::move(found->second)});
        onTarget.erase(found);
    });
    forEachChartRow(target.rows, [&](const auto& row) {
        if (const auto found = onTarget.find(std::to_string(row->getId())); found != onTarget.end())
            rows.afterOnly.push_back(std::move(found->second));
    });
    sortPairs(rows.pairs, PairOrder::Time);
    for (auto* const rest : {&rows.beforeOnly, &rows.afterOnly})
        std::stable_sort(rest->begin(), rest->end(), [](const RowLine& a, const RowLine& b) {
            return a.seconds.value_or(-1.0) > b.seconds.value_or(-1.0);
        });
    return projection;
}

std::string boundText(const std::string& bound) {
    constexpr std::string_view kBandwidth = "_BW";
    if (bound.empty()) return "unknown";
    if (boost::algorithm::ends_with(bound, kBandwidth))
        return bound.substr(0, bound.size() - kBandwidth.size()) + " bandwidth";
    auto text = bound;
    std::replace(text.begin(), text.end(), '_', ' ');
    std::transform(text.begin(), text.end(), text.begin(), [](char each) {
        return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
    });
    return text;
}

}  // namespace cli
