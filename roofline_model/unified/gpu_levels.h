// The memory levels of computing devices: one record each for options, metrics and charts.
#pragma once

#include "host_interfaces/ids.h"
#include "host_interfaces/records.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace data_models2 {

struct GpuLevel {
    const char* name;         // as options, metrics and configurations have it
    const char* explanation;  // message id
    FieldId traffic;          // gigabytes
    FieldId bandwidth;        // gigabytes per second; None: the traffic over the row's time
};

// Deliberate: the last three share a field and an explanation. A device has one path to its last memory,
// whichever that is.
inline constexpr auto kGpuLevels = std::to_array<GpuLevel>({
    {"CARMgpu", "roofline_options_gpu_carm_desc", FieldId::GpuCarmTraffic, FieldId::None},
    {"L3gpu", "roofline_options_l3_desc", FieldId::GpuL3Traffic, FieldId::GpuL3Bandwidth},
    {"SLMgpu", "roofline_options_slm_desc", FieldId::GpuSlmTraffic, FieldId::None},
    {"XLIgpu", "roofline_options_xli_desc", FieldId::GpuMemTraffic, FieldId::None},
    {"DRAMgpu", "roofline_options_xli_desc", FieldId::GpuMemTraffic, FieldId::None},
    {"HBMgpu", "roofline_options_xli_desc", FieldId::GpuMemTraffic, FieldId::None},
});

// Null for a level without a record: nothing is known of its traffic.
const GpuLevel* findGpuLevel(std::string_view name);

// The names of a device's four levels, its last memory last; that one may lack a record.
std::vector<std::string> getGpuMemoryLevels(const GpuDeviceProperties& device);

}  // namespace data_models2
