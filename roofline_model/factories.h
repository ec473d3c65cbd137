// The factories of the library: all that a host needs beside host_interfaces.
#pragma once

#include "host_interfaces/host_functions.h"
#include "host_interfaces/roofline_services.h"

#include <memory>

namespace data_models2 {

// The roofline of a CPU result. Never null; a null view model gives an engine without data.
OMBRIX_API std::shared_ptr<IRooflineInfo> createRooflineInfo(std::shared_ptr<ISurveyingViewModel> viewModel);

// The same of a GPU result.
OMBRIX_API std::shared_ptr<IRooflineInfo> createGpuRooflineInfo(
    std::shared_ptr<ISurveyingViewModel> viewModel);

// The same of a projection. Nothing of it is answered later: all is known when a load was told of.
OMBRIX_API std::shared_ptr<IRooflineInfo> createOffloadRooflineInfo(
    std::shared_ptr<IPerfProjectionViewModel> viewModel);

// The roofline of one row of a CPU result, worked out at once. `memoryLevelCount`: caches and main memory
// that were measured, 1 when only the core's traffic was. A null row, dataset, roof manager or threading
// record is asserted and gives a row that isn't valid; null only when the work failed.
OMBRIX_API std::shared_ptr<IRowRooflineInfo> createRowRooflineInfo(
    const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, std::shared_ptr<IRoofManager> roofManager,
    const InstructionMix& instructionMix, int memoryLevelCount,
    std::shared_ptr<RoofThreadingFeatures> roofParam);

// The roofline of one row of a GPU result, worked out at once, under the roofs for the given part of the
// device. Null when the view model, its roof table, its statistic rows or the link to them are missing.
OMBRIX_API std::shared_ptr<IRowRooflineInfo> createGpuRowRooflineInfo(
    const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset,
    const std::shared_ptr<ISurveyingViewModel>& viewModel, TileUsage usage);
// The same from what a view model gives: `secondDataset` holds the statistic rows, `rowLinker` leads to them.
// Null without row, second dataset or linker; a null dataset is asserted and gives a row that isn't valid.
OMBRIX_API std::shared_ptr<IRowRooflineInfo> createGpuRowRooflineInfo(
    const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, const sptr_t<IDataset>& secondDataset,
    const std::shared_ptr<IDatasetRowLinker>& rowLinker, const generic_iterator_t<RoofItem>& roofs,
    const GpuDeviceProperties& device);

// The roofline of one row of a projection, worked out at once, under the roofs of one sub-device of the
// target or of all. A null row or dataset is asserted; it and a null roof table give a row that isn't valid.
// Null only when the work failed.
OMBRIX_API std::shared_ptr<IRowRooflineInfo> createOffloadRowRooflineInfo(
    const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, std::shared_ptr<IRoofManager> roofManager,
    bool singleSubDevice);

}  // namespace data_models2
