// Why a row has no point on the chart.
#pragma once

#include "host_interfaces/model.h"

#include "cli/chart_document.h"
#include "cli/session.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace cli {

struct UnplacedRows {
    std::string cause;  // such as "no float operations"
    std::size_t count = 0;
};

// Every row of a result that a chart could draw. Invariant: drawn + all counts = rows.
struct RowCount {
    std::size_t rows = 0;
    std::size_t drawn = 0;
    std::vector<UnplacedRows> unplaced;  // causes that occur, in a fixed order
};

// Tells of each row that a chart leaves out what it lacks.
class UnplacedCauses {
public:
    using Row = data_models2::sptr_t<data_models2::RowNode>;

    // `drawn`: the ids of the rows that the chart has. `configuration` is complete, one value a group.
    UnplacedCauses(const Session& session, std::set<std::string> drawn, const std::string& configuration);
    ~UnplacedCauses();
    // Holds the rows; null when the result has none.
    const data_models2::sptr_t<data_models2::IDataset>& dataset() const { return m_dataset; }
    bool isDrawn(const Row& row) const { return m_drawn.count(std::to_string(row->getId())) > 0; }
    // Of a row that isn't drawn: its place among the names.
    std::size_t of(const Row& row) const;
    // The name of the cause of a row that the dataset lacks.
    const std::string& ofUnknownRow() const;
    // In the order in which they are looked for.
    const std::vector<std::string>& names() const { return m_names; }

private:
    struct Fields;
    std::set<std::string> m_drawn;
    data_models2::sptr_t<data_models2::IDataset> m_dataset;
    std::vector<std::string> m_names;
    std::unique_ptr<const Fields> m_fields;
};

// `configuration` is complete, one value a group.
RowCount countRows(const Session& session, const ChartDocument& document, const std::string& configuration);

using RowVisit = std::function<void(const data_models2::sptr_t<data_models2::RowNode>&)>;
// Every row, parents before their children; none of a null dataset.
void forEachRow(const data_models2::sptr_t<data_models2::IDataset>& dataset, const RowVisit& visit);
// Of these, the ones that a chart could draw.
void forEachChartRow(const data_models2::sptr_t<data_models2::IDataset>& dataset, const RowVisit& visit);
// What a row without a point of any operations lacks: "no operations", "no traffic", ...
std::string missingOf(const data_models2::sptr_t<data_models2::RowNode>& row,
                      const data_models2::sptr_t<data_models2::IDataset>& dataset, const ResultTraits& kind,
                      bool isTotal);

// The operations ("f", "i", "b") of a configuration, float ones when it names none.
const OperationFields& operationsOf(const ResultTraits& kind, const std::string& configuration);
// Whether any row has operations of that kind.
bool hasOperations(const Session& session, const std::string& operations);

}  // namespace cli
