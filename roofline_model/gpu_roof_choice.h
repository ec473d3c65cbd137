// Which roofs a device's chart shows at first: that of its last memory, the compute roofs that dominate.
#pragma once

#include "host_interfaces/records.h"

#include "roofline_model/selected_roofs.h"

namespace data_models2::roofline {

// The same roofs for each perspective: a device's code isn't told apart by vectors.
DominatingRoofs getGpuDominatingRoofs(const RoofIds& roofs);

// Adds the roof of the device's last memory.
void fillDominatingMemoryRoofs(RoofIds& selected, const GpuDeviceProperties& device);

// The link to memory outside the device, unless that is the device's own last memory.
RoofIds getGpuHiddenRoofs(const GpuDeviceProperties& device);

}  // namespace data_models2::roofline
