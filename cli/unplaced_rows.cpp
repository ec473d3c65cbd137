// Classifies the rows that a chart leaves out: a point needs operations, traffic and time of its own.
#include "cli/unplaced_rows.h"

#include "cli/cells.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <sstream>

namespace cli {
namespace {

using namespace data_models2;
using Dataset = sptr_t<IDataset>;
using Row = sptr_t<RowNode>;

// Rows that the chart passes over silently: no loops or functions of their own.
constexpr std::uint64_t kNoChartRow = 0x2 | 0x4 | row_type::kHidden;

constexpr auto kMissingTraffic = "no traffic", kMissingTime = "no time",
               kMissingOther = "other values missing";

enum Cause : std::size_t { kOps, kTrafficCause, kTime, kCaller, kOther, kCauses };

std::set<std::string> optionsOf(const std::string& configuration) {
    std::set<std::string> options;
    std::istringstream stream(configuration);
    for (std::string option; std::getline(stream, option, '-');) options.insert(option);
    return options;
}

const OperationFields& operationFields(const ResultTraits& kind, const std::set<std::string>& options) {
    const auto& all = kind.operations;
    const auto found = std::find_if(all.begin(), all.end(), [&](const OperationFields& each) {
        return options.count(std::string(each.option)) > 0;
    });
    return found == all.end() ? all.front() : *found;
}

class Cells {
public:
    Cells(Dataset dataset, const std::vector<FieldId>& fields) : m_dataset(std::move(dataset)) {
        for (const auto field : fields)
            if (auto column = field == FieldId::None ? nullptr : m_dataset->getColumn(field))
                m_columns.push_back(std::move(column));
    }
    bool anyAboveZero(const Row& row) const {
        return std::any_of(m_columns.begin(), m_columns.end(), [&](const sptr_t<ColumnNode>& column) {
            return numberIn(*m_dataset, row, column).value_or(0.0) > 0.0;
        });
    }

private:
    Dataset m_dataset;
    std::vector<sptr_t<ColumnNode>> m_columns;
};

bool isChartRow(const Row& row) {
    const auto specification = row->getSpecification();
    return specification && (specification->getRowType() & kNoChartRow) == 0;
}

FieldId timeField(const ResultTraits& kind, bool isTotal) { return isTotal ? kind.totalTime : kind.selfTime; }

// A row that has all a point needs, and whose caller has no point, hides with its caller.
std::set<std::uint64_t> idsBelowMissing(const Dataset& tree, const std::set<std::string>& drawn) {
    std::set<std::uint64_t> hidden;
    forEachRow(tree, [&](const Row& row) {
        const auto parent = row->getParent();
        if (parent && parent->getSpecification() && !drawn.count(std::to_string(parent->getId())))
            hidden.insert(row->getId());
    });
    return hidden;
}

std::vector<FieldId> trafficFields(const ResultTraits& kind, const std::set<std::string>& options,
                                   bool isTotal) {
    const bool load = !options.count("store"), store = !options.count("load");
    std::vector<FieldId> fields;
    for (const auto& each : kind.traffic) {
        // The last line stands for no level at all.
        if (each.option.empty() ? !fields.empty() : !options.count(std::string(each.option))) continue;
        if (load || each.option.empty()) fields.push_back(isTotal ? each.totalLoad : each.selfLoad);
        if (store) fields.push_back(isTotal ? each.totalStore : each.selfStore);
    }
    return fields;
}

}  // namespace

void forEachRow(const Dataset& dataset, const RowVisit& visit) {
    if (!dataset) return;
    std::vector<Row> rows;
    for (auto row = dataset->getRows(0); !row.isEnd(); ++row) rows.push_back(*row);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto row = rows[i];
        if (!row) continue;
        visit(row);
        RowIterator children;
        if (row->getChildren(children, 0, 1) < 0) continue;
        for (; !children.isEnd(); ++children) rows.push_back(*children);
    }
}

void forEachChartRow(const Dataset& dataset, const RowVisit& visit) {
    forEachRow(dataset, [&](const Row& row) {
        if (isChartRow(row)) visit(row);
    });
}

std::string missingOf(const Row& row, const Dataset& dataset, const ResultTraits& kind, bool isTotal) {
    std::vector<FieldId> operations;
    for (const auto& each : kind.operations) operations.push_back(isTotal ? each.total : each.self);
    if (!Cells(dataset, operations).anyAboveZero(row)) return operationFields(kind, {"b"}).missing;
    if (!Cells(dataset, trafficFields(kind, {}, isTotal)).anyAboveZero(row)) return kMissingTraffic;
    if (!Cells(dataset, {timeField(kind, isTotal)}).anyAboveZero(row)) return kMissingTime;
    return kMissingOther;
}

struct UnplacedCauses::Fields {
    Cells operations, traffic, time;
    std::set<std::uint64_t> hidden;
};

UnplacedCauses::UnplacedCauses(const Session& session, std::set<std::string> drawn,
                               const std::string& configuration)
    : m_drawn(std::move(drawn)) {
    const auto options = optionsOf(configuration);
    // Total data lives in the tree, which holds the same rows.
    const bool isTotal = session.tree && !options.count("1");
    m_dataset = isTotal ? session.tree : session.rows;
    const auto& operations = operationFields(*session.kind, options);
    m_names.resize(kCauses);
    m_names[kOps] = operations.missing;
    m_names[kTrafficCause] = kMissingTraffic;
    m_names[kTime] = kMissingTime;
    m_names[kCaller] = "caller not on the chart";
    m_names[kOther] = kMissingOther;
    if (!m_dataset) return;
    m_fields.reset(new Fields{Cells(m_dataset, {isTotal ? operations.total : operations.self}),
                              Cells(m_dataset, trafficFields(*session.kind, options, isTotal)),
                              Cells(m_dataset, {timeField(*session.kind, isTotal)}),
                              idsBelowMissing(m_dataset, m_drawn)});
}

UnplacedCauses::~UnplacedCauses() = default;

const std::string& UnplacedCauses::ofUnknownRow() const { return m_names[kOther]; }

std::size_t UnplacedCauses::of(const Row& row) const {
    if (!m_fields->operations.anyAboveZero(row)) return kOps;
    if (!m_fields->traffic.anyAboveZero(row)) return kTrafficCause;
    if (!m_fields->time.anyAboveZero(row)) return kTime;
    return m_fields->hidden.count(row->getId()) ? kCaller : kOther;
}

RowCount countRows(const Session& session, const ChartDocument& document, const std::string& configuration) {
    RowCount count;
    if (!session.rows) return count;
    std::set<std::string> drawn;
    for (const auto& point : document.points) drawn.insert(point.id);
    const UnplacedCauses causes(session, std::move(drawn), configuration);

    std::array<std::size_t, kCauses> counts{};
    forEachChartRow(causes.dataset(), [&](const Row& row) {
        ++count.rows;
        causes.isDrawn(row) ? ++count.drawn : ++counts[causes.of(row)];
    });
    for (std::size_t i = 0; i < kCauses; ++i)
        if (counts[i] > 0) count.unplaced.push_back({causes.names()[i], counts[i]});
    return count;
}

const OperationFields& operationsOf(const ResultTraits& kind, const std::string& configuration) {
    return operationFields(kind, optionsOf(configuration));
}

bool hasOperations(const Session& session, const std::string& operations) {
    if (!session.rows) return false;
    const Cells ops(session.rows, {operationFields(*session.kind, {operations}).self});
    bool found = false;
    forEachChartRow(session.rows, [&](const Row& row) { found = found || ops.anyAboveZero(row); });
    return found;
}

}  // namespace cli
