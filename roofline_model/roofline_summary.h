// The summary of operations and bandwidth: which roofs matter, how much of each is reached, and by what.
#pragma once

#include "host_interfaces/model.h"

#include "roofline_model/json_dumps.h"
#include "roofline_model/memory_metrics.h"
#include "roofline_model/operation_map.h"
#include "roofline_model/rabbit.h"
#include "roofline_model/row_roofline_engine.h"

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace data_models2 {
struct AnalysisKind;
}

namespace data_models2::roofline::summary {

// One number of the summary with what it is made of.
struct OpsAndBandMetric : json_dump::DumpMetricInfo {
    double value = 0.0;
    bool isDominatingOps = false;  // speaks of the type of operations that dominates
    std::string roofId;            // the roof that it is measured against, in decimal
    std::string roofName;          // its short name
    std::vector<OpsAndBandMetric> children;
};

// A roof and what is reached below it.
struct SummaryItem {
    RoofItem roof;
    OpsAndBandMetric metric;
};

// Giga operations per second of the roof's type; `opCount` in giga operations, the time in seconds and above
// 0: a time that isn't is asserted and gives the value 0.
OpsAndBandMetric getMetricForComputeRoof(const RoofItem& roof, double elapsedTime, double opCount,
                                         OperationsType dominatingType);
// Gigabytes per second at a level; the intensities are in operations per byte. `isRow` picks the captions
// that speak of one row. The time as above.
OpsAndBandMetric getMetricForMemoryRoof(const RoofItem& roof, double elapsedTime, double gigabytes,
                                        double aiFloat, double aiInt, const std::string& levelName,
                                        OperationsType dominatingType, bool isRow);

// The level that a memory roof belongs to; one that belongs to none is measured at the core.
std::string getLevelName(const RoofItem& roof, TargetDeviceType device);
void dumpMetric(rabbit::object& object, const OpsAndBandMetric& metric);
// The members "roofs" and "metrics", one entry an item.
void dumpSummary(rabbit::object& object, const std::vector<SummaryItem>& items, TargetDeviceType device);

// Drops the roofs of memories that the device doesn't end in, and appends one for the traffic of its core.
void completeDeviceMemory(std::vector<RoofItem>& memory, const ISurveyingViewModel& viewModel);

// The summary of a measured program, a JSON object: its memory roofs, ascending, and of each type of
// operations that was counted the compute roof among `selectedRoofs`. On a device the traffic of its core
// follows the memory roofs, and the instructions of `operationMap`, which may be null, are grouped at the
// end. Empty without metrics, view model, roofs or elapsed time.
std::string getProgramOpsAndBandwidthSummary(const std::shared_ptr<const CMemoryLevelMetrics>& metrics,
                                             const std::shared_ptr<ISurveyingViewModel>& viewModel,
                                             TargetDeviceType device,
                                             const std::unordered_set<RoofId>& selectedRoofs,
                                             const std::shared_ptr<const OperationMap>& operationMap);

// The summary of one row, over its self time and self operations. The traffic is that of the row's point at
// the level: total traffic where total data are there, so a row with callees may exceed its roof. Adds
// nothing for an invalid row, a row without elapsed time or one that no roof speaks of.
void dumpRowOpsAndBandwidthSummary(rabbit::object& object,
                                   const std::shared_ptr<const CRowRooflineEngine>& engine,
                                   const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row);

}  // namespace data_models2::roofline::summary
