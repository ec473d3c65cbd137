// A machine: cores, packages and its roofs as measured for thread set-ups.
#pragma once

#include "host_interfaces/records.h"

#include "embedded_host/result/json_reader.h"

#include <optional>
#include <string>
#include <vector>

namespace embedded_host {

// A roof for one thread set-up.
struct MeasuredRoof {
    data_models2::RoofItem item;
    data_models2::RoofThreadingFeatures features;
};

struct Machine {
    std::string name;
    int logicalCores = 0;   // 0: unknown
    int physicalCores = 0;  // 0: unknown
    int packages = 0;       // 0: unknown
    std::vector<MeasuredRoof> roofs;
    std::vector<MeasuredRoof>
        custom;  // the user's own values, of roofs that `roofs` has; the names are empty
    std::optional<data_models2::GpuDeviceProperties> device;  // whose roofs these are
};

// `value` is the object of a machine: a machine file's root, or the member of a result file. Throws
// FileError.
Machine readMachine(const JsonFile& file, const JsonValue& value);
// Throws FileError.
Machine openMachine(const std::string& path);

}  // namespace embedded_host
