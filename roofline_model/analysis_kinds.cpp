#include "roofline_model/analysis_kinds.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/compute_roofs.h"
#include "roofline_model/cpu_roof_choice.h"
#include "roofline_model/cpu_row_roofline_helper.h"
#include "roofline_model/factories.h"
#include "roofline_model/gpu_roof_choice.h"
#include "roofline_model/gpu_row_roofline_helper.h"
#include "roofline_model/roof_names.h"
#include "roofline_model/roofline_summary.h"
#include "roofline_model/row_roofline_engine.h"
#include "roofline_model/threading.h"
#include "roofline_model/unified/gpu_levels.h"
#include "roofline_model/unified/offload_levels.h"
#include "roofline_model/unified/option_tables.h"

#include <algorithm>

namespace data_models2 {

namespace {

using roofline::RoofIds;
using roofline::RoofPerspective;
using Metrics = std::shared_ptr<const CMemoryLevelMetrics>;

namespace cpu {

std::vector<std::string> totalLevels(const RooflineConfigurations&, int memoryLevels) {
    if (memoryLevels > 1) return {"L1", "DRAM"};
    return {"L1"};
}

// Deliberate: unlike the chart, roofs stand at mixed operations when nothing is said.
OperationsType roofOperations(const std::string& configuration, const ResultState& state) {
    RooflineConfigurations configurations;
    if (!configurations.init(configuration, state.options) || configurations.empty())
        return OperationsType::Mixed;
    const RooflineConfiguration& first = *configurations.begin();
    if (first.hasType("i")) return OperationsType::Int;
    return first.hasType("f") ? OperationsType::Float : OperationsType::Mixed;
}

roofline::DominatingRoofs dominatingRoofs(const DominatingRoofsTask& task, const ISurveyingViewModel&,
                                          const Metrics&) {
    return roofline::getCpuDominatingRoofs(task.getProgramDominatingTypes());
}

RoofThreadingFeatures features(const variant_bag_t& request, const ThreadsInfo& info) {
    RoofThreadingFeatures result;
    roofline::parseRoofParams(request, info, result);
    return result;
}

DetailedRow detailedRow(const RowRequest& request) {
    const auto helper = std::make_shared<CpuRowRooflineHelper>(
        request.roofManager, getInstructionMixMap(request.row, request.dataset),
        static_cast<unsigned>(request.memoryLevels),
        std::make_shared<RoofThreadingFeatures>(request.features));
    const auto engine = std::make_shared<CRowRooflineEngine>(request.row, request.dataset, helper);
    return {engine, helper->isValid(engine->areTotalMetricsAvailable()), helper->getRoofParam()};
}

}  // namespace cpu

namespace gpu {

// The getters are bound by a walk, so each has its own.
MetricRecipe recipe(const ResultState& state) {
    MetricRecipe result{.operations = {{defGetter(FieldId::SelfFloatOps), OperationsType::Float},
                                       {defGetter(FieldId::SelfIntOps), OperationsType::Int}},
                        .traffic = {},
                        .timeField = FieldId::GpuElapsedTime,
                        .elapsedTimeField = FieldId::GpuElapsedTime};
    for (const auto& name : getGpuMemoryLevels(state.device))
        if (const auto* const level = findGpuLevel(name))
            result.traffic.emplace_back(defGetter(level->traffic), name);
    return result;
}

RooflineTypes optionValues(const RooflineTypes& types, const ResultState& state) {
    return roofline::transformRooflineTypes(types, roofline::getDominatingType(state.metrics));
}

// The level that each configuration shows, once.
std::vector<std::string> totalLevels(const RooflineConfigurations& configurations, int) {
    std::vector<std::string> levels;
    for (const auto& configuration : configurations) {
        const std::string& level = configuration.getTypes().back();
        if (std::find(levels.begin(), levels.end(), level) == levels.end()) levels.push_back(level);
    }
    return levels;
}

OperationsType roofOperations(const std::string& configuration, const ResultState&) {
    return roofline::getRooflineOperationType(configuration);
}

// Of the two choices of sub-devices, told as a number of packages.
TileUsage usageOf(const RoofThreadingFeatures& features) {
    return features.packageCount == 1 ? TileUsage::Single : TileUsage::Multi;
}

std::string roofConfiguration(const RoofThreadingFeatures& features, OperationsType operations,
                              RoofPerspective) {
    return roof::getGpuRoofConfiguration(usageOf(features), operations);
}

RoofThreadingFeatures features(const variant_bag_t& request, const ThreadsInfo&) {
    return roofline::parseSubDevices(request);
}

roofline::DominatingRoofs dominatingRoofs(const DominatingRoofsTask& task,
                                          const ISurveyingViewModel& viewModel, const Metrics& metrics) {
    const auto roofManager = viewModel.getRoofManager(DataType::Gpu);
    const auto roofs = roofManager ? roofManager->getRoofs(std::string()) : generic_iterator_t<RoofItem>();
    return roofline::getGpuDominatingRoofs(
        roofline::getDominatingComputeRoofs(roofs, task.getProgramOperationMap(), metrics));
}

DetailedRow detailedRow(const RowRequest& request) {
    auto engine = std::dynamic_pointer_cast<CRowRooflineEngine>(createGpuRowRooflineInfo(
        request.row, request.dataset, std::dynamic_pointer_cast<ISurveyingViewModel>(request.viewModel),
        usageOf(request.features)));
    const bool isAcceptable = engine && GpuRowRooflineHelper::isKernel(request.row);
    return {std::move(engine), isAcceptable, std::nullopt};
}

}  // namespace gpu

namespace offload {

std::string targetLevel(const ResultState& state) {
    return getOffloadTargetLevel(state.projection ? state.projection->getTargetMemoryName() : std::string());
}

// A level that is listed twice is measured once.
MetricRecipe recipe(const ResultState& state) {
    MetricRecipe result{.operations = {{defGetter(FieldId::TotalFloatOps), OperationsType::Float},
                                       {defGetter(FieldId::TotalIntOps), OperationsType::Int},
                                       {defGetter(FieldId::TotalMixedOps), OperationsType::Mixed}},
                        .traffic = {},
                        .timeField = FieldId::OffloadElapsedTime,
                        .elapsedTimeField = FieldId::OffloadElapsedTime};
    auto levels = getOffloadMemoryLevels(targetLevel(state));
    std::sort(levels.begin(), levels.end());
    levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
    for (const auto& name : levels)
        if (const auto* const level = findOffloadLevel(name))
            result.traffic.emplace_back(gigabytesGetter(level->traffic), name);
    return result;
}

DetailedRow detailedRow(const RowRequest& request) {
    auto engine = std::dynamic_pointer_cast<CRowRooflineEngine>(
        createOffloadRowRooflineInfo(request.row, request.dataset, request.roofManager,
                                     gpu::usageOf(request.features) == TileUsage::Single));
    const bool isAcceptable = engine != nullptr;
    return {std::move(engine), isAcceptable, std::nullopt};
}

}  // namespace offload

}  // namespace

const AnalysisKind& cpuAnalysis() {
    static const AnalysisKind kind{
        .rows = DataType::Cpu,
        .totals = DataType::CpuTopDown,
        .rowTime = FieldId::SelfTime,
        .device = TargetDeviceType::Cpu,
        .tables = getCpuTables,
        .recipe = [](const ResultState&) { return MetricRecipe(); },
        .options = [](const ResultState& state, int memoryLevels) -> std::shared_ptr<const CRooflineOptions> {
            return initRooflineOptions(memoryLevels, state.metrics);
        },
        .optionValues = [](const RooflineTypes& types, const ResultState&) { return types; },
        .totalLevels = cpu::totalLevels,
        .certainTotals = 1,
        .roofOperations = cpu::roofOperations,
        .roofConfiguration = roof::getCpuRoofConfiguration,
        .selectMemoryRoofs =
            [](RoofIds& selected, const std::string& configuration, RoofPerspective perspective,
               const ResultState& state, int memoryLevels) {
                roofline::fillSelectedMemoryRoofs(selected, configuration, state.options, memoryLevels,
                                                  perspective);
            },
        .hiddenRoofs =
            [](generic_iterator_t<RoofItem> roofs, RoofPerspective perspective, const ResultState&) {
                return roofline::getCpuHiddenRoofs(std::move(roofs), perspective);
            },
        .dominance = DataType::Cpu,
        .dominatingRoofs = cpu::dominatingRoofs,
        .summedOperations = OperationsType::Mixed,
        .completeMemory = [](std::vector<RoofItem>&, const ISurveyingViewModel&) {},
        .loadSteps = {LoadStep::DetectWhenNew, LoadStep::RebuildMetrics, LoadStep::RebuildOptions},
        .features = cpu::features,
        .detailedRow = cpu::detailedRow,
        .reportMembers = {"allRoofs", "selectedRoofs", "loopsAdditionalInfo"},
    };
    return kind;
}

const AnalysisKind& gpuAnalysis() {
    static const AnalysisKind kind{
        .rows = DataType::Gpu,
        .totals = DataType::None,
        .rowTime = FieldId::GpuElapsedTime,
        .device = TargetDeviceType::Gpu,
        .tables = getGpuTables,
        .recipe = gpu::recipe,
        .options = [](const ResultState& state, int) -> std::shared_ptr<const CRooflineOptions> {
            return initRooflineOptions(state.metrics, state.device);
        },
        .optionValues = gpu::optionValues,
        .totalLevels = gpu::totalLevels,
        .certainTotals = 0,
        .roofOperations = gpu::roofOperations,
        .roofConfiguration = gpu::roofConfiguration,
        .selectMemoryRoofs = [](RoofIds& selected, const std::string&, RoofPerspective,
                                const ResultState& state,
                                int) { roofline::fillDominatingMemoryRoofs(selected, state.device); },
        .hiddenRoofs = [](generic_iterator_t<RoofItem>, RoofPerspective,
                          const ResultState& state) { return roofline::getGpuHiddenRoofs(state.device); },
        .dominance = DataType::GpuStatistics,
        .dominatingRoofs = gpu::dominatingRoofs,
        .summedOperations = OperationsType::Undefined,
        .completeMemory = roofline::summary::completeDeviceMemory,
        // Deliberate: the metrics of a load are still those of the device that was known before it.
        .loadSteps = {LoadStep::RebuildMetrics, LoadStep::Detect, LoadStep::ReadDevice,
                      LoadStep::RebuildOptions},
        .features = gpu::features,
        .detailedRow = gpu::detailedRow,
        .reportMembers = {"roofs", "selectedRoofs", "loopsAdditionalInfo"},
    };
    return kind;
}

// A target is a device like those that are measured, but all of it was worked out on the host.
const AnalysisKind& offloadAnalysis() {
    static const AnalysisKind kind{
        .rows = DataType::Offload,
        .totals = DataType::None,
        .rowTime = FieldId::None,
        .device = TargetDeviceType::Gpu,
        .tables = getOffloadTables,
        .recipe = offload::recipe,
        .options = [](const ResultState& state, int) -> std::shared_ptr<const CRooflineOptions> {
            return initOffloadRooflineOptions(offload::targetLevel(state));
        },
        .optionValues = gpu::optionValues,
        .totalLevels = gpu::totalLevels,
        .certainTotals = 0,
        .roofOperations = gpu::roofOperations,
        .roofConfiguration = gpu::roofConfiguration,
        .selectMemoryRoofs =
            [](RoofIds& selected, const std::string&, RoofPerspective, const ResultState& state, int) {
                selected.insert(roofline_helpers::getGpuLastMemLevelRoofId(offload::targetLevel(state)));
            },
        .hiddenRoofs = [](generic_iterator_t<RoofItem>, RoofPerspective,
                          const ResultState&) { return RoofIds(); },
        .dominance = DataType::None,
        .dominatingRoofs = nullptr,
        .summedOperations = OperationsType::Undefined,
        .completeMemory = nullptr,
        .loadSteps = {},
        .features = gpu::features,
        .detailedRow = offload::detailedRow,
        .reportMembers = {"roofs"},
    };
    return kind;
}

const AnalysisKind& measuredAnalysis(TargetDeviceType device) {
    return device == cpuAnalysis().device ? cpuAnalysis() : gpuAnalysis();
}

}  // namespace data_models2
