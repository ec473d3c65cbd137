// What differs between the kinds of analysis: one record each.
#pragma once

#include "roofline_model/dominating_roofs_task.h"
#include "roofline_model/memory_metrics.h"
#include "roofline_model/selected_roofs.h"
#include "roofline_model/unified/configurations.h"
#include "roofline_model/unified/loop_params_tables.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace data_models2 {

class CRowRooflineEngine;

// What an engine knows of its result.
struct ResultState {
    std::shared_ptr<const CRooflineOptions> options;
    std::shared_ptr<const CMemoryLevelMetrics> metrics;
    GpuDeviceProperties device;  // as told at the last load
    // Of a projection; its target may become known later than the options.
    std::shared_ptr<const IPerfProjectionViewModel> projection;
};

// A row whose details are asked for.
struct RowRequest {
    const sptr_t<RowNode>& row;
    const sptr_t<IDataset>& dataset;
    const std::shared_ptr<IViewModelBase>& viewModel;
    const std::shared_ptr<IRoofManager>& roofManager;
    const RoofThreadingFeatures& features;
    int memoryLevels;
};

struct DetailedRow {
    std::shared_ptr<CRowRooflineEngine> engine;    // null when nothing can be told of the row
    bool isAcceptable = false;                     // by the kind's strategy
    std::optional<RoofThreadingFeatures> threads;  // that its roofs stand for; a device has no such choice
};

// What an engine does when its result was loaded.
enum class LoadStep { DetectWhenNew, Detect, RebuildMetrics, ReadDevice, RebuildOptions };

struct AnalysisKind {
    DataType rows;    // the dataset of self data, of the roofs and of the metrics
    DataType totals;  // the dataset of total data; None when there never is one
    // Of a chart that stays empty: whether what has operations was timed. None: its cause isn't looked for.
    FieldId rowTime;
    // What the captions of the roofs speak of.
    TargetDeviceType device;
    const ChartTables& (*tables)();
    MetricRecipe (*recipe)(const ResultState& state);
    // `memoryLevels` here and below: as measured, 1 when only the core's traffic was.
    std::shared_ptr<const CRooflineOptions> (*options)(const ResultState& state, int memoryLevels);
    // The option values of a selection, made fit for the tree.
    RooflineTypes (*optionValues)(const RooflineTypes& types, const ResultState& state);

    // Levels of the program's points, not empty for a chart that has configurations. The first
    // `certainTotals` always are, another when it has a time.
    std::vector<std::string> (*totalLevels)(const RooflineConfigurations& configurations, int memoryLevels);
    std::size_t certainTotals;

    // The operations that a chart's roofs stand for, and the text by which the roof table selects them.
    OperationsType (*roofOperations)(const std::string& configuration, const ResultState& state);
    std::string (*roofConfiguration)(const RoofThreadingFeatures& features, OperationsType operations,
                                     roofline::RoofPerspective perspective);
    void (*selectMemoryRoofs)(roofline::RoofIds& selected, const std::string& configuration,
                              roofline::RoofPerspective perspective, const ResultState& state,
                              int memoryLevels);
    roofline::RoofIds (*hiddenRoofs)(generic_iterator_t<RoofItem> roofs,
                                     roofline::RoofPerspective perspective, const ResultState& state);

    // The rest up to the load's steps is of measured programs: the dataset whose walk in the background finds
    // what dominates the program, and the roofs that follow from it.
    DataType dominance;
    roofline::DominatingRoofs (*dominatingRoofs)(const DominatingRoofsTask&, const ISurveyingViewModel&,
                                                 const std::shared_ptr<const CMemoryLevelMetrics>&);
    // Of the program's summary: the operations that its roofs stand for, and what makes its memory roofs of
    // those of the roof table, ascending.
    OperationsType summedOperations;
    void (*completeMemory)(std::vector<RoofItem>& memory, const ISurveyingViewModel& viewModel);

    // In this order; `DetectWhenNew` does nothing on a mere refresh.
    std::vector<LoadStep> loadSteps;

    // The set-up that a request for details chooses, and a row's details.
    RoofThreadingFeatures (*features)(const variant_bag_t& request, const ThreadsInfo& info);
    DetailedRow (*detailedRow)(const RowRequest& request);

    // Of the members of a report's template those that not every kind has.
    std::vector<std::string_view> reportMembers;
};

const AnalysisKind& cpuAnalysis();
const AnalysisKind& gpuAnalysis();
const AnalysisKind& offloadAnalysis();
// That of results measured on such a device.
const AnalysisKind& measuredAnalysis(TargetDeviceType device);

}  // namespace data_models2
