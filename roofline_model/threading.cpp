#include "roofline_model/threading.h"

#include <boost/property_tree/ptree.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace data_models2::roofline {

namespace {

std::optional<int> readCount(const variant_bag_t& bag, const std::string& name) {
    const auto found = bag.find(name);
    if (found == bag.not_found() || found->second.data().kind() != variant_t::kUInt32) return {};
    constexpr std::uint64_t kMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(found->second.data().unsignedValue(), kMost));
}

}  // namespace

ThreadsInfo getThreadsInfo(const std::shared_ptr<ISurveyingViewModel>& viewModel) {
    if (!viewModel) return {};
    const int physical = viewModel->getPhysicalCoreCount();
    return {.physicalCoreCount = physical > 0 ? physical : viewModel->getLogicalCoreCount(),
            .processorPackageCount = std::max(1, viewModel->getPackageCount()),
            .usedNumberOfThreads = viewModel->getUsedThreadCount()};
}

int getMemoryLevelsCount(const std::shared_ptr<ISurveyingViewModel>& viewModel) {
    return viewModel ? std::max(1, static_cast<int>(viewModel->getMemoryLevelNames().size())) : 1;
}

void parseRoofParams(const variant_bag_t& bag, const ThreadsInfo& info, RoofThreadingFeatures& out) {
    out = {.threadCount = info.usedNumberOfThreads,
           .strategy = RoofThreadingFeatures::Strategy::MultiThread,
           .packageCount = 1};
    if (const auto threads = readCount(bag, "threadCount")) out.threadCount = std::max(1, *threads);
    if (const auto packages = readCount(bag, "packageCount")) out.packageCount = std::max(1, *packages);
    if (info.processorPackageCount > 0) {
        const std::int64_t perPackage = info.physicalCoreCount / info.processorPackageCount;
        if (perPackage * out.packageCount < out.threadCount) out.packageCount = info.processorPackageCount;
    }
    if (const auto single = readCount(bag, "useSTRoofsStrategy"))
        out.strategy = *single ? RoofThreadingFeatures::Strategy::SingleThread
                               : RoofThreadingFeatures::Strategy::MultiThread;
}

RoofThreadingFeatures parseSubDevices(const variant_bag_t& bag) {
    return {.packageCount = readCount(bag, "packageCount").value_or(static_cast<int>(TileUsage::Multi))};
}

}  // namespace data_models2::roofline
