// The roof table of a device: which roofs stand for one sub-device and for all of them.
#pragma once

#include "host_interfaces/model.h"

#include "embedded_host/result/machine_file.h"

#include <memory>
#include <vector>

namespace embedded_host {

// The roofs of `machine` for a number of sub-devices (its `packages`), one per id, ascending by id. A value
// measured for exactly that number is taken as it is; otherwise that of the next smaller number, else of the
// smallest, grows or shrinks with the number: each sub-device has its own units, caches and memory. The
// external link is shared and stays. Threads and strategies don't count. Own values of the user aren't taken
// here.
std::vector<data_models2::RoofItem> selectGpuRoofs(const Machine& machine, int subDevices);

// `subDevices` is what all sub-devices stand for, at least 1. Own values of roofs hold for their number of
// sub-devices and are kept in the machine's file.
std::shared_ptr<data_models2::IRoofManager> makeGpuRoofTable(std::shared_ptr<const Machine> machine,
                                                             int subDevices);

}  // namespace embedded_host
