// Why a row has no point on the chart.
#pragma once

#include "host_interfaces/model.h"

#include "cli/chart_document.h"
#include "cli/session.h"

#include <cstddef>
#include <functional>
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
