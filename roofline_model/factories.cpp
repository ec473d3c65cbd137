#include "roofline_model/factories.h"

#include "roofline_model/cpu_row_roofline_helper.h"
#include "roofline_model/guard.h"
#include "roofline_model/roofline_engine.h"
#include "roofline_model/row_roofline_engine.h"

#include <algorithm>

namespace data_models2 {

std::shared_ptr<IRooflineInfo> createRooflineInfo(std::shared_ptr<ISurveyingViewModel> viewModel) {
    return std::make_shared<CRooflineEngine>(std::move(viewModel));
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

}  // namespace data_models2
