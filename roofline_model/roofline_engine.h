// The roofline of a CPU result.
#pragma once

#include "roofline_model/measured_engine.h"

#include <memory>
#include <string>

namespace data_models2 {

class CRooflineEngine final : public MeasuredEngine {
public:
    // A null view model makes an engine without data.
    explicit CRooflineEngine(std::shared_ptr<ISurveyingViewModel> viewModel = nullptr);

    ThreadsInfo getThreadsInfoStruct() const;
    std::string getThreadsInfo() const override;
    int getDominatingOperationType(sptr_t<RowNode> row) const override;
    int getDominatingFloatType(sptr_t<RowNode> row) const override;
    int getDominatingIntType(sptr_t<RowNode> row) const override;

private:
    DominatingTypeHelper makeTypeHelper() const;
};

}  // namespace data_models2
