#include "roofline_model/factories.h"

#include "roofline_model/roofline_engine.h"

namespace data_models2 {

std::shared_ptr<IRooflineInfo> createRooflineInfo(std::shared_ptr<ISurveyingViewModel> viewModel) {
    return std::make_shared<CRooflineEngine>(std::move(viewModel));
}

}  // namespace data_models2
