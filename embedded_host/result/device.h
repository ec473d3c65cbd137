// The computing device of a result or a machine, and the target of a projection.
#pragma once

#include "host_interfaces/records.h"

#include "embedded_host/result/json_reader.h"

#include <string>

namespace embedded_host {

// `value` is the member `device` of a result or a machine file; the memory is DRAM when it isn't named.
// Throws FileError.
data_models2::GpuDeviceProperties readDevice(const JsonFile& file, const JsonValue& value);
// The name by which files call the device's memory, such as "HBM"; empty when it isn't known.
std::string memoryNameOf(const data_models2::GpuDeviceProperties& device);

// What a projection is made for. Either may be empty: unknown.
struct Target {
    std::string name;
    std::string memory;
    bool isProjected = false;  // the times there come from a model
};

// `value` is the member `target` of a result file. Throws FileError.
Target readTarget(const JsonFile& file, const JsonValue& value);

}  // namespace embedded_host
