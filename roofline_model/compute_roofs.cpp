#include "roofline_model/compute_roofs.h"

#include "host_interfaces/host_functions.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace data_models2::roofline {

namespace {

constexpr std::int16_t kLeastPercent = 15;

// Whole percent in 16 bits; clamped, since a count may exceed its total. 0 for what isn't a number.
std::int16_t percentOf(double count, double total) {
    constexpr double kMost = std::numeric_limits<std::int16_t>::max();
    const double percent = count / total * 100.0;
    return std::isnan(percent) ? std::int16_t{0} : static_cast<std::int16_t>(std::clamp(percent, 0.0, kMost));
}

}  // namespace

RoofItem findComputeRoof(const std::shared_ptr<const OperationMap>& operationMap, std::vector<RoofItem> roofs,
                         double totalOps) {
    if (!(totalOps > 0.0) || roofs.empty() || !operationMap || operationMap->empty()) return {};
    std::stable_sort(roofs.begin(), roofs.end(), [](const RoofItem& a, const RoofItem& b) { return b < a; });
    const auto dominates = [&](const RoofItem& roof) {
        double count = getOperationCount(roof.roofOpType, roof.arithType, operationMap);
        // An integer peak of additions is also what integer multiply-adds stand under.
        if (roof.roofOpType == RoofOpType::Basic && roof::getOperationsType(roof) == OperationsType::Int)
            count += getOperationCount(RoofOpType::Fma, roof.arithType, operationMap);
        return count > 0.0 && percentOf(count, totalOps) > kLeastPercent;
    };
    const auto found = std::find_if(roofs.begin(), roofs.end(), dominates);
    return found == roofs.end() ? RoofItem() : *found;
}

std::unordered_set<RoofId> getDominatingComputeRoofs(
    generic_iterator_t<RoofItem> roofs, const std::shared_ptr<const OperationMap>& operationMap,
    const std::shared_ptr<const CMemoryLevelMetrics>& metrics) {
    if (!operationMap || !metrics || roofs.isEnd()) return {};
    std::vector<RoofItem> floatRoofs, intRoofs;
    for (; !roofs.isEnd(); ++roofs) {
        if (!roof::hasType(*roofs, RoofItem::Compute)) continue;
        const OperationsType type = roof::getOperationsType(*roofs);
        if (type == OperationsType::Float) floatRoofs.push_back(*roofs);
        if (type == OperationsType::Int) intRoofs.push_back(*roofs);
    }
    const auto find = [&](std::vector<RoofItem> list, OperationsType type) {
        return findComputeRoof(operationMap, std::move(list), metrics->getTotalOpCount(type)).id;
    };
    // Deliberate: a search without a result puts the id of no roof into the set.
    return {find(std::move(floatRoofs), OperationsType::Float),
            find(std::move(intRoofs), OperationsType::Int)};
}

}  // namespace data_models2::roofline
