// The roofline of a GPU result.
#pragma once

#include "roofline_model/measured_engine.h"

#include <memory>
#include <string>

namespace data_models2 {

class CGpuRooflineEngine final : public MeasuredEngine {
public:
    // A null view model makes an engine without data.
    explicit CGpuRooflineEngine(std::shared_ptr<ISurveyingViewModel> viewModel);

    // Asserts that there is a view model.
    void onSurveyResultLoaded(IViewModelBase::LoadType type, const std::string& message) override;
    // The choice of sub-devices; an empty text until a load has told of the device.
    std::string getThreadsInfo() const override;
};

}  // namespace data_models2
