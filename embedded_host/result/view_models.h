// The view models of the kinds of results: answers from what the files said.
#pragma once

#include "host_interfaces/model.h"

#include "embedded_host/result/machine_file.h"
#include "embedded_host/result/result_file.h"

#include <memory>
#include <string>

namespace embedded_host {

// One of the two is there.
struct Views {
    std::shared_ptr<data_models2::ISurveyingViewModel> measured;
    std::shared_ptr<data_models2::IPerfProjectionViewModel> projected;
};

// `directory` identifies the result among those of a process. The device or target of the result goes before
// the machine's device.
Views makeCpuView(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory);
Views makeGpuView(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory);
Views makeOffloadView(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory);

}  // namespace embedded_host
