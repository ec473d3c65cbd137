#include "roofline_model/factories.h"

#include "roofline_model/guard.h"
#include "roofline_model/roofline_engine.h"

namespace data_models2 {

std::shared_ptr<IRooflineInfo> createRooflineInfo(std::shared_ptr<ISurveyingViewModel> viewModel) {
    using Info = std::shared_ptr<IRooflineInfo>;
    auto engine =
        roofline::guarded(Info(), [&]() -> Info { return std::make_shared<CRooflineEngine>(viewModel); });
    return engine ? engine : std::make_shared<CRooflineEngine>();
}

}  // namespace data_models2
