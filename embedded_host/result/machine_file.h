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

inline constexpr int kMaxThreads = 1'000'000;

// Own values are kept for one or an even number of threads, as roofs are asked for rows: odd numbers above 1
// are taken as the next even one.
constexpr int evenThreads(int threads) {
    return threads > 1 && threads < kMaxThreads ? threads + threads % 2 : threads;
}

// What a row costs on a device beside its work: seconds for each call.
struct Taxes {
    double launch = 0.0;
    double transfer = 0.0;
};

struct Machine {
    std::string file;  // that it was read from; empty when it stands in a result
    std::string name;
    int logicalCores = 0;   // 0: unknown
    int physicalCores = 0;  // 0: unknown
    int packages = 0;       // 0: unknown
    std::vector<MeasuredRoof> roofs;
    // The user's own values, in the order of the file, of roofs that `roofs` has; the names are empty and
    // thread counts are even or 1.
    std::vector<MeasuredRoof> custom;
    std::optional<data_models2::GpuDeviceProperties> device;  // whose roofs these are
    Taxes taxes;
};

// What all sub-devices stand for, at least 1: the device's own number, else that of the machine's packages,
// as far as its file tells for how many its roofs are.
int subDevicesOf(const std::optional<data_models2::GpuDeviceProperties>& device, const Machine& machine);

// `value` is the object of a machine: a machine file's root, or the member of a result file. Throws
// FileError.
Machine readMachine(const JsonFile& file, const JsonValue& value);
// Throws FileError.
Machine openMachine(const std::string& path);

}  // namespace embedded_host
