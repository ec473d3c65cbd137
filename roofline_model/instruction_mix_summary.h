// A device's instruction mix as the summary shows it: instructions by group, with what they counted.
#pragma once

#include "roofline_model/operation_map.h"
#include "roofline_model/rabbit.h"

#include <memory>

namespace data_models2::roofline::summary {

// The member "instructionMix": an array of groups, each with one entry for an instruction on a data type.
// Counts are those of the map. Adds nothing for a null map.
void dumpInstructionMixSummary(rabbit::object& object,
                               const std::shared_ptr<const OperationMap>& operationMap);

}  // namespace data_models2::roofline::summary
