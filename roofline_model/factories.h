// The factories of the library: all that a host needs beside host_interfaces.
#pragma once

#include "host_interfaces/roofline_services.h"

#include <memory>

namespace data_models2 {

// The roofline of a CPU result. Never null; a null view model gives an engine without data.
OMBRIX_API std::shared_ptr<IRooflineInfo> createRooflineInfo(std::shared_ptr<ISurveyingViewModel> viewModel);

}  // namespace data_models2
