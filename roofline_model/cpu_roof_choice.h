// Which roofs a CPU chart shows at first: the memory roofs of its level, the compute roofs that dominate.
#pragma once

#include "roofline_model/dominating_type_helper.h"
#include "roofline_model/selected_roofs.h"
#include "roofline_model/unified/configurations.h"

#include <string>

namespace data_models2::roofline {

// The compute roofs of each perspective for what a program spends its time on.
DominatingRoofs getCpuDominatingRoofs(const DominatingTypesInfo& info);

// Adds the memory roofs of a configuration: that of the first level that it names, from the core outwards, or
// the pair of the core's cache and main memory when only the core's traffic was measured or is shown.
void fillSelectedMemoryRoofs(RoofIds& selected, const std::string& configuration,
                             const RooflineConfigurations::Options& options, int memoryLevels,
                             RoofPerspective perspective);
void fillSelectedMemoryRoofsForCARM(RoofIds& selected, RoofPerspective perspective);

// The memory roofs that only not vectorised code stands under, hidden from all other perspectives.
RoofIds getCpuHiddenRoofs(generic_iterator_t<RoofItem> roofs, RoofPerspective perspective);

}  // namespace data_models2::roofline
