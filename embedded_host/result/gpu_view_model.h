// The view model of a result that was measured on a computing device.
#pragma once

#include "host_interfaces/model.h"

#include "embedded_host/result/machine_file.h"
#include "embedded_host/result/result_file.h"

#include <memory>
#include <string>

namespace embedded_host {

// `directory` identifies the result among those of a process. The device of the result goes before that of
// the machine.
std::shared_ptr<data_models2::ISurveyingViewModel> makeGpuViewModel(ResultFile result,
                                                                    std::shared_ptr<const Machine> machine,
                                                                    std::string directory);

}  // namespace embedded_host
