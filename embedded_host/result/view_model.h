// The view model of a measured result.
#pragma once

#include "host_interfaces/model.h"

#include "embedded_host/result/machine_file.h"
#include "embedded_host/result/result_file.h"

#include <memory>
#include <string>

namespace embedded_host {

// `directory` identifies the result among those of a process.
std::shared_ptr<data_models2::ISurveyingViewModel> makeViewModel(ResultFile result,
                                                                 std::shared_ptr<const Machine> machine,
                                                                 std::string directory);

}  // namespace embedded_host
