// The factories of the library: all that a host needs beside host_interfaces.
#pragma once

#include "host_interfaces/host_functions.h"
#include "host_interfaces/roofline_services.h"

#include <memory>

namespace data_models2 {

// The roofline of a CPU result. Never null; a null view model gives an engine without data.
OMBRIX_API std::shared_ptr<IRooflineInfo> createRooflineInfo(std::shared_ptr<ISurveyingViewModel> viewModel);

// The roofline of one row of a CPU result, worked out at once. `memoryLevelCount`: caches and main memory
// that were measured, 1 when only the core's traffic was. A null row, dataset, roof manager or threading
// record is asserted and gives a row that isn't valid; null only when the work failed.
OMBRIX_API std::shared_ptr<IRowRooflineInfo> createRowRooflineInfo(
    const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, std::shared_ptr<IRoofManager> roofManager,
    const InstructionMix& instructionMix, int memoryLevelCount,
    std::shared_ptr<RoofThreadingFeatures> roofParam);

}  // namespace data_models2
