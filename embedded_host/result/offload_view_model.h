// The view model of a result that was projected on a target device, or measured on one beside its host.
#pragma once

#include "host_interfaces/model.h"

#include "embedded_host/result/machine_file.h"
#include "embedded_host/result/result_file.h"

#include <memory>
#include <string>

namespace embedded_host {

// `directory` identifies the result among those of a process. The target of the result goes before the
// machine's device.
std::shared_ptr<data_models2::IPerfProjectionViewModel> makeOffloadViewModel(
    ResultFile result, std::shared_ptr<const Machine> machine, std::string directory);

}  // namespace embedded_host
