#include "roofline_model/factories.h"

#include "roofline_model/cpu_row_roofline_helper.h"
#include "roofline_model/gpu_operation_map_provider.h"
#include "roofline_model/gpu_roofline_engine.h"
#include "roofline_model/gpu_row_roofline_helper.h"
#include "roofline_model/guard.h"
#include "roofline_model/offload_roofline_engine.h"
#include "roofline_model/offload_row_roofline_helper.h"
#include "roofline_model/roofline_engine.h"
#include "roofline_model/row_roofline_engine.h"

#include <algorithm>

namespace data_models2 {

namespace {
constexpr auto kGpuUnit = "roofline_model/gpu_roofline_factory";
}  // namespace

std::shared_ptr<IRooflineInfo> createRooflineInfo(std::shared_ptr<ISurveyingViewModel> viewModel) {
    return std::make_shared<CRooflineEngine>(std::move(viewModel));
}

std::shared_ptr<IRooflineInfo> createGpuRooflineInfo(std::shared_ptr<ISurveyingViewModel> viewModel) {
    return std::make_shared<CGpuRooflineEngine>(std::move(viewModel));
}

std::shared_ptr<IRooflineInfo> createOffloadRooflineInfo(
    std::shared_ptr<IPerfProjectionViewModel> viewModel) {
    return std::make_shared<COffloadRooflineEngine>(std::move(viewModel));
}

std::shared_ptr<IRowRooflineInfo> createRowRooflineInfo(const sptr_t<RowNode>& row,
                                                        const sptr_t<IDataset>& dataset,
                                                        std::shared_ptr<IRoofManager> roofManager,
                                                        const InstructionMix& instructionMix,
                                                        int memoryLevelCount,
                                                        std::shared_ptr<RoofThreadingFeatures> roofParam) {
    using Info = std::shared_ptr<IRowRooflineInfo>;
    return roofline::guarded(Info(), [&]() -> Info {
        const auto levels = static_cast<unsigned>(std::max(1, memoryLevelCount));
        auto helper =
            std::make_shared<CpuRowRooflineHelper>(std::move(roofManager), instructionMix, levels, roofParam);
        return std::make_shared<CRowRooflineEngine>(row, dataset, std::move(helper));
    });
}

std::shared_ptr<IRowRooflineInfo> createGpuRowRooflineInfo(
    const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset,
    const std::shared_ptr<ISurveyingViewModel>& viewModel, TileUsage usage) {
    using Info = std::shared_ptr<IRowRooflineInfo>;
    if (!viewModel) reportAssertion("viewModel", kGpuUnit, __LINE__);
    return roofline::guarded(Info(), [&]() -> Info {
        const auto roofManager = viewModel ? viewModel->getRoofManager(DataType::Gpu) : nullptr;
        if (!roofManager) return nullptr;
        const auto roofs =
            roofManager->getRoofs(roof::getGpuRoofConfiguration(usage, OperationsType::Undefined));
        return createGpuRowRooflineInfo(row, dataset, viewModel->getDataset(DataType::GpuStatistics),
                                        viewModel->getRowLinker(DataType::Gpu, DataType::GpuStatistics),
                                        roofs, viewModel->getGpuDeviceProperties());
    });
}

std::shared_ptr<IRowRooflineInfo> createGpuRowRooflineInfo(
    const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, const sptr_t<IDataset>& secondDataset,
    const std::shared_ptr<IDatasetRowLinker>& rowLinker, const generic_iterator_t<RoofItem>& roofs,
    const GpuDeviceProperties& device) {
    using Info = std::shared_ptr<IRowRooflineInfo>;
    if (!row) reportAssertion("row", kGpuUnit, __LINE__);
    return roofline::guarded(Info(), [&]() -> Info {
        if (!row || !secondDataset || !rowLinker) return nullptr;
        const GpuOperationMapProvider operations(rowLinker->getLinkedRow(row), secondDataset);
        auto helper = std::make_shared<GpuRowRooflineHelper>(operations.getOperationMap(), roofs, device);
        return std::make_shared<CRowRooflineEngine>(row, dataset, std::move(helper));
    });
}

std::shared_ptr<IRowRooflineInfo> createOffloadRowRooflineInfo(const sptr_t<RowNode>& row,
                                                               const sptr_t<IDataset>& dataset,
                                                               std::shared_ptr<IRoofManager> roofManager,
                                                               bool singleSubDevice) {
    using Info = std::shared_ptr<IRowRooflineInfo>;
    return roofline::guarded(Info(), [&]() -> Info {
        auto helper = std::make_shared<OffloadRowRooflineHelper>(std::move(roofManager), singleSubDevice);
        return std::make_shared<CRowRooflineEngine>(row, dataset, std::move(helper));
    });
}

}  // namespace data_models2
