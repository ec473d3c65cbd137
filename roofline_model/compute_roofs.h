// Which compute roofs the measured operations of a program or a row stand under.
#pragma once

#include "host_interfaces/model.h"

#include "roofline_model/memory_metrics.h"
#include "roofline_model/operation_map.h"

#include <memory>
#include <unordered_set>
#include <vector>

namespace data_models2::roofline {

// The highest of the roofs under whose kind and data type more than 15 percent of `totalOps` (giga
// operations) were counted; a default roof when there is none.
RoofItem findComputeRoof(const std::shared_ptr<const OperationMap>& operationMap, std::vector<RoofItem> roofs,
                         double totalOps);

// Of the float roofs and of the integer roofs the one that `findComputeRoof` gives. Empty without roofs,
// operations or metrics.
std::unordered_set<RoofId> getDominatingComputeRoofs(
    generic_iterator_t<RoofItem> roofs, const std::shared_ptr<const OperationMap>& operationMap,
    const std::shared_ptr<const CMemoryLevelMetrics>& metrics);

}  // namespace data_models2::roofline
