// What differs between the kinds of analysis: one record each.
#pragma once

#include "roofline_model/dominating_roofs_task.h"
#include "roofline_model/memory_metrics.h"
#include "roofline_model/selected_roofs.h"
#include "roofline_model/unified/loop_params_tables.h"

#include <memory>
#include <string>
#include <vector>

namespace data_models2 {

struct AnalysisKind {
    DataType rows;    // the dataset of self data, of the roofs and of the metrics
    DataType totals;  // the dataset of total data
    const ChartTables& (*tables)();
    MetricRecipe recipe;
    // Levels of the program's points: the first always, another when levels were measured and it has a time.
    std::vector<std::string> totalLevels;
    // The dataset whose walk in the background finds what dominates the program, and the roofs that follow
    // from it.
    DataType dominance;
    roofline::DominatingRoofs (*dominatingRoofs)(const DominatingRoofsTask&, const ISurveyingViewModel&,
                                                 const std::shared_ptr<const CMemoryLevelMetrics>&);
    // What the captions of the roofs speak of.
    TargetDeviceType device;
};

const AnalysisKind& cpuAnalysis();

}  // namespace data_models2
