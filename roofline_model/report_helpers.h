// Texts for the reports of a host.
#pragma once

#include "host_interfaces/model.h"

#include <memory>
#include <string>

namespace data_models2::report_helpers {

// What each row of a GPU result executed, a JSON array, rows behind those below them: "id", "name" and
// "operations", an array of "instructionType" and "arithType" (numbers of `GpuInstruction` and
// `ArithTypeDef`), "width" (bits), "operationCount" (giga operations) and "instructionCount". A row whose
// instructions weren't counted has no operations. Empty without a view model or such rows.
OMBRIX_API std::string getGpuOperationsMapsJson(const std::shared_ptr<ISurveyingViewModel>& viewModel);

}  // namespace data_models2::report_helpers
