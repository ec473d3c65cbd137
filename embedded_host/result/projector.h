// Puts the rows of a CPU result on a target machine by a simple model of their time there.
#pragma once

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/machine_file.h"
#include "embedded_host/result/result_file.h"

#include <string>

namespace embedded_host {

// The model stands at `projectResult`. `host` is of kind cpu, `target` has a device; `machineName` is written
// into the new result as it stands.
Projection project(const ResultFile& host, const Machine& target, const std::string& machineName,
                   bool fillLevels);

}  // namespace embedded_host
