// The computing device of a result or a machine.
#pragma once

#include "host_interfaces/records.h"

#include "embedded_host/result/json_reader.h"

namespace embedded_host {

// `value` is the member `device` of a result or a machine file; the memory is DRAM when it isn't named.
// Throws FileError.
data_models2::GpuDeviceProperties readDevice(const JsonFile& file, const JsonValue& value);

}  // namespace embedded_host
