// What differs between the kinds of results in the host's files and rows: one record each.
#pragma once

#include "host_interfaces/ids.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/derivation_tables.h"
#include "embedded_host/result/view_models.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace embedded_host {

struct KindTraits {
    ResultKind kind;
    std::string_view name;        // as result files have it
    std::string_view rowKind;     // of a row that doesn't say its own
    std::uint64_t rowType;        // its type bits; only such rows count in the program's time
    data_models2::DataType rows;  // the dataset of all rows
    data_models2::FieldId time;   // elapsed time of a row
    bool hasLevels, hasDevice, hasTarget, hasStatistics;  // members of files of this kind alone
    std::span<const DerivationRule> (*derivationRules)();
    ViewMaker* makeView;
    bool isTopTime;  // the program's time is that of the top rows, else that of all
};

// By number.
inline constexpr auto kResultKinds = std::to_array<KindTraits>({
    {
        .kind = ResultKind::Cpu,
        .name = "cpu",
        .rowKind = "loop",
        .rowType = 0,
        .rows = data_models2::DataType::Cpu,
        .time = data_models2::FieldId::TotalElapsedTime,
        .hasLevels = true,
        .hasDevice = false,
        .hasTarget = false,
        .hasStatistics = false,
        .derivationRules = cpuRules,
        .makeView = makeCpuView,
        .isTopTime = true,
    },
    {
        .kind = ResultKind::Gpu,
        .name = "gpu",
        .rowKind = "kernel",
        .rowType = data_models2::row_type::kGpuTask,
        .rows = data_models2::DataType::Gpu,
        .time = data_models2::FieldId::GpuElapsedTime,
        .hasLevels = false,
        .hasDevice = true,
        .hasTarget = false,
        .hasStatistics = true,
        .derivationRules = gpuRules,
        .makeView = makeGpuView,
        .isTopTime = false,
    },
    {
        .kind = ResultKind::Offload,
        .name = "offload",
        .rowKind = "loop",
        .rowType = 0,
        .rows = data_models2::DataType::Offload,
        .time = data_models2::FieldId::OffloadElapsedTime,
        .hasLevels = false,
        .hasDevice = false,
        .hasTarget = true,
        .hasStatistics = false,
        .derivationRules = offloadRules,
        .makeView = makeOffloadView,
        .isTopTime = false,
    },
});

constexpr const KindTraits& traitsOf(ResultKind kind) { return kResultKinds[static_cast<std::size_t>(kind)]; }

}  // namespace embedded_host
