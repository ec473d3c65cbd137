// The summary of a whole program.
#include "host_interfaces/host_functions.h"

#include "roofline_model/analysis_kinds.h"
#include "roofline_model/instruction_mix_summary.h"
#include "roofline_model/roof_names.h"
#include "roofline_model/roofline_summary.h"
#include "roofline_model/threading.h"
#include "roofline_model/translation.h"

#include <boost/property_tree/ptree.hpp>

#include <algorithm>
#include <array>
#include <optional>

namespace data_models2::roofline::summary {

namespace {

constexpr double kLeastTime = 1e-12;
constexpr std::array kTypes{OperationsType::Float, OperationsType::Int};

struct ProgramRoofs {
    std::vector<RoofItem> memory;                                // ascending
    std::array<std::optional<RoofItem>, kTypes.size()> compute;  // by operations type
};

generic_iterator_t<RoofItem> getRoofs(const std::shared_ptr<ISurveyingViewModel>& viewModel,
                                      const AnalysisKind& kind) {
    const auto roofManager = viewModel->getRoofManager(kind.rows);
    if (!roofManager) return {};
    auto features = kind.features(variant_bag_t(), getThreadsInfo(viewModel));
    features.threadCount = raiseOddThreads(features.threadCount);
    return roofManager->getRoofs(
        kind.roofConfiguration(features, kind.summedOperations, RoofPerspective::Program));
}

// Of several selected compute roofs of one type the last counts.
ProgramRoofs chooseRoofs(generic_iterator_t<RoofItem> roofs, const std::unordered_set<RoofId>& selected) {
    ProgramRoofs chosen;
    for (; !roofs.isEnd(); ++roofs) {
        const RoofItem roof = *roofs;
        if (roof::hasType(roof, RoofItem::SingleNode)) continue;
        if (roof::hasType(roof, RoofItem::Memory)) {
            if (!roof::hasType(roof, RoofItem::OnlyNotVectorized)) chosen.memory.push_back(roof);
            continue;
        }
        const auto type = static_cast<std::size_t>(roof::getOperationsType(roof));
        if (selected.contains(roof.id) && type < kTypes.size()) chosen.compute[type] = roof;
    }
    std::stable_sort(chosen.memory.begin(), chosen.memory.end());
    return chosen;
}

// A device's traffic between core and first cache has no roof of its own: the first level's stands for it.
RoofItem makeCarmRoof(const std::vector<RoofItem>& memory, const std::optional<DeviceInfo>& device) {
    const std::string name = device ? device->name : std::string();
    const auto first = std::find_if(memory.begin(), memory.end(),
                                    [](const RoofItem& roof) { return roof.memoryLevel == MemoryLevel::L1; });
    return {.id = first == memory.end() ? RoofId::None : first->id,
            .name = name.empty()
                        ? helpers::getMemLevelCaption(helpers::getCoreLevelName(TargetDeviceType::Gpu))
                        : translate("roofline_summary_gpu_carm_title", name),
            .value = first == memory.end() ? 0 : first->value,
            .typeBits = RoofItem::Memory};
}

// Of the memories that a device may end in only its own counts.
bool isForeignMemory(const std::string& level, const std::string& lastLevel) {
    constexpr std::array kLastLevels{"DRAMgpu", "HBMgpu", "XLIgpu"};
    return level != lastLevel &&
           std::find(kLastLevels.begin(), kLastLevels.end(), level) != kLastLevels.end();
}

}  // namespace

void completeDeviceMemory(std::vector<RoofItem>& memory, const ISurveyingViewModel& viewModel) {
    const auto lastLevel =
        roofline_helpers::getGpuMemoryRooflineType(viewModel.getGpuDeviceProperties().memoryType);
    std::erase_if(memory, [&](const RoofItem& roof) {
        return isForeignMemory(getLevelName(roof, TargetDeviceType::Gpu), lastLevel);
    });
    memory.push_back(makeCarmRoof(memory, viewModel.getDeviceInfo(TargetDeviceType::Gpu)));
}

std::string getProgramOpsAndBandwidthSummary(const std::shared_ptr<const CMemoryLevelMetrics>& metrics,
                                             const std::shared_ptr<ISurveyingViewModel>& viewModel,
                                             TargetDeviceType device,
                                             const std::unordered_set<RoofId>& selectedRoofs,
                                             const std::shared_ptr<const OperationMap>& operationMap) {
    if (!metrics || !viewModel) return {};
    const auto& kind = measuredAnalysis(device);
    const auto roofs = getRoofs(viewModel, kind);
    const double elapsedTime = viewModel->getProgramInfo().elapsedTime;
    if (roofs.isEnd() || !(elapsedTime >= kLeastTime)) return {};

    auto chosen = chooseRoofs(roofs, selectedRoofs);
    kind.completeMemory(chosen.memory, *viewModel);
    const OperationsType dominating = getDominatingType(metrics);
    std::vector<SummaryItem> items;
    for (const RoofItem& roof : chosen.memory) {
        const auto level = getLevelName(roof, device);
        items.push_back({roof, getMetricForMemoryRoof(roof, elapsedTime, metrics->getTotalGBs(level),
                                                      metrics->getTotalAI(OperationsType::Float, level),
                                                      metrics->getTotalAI(OperationsType::Int, level), level,
                                                      dominating, false)});
    }
    for (const OperationsType type : kTypes) {
        const auto& roof = chosen.compute[static_cast<std::size_t>(type)];
        const double count = metrics->getTotalOpCount(type);
        if (roof && count > 0.0)
            items.push_back({*roof, getMetricForComputeRoof(*roof, elapsedTime, count, dominating)});
    }
    return rabbit::writeObject([&](rabbit::object& root) {
        dumpSummary(root, items, device);
        dumpInstructionMixSummary(root, operationMap);
    });
}

}  // namespace data_models2::roofline::summary
