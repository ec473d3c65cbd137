#include "embedded_host/result/derivation_tables.h"

#include <array>

namespace embedded_host {
namespace {
using enum data_models2::FieldId;

constexpr auto kCpuRules = std::to_array<DerivationRule>({
    {RowKey, Derivation::RowId},
    {Rva, Derivation::RowIdText},
    {ThreadCount, Derivation::UsedThreads},
    {MangledName, Derivation::Copy, FunctionName},

    {SelfElapsedTime, Derivation::PerThread, SelfTime},
    {SelfTime, Derivation::AllThreads, SelfElapsedTime},

    {SelfMemL1, Derivation::Sum, SelfL1Load, SelfL1Store},
    {SelfMemL2, Derivation::Sum, SelfL2Load, SelfL2Store},
    {SelfMemL3, Derivation::Sum, SelfL3Load, SelfL3Store},
    {SelfMemL4, Derivation::Sum, SelfL4Load, SelfL4Store},
    {SelfMemDram, Derivation::Sum, SelfDramLoad, SelfDramStore},
    {SelfMixedOps, Derivation::Sum, SelfFloatOps, SelfIntOps},

    {TotalTime, Derivation::Total, SelfTime},
    {TotalElapsedTime, Derivation::Total, SelfElapsedTime},
    {TotalFloatOps, Derivation::Total, SelfFloatOps},
    {TotalIntOps, Derivation::Total, SelfIntOps},
    {TotalMixedOps, Derivation::Total, SelfMixedOps},
    {TotalMem, Derivation::Total, SelfMemL1},
    {TotalL1Load, Derivation::Total, SelfL1Load},
    {TotalL1Store, Derivation::Total, SelfL1Store},
    {TotalL2Load, Derivation::Total, SelfL2Load},
    {TotalL2Store, Derivation::Total, SelfL2Store},
    {TotalL3Load, Derivation::Total, SelfL3Load},
    {TotalL3Store, Derivation::Total, SelfL3Store},
    {TotalL4Load, Derivation::Total, SelfL4Load},
    {TotalL4Store, Derivation::Total, SelfL4Store},
    {TotalDramLoad, Derivation::Total, SelfDramLoad},
    {TotalDramStore, Derivation::Total, SelfDramStore},

    {SelfGFlops, Derivation::Ratio, SelfFloatOps, SelfElapsedTime},
    {SelfGIntOps, Derivation::Ratio, SelfIntOps, SelfElapsedTime},
    {SelfGMixedOps, Derivation::Ratio, SelfMixedOps, SelfElapsedTime},
    {SelfFloatAi, Derivation::Ratio, SelfFloatOps, SelfMemL1},
    {SelfIntAi, Derivation::Ratio, SelfIntOps, SelfMemL1},
    {SelfMixedAi, Derivation::Ratio, SelfMixedOps, SelfMemL1},
    {TotalGFlops, Derivation::Ratio, TotalFloatOps, TotalElapsedTime},
    {TotalGIntOps, Derivation::Ratio, TotalIntOps, TotalElapsedTime},
    {TotalGMixedOps, Derivation::Ratio, TotalMixedOps, TotalElapsedTime},
    {TotalFloatAi, Derivation::Ratio, TotalFloatOps, TotalMem},
    {TotalIntAi, Derivation::Ratio, TotalIntOps, TotalMem},
    {TotalMixedAi, Derivation::Ratio, TotalMixedOps, TotalMem},
});

// A device has no levels by thread and no totals: a kernel's work is its own.
constexpr auto kGpuRules = std::to_array<DerivationRule>({
    {RowKey, Derivation::RowId},
    {MangledName, Derivation::Copy, FunctionName},
    {SelfGFlops, Derivation::Ratio, SelfFloatOps, GpuElapsedTime},
    {SelfGIntOps, Derivation::Ratio, SelfIntOps, GpuElapsedTime},
    {SelfFloatAi, Derivation::Ratio, SelfFloatOps, GpuCarmTraffic},
    {SelfIntAi, Derivation::Ratio, SelfIntOps, GpuCarmTraffic},
    {GpuL3Bandwidth, Derivation::Ratio, GpuL3Traffic, GpuElapsedTime},
});

// A projected row stands for all that is below it. Its own intensity is taken over the first cache.
constexpr auto kOffloadRules = std::to_array<DerivationRule>({
    {RowKey, Derivation::RowId},
    {MangledName, Derivation::Copy, FunctionName},
    {TotalFloatOps, Derivation::Sum, OffloadFloat32Ops, OffloadFloat64Ops},
    {TotalIntOps, Derivation::Sum, OffloadInt32Ops, OffloadInt64Ops},
    {TotalMixedOps, Derivation::Sum, TotalFloatOps, TotalIntOps},
    {TotalMem, Derivation::Giga, OffloadL1Bytes},
    {TotalGFlops, Derivation::Ratio, TotalFloatOps, OffloadElapsedTime},
    {TotalGIntOps, Derivation::Ratio, TotalIntOps, OffloadElapsedTime},
    {TotalGMixedOps, Derivation::Ratio, TotalMixedOps, OffloadElapsedTime},
    {TotalFloatAi, Derivation::Ratio, TotalFloatOps, TotalMem},
    {TotalIntAi, Derivation::Ratio, TotalIntOps, TotalMem},
    {TotalMixedAi, Derivation::Ratio, TotalMixedOps, TotalMem},
    {OffloadL1Bandwidth, Derivation::Ratio, OffloadL1Bytes, OffloadElapsedTime},
    {OffloadL3Bandwidth, Derivation::Ratio, OffloadL3Bytes, OffloadElapsedTime},
    {OffloadLlcBandwidth, Derivation::Ratio, OffloadLlcBytes, OffloadElapsedTime},
    {OffloadDramBandwidth, Derivation::Ratio, OffloadDramBytes, OffloadElapsedTime},
    {OffloadHbmBandwidth, Derivation::Ratio, OffloadHbmBytes, OffloadElapsedTime},
    {OffloadEdramBandwidth, Derivation::Ratio, OffloadEdramBytes, OffloadElapsedTime},
    {OffloadGddr6Bandwidth, Derivation::Ratio, OffloadGddr6Bytes, OffloadElapsedTime},
    {OffloadXliBandwidth, Derivation::Ratio, OffloadXliBytes, OffloadElapsedTime},
    {OffloadSlmBandwidth, Derivation::Ratio, OffloadSlmBytes, OffloadElapsedTime},
});

}  // namespace

std::span<const DerivationRule> cpuRules() { return kCpuRules; }
std::span<const DerivationRule> gpuRules() { return kGpuRules; }
std::span<const DerivationRule> offloadRules() { return kOffloadRules; }

}  // namespace embedded_host
