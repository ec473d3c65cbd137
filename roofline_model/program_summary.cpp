// The summary of a whole program.
#include "host_interfaces/host_functions.h"

#include "roofline_model/roofline_summary.h"
#include "roofline_model/threading.h"

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

generic_iterator_t<RoofItem> getCpuRoofs(const std::shared_ptr<ISurveyingViewModel>& viewModel) {
    const auto roofManager = viewModel->getRoofManager(DataType::Cpu);
    if (!roofManager) return {};
    RoofThreadingFeatures features;
    parseRoofParams(variant_bag_t(), getThreadsInfo(viewModel), features);
    features.threadCount = raiseOddThreads(features.threadCount);
    return roofManager->getRoofs(
        roof::getCpuRoofConfiguration(features, OperationsType::Mixed, IRooflineInfo::Perspective::Program));
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

}  // namespace

std::string getProgramOpsAndBandwidthSummary(const std::shared_ptr<const CMemoryLevelMetrics>& metrics,
                                             const std::shared_ptr<ISurveyingViewModel>& viewModel,
                                             TargetDeviceType device,
                                             const std::unordered_set<RoofId>& selectedRoofs,
                                             const std::shared_ptr<const OperationMap>&) {
    if (!metrics || !viewModel) return {};
    const auto roofs = getCpuRoofs(viewModel);
    const double elapsedTime = viewModel->getProgramInfo().elapsedTime;
    if (roofs.isEnd() || !(elapsedTime >= kLeastTime)) return {};

    const auto chosen = chooseRoofs(roofs, selectedRoofs);
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
    return rabbit::writeObject([&](rabbit::object& root) { dumpSummary(root, items, device); });
}

}  // namespace data_models2::roofline::summary
