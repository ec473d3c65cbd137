#include "embedded_host/result/derivation_tables.h"

#include <array>

namespace embedded_host {
namespace {
using enum data_models2::FieldId;
using Operation = Derivation;

constexpr auto kCpuRules = std::to_array<DerivationRule>({
    {RowKey, Operation::RowId},
    {Rva, Operation::RowIdText},
    {ThreadCount, Operation::UsedThreads},
    {MangledName, Operation::Copy, FunctionName},

    {SelfElapsedTime, Operation::PerThread, SelfTime},
    {SelfTime, Operation::AllThreads, SelfElapsedTime},

    {SelfMemL1, Operation::Sum, SelfL1Load, SelfL1Store},
    {SelfMemL2, Operation::Sum, SelfL2Load, SelfL2Store},
    {SelfMemL3, Operation::Sum, SelfL3Load, SelfL3Store},
    {SelfMemL4, Operation::Sum, SelfL4Load, SelfL4Store},
    {SelfMemDram, Operation::Sum, SelfDramLoad, SelfDramStore},
    {SelfMixedOps, Operation::Sum, SelfFloatOps, SelfIntOps},

    {TotalTime, Operation::Total, SelfTime},
    {TotalElapsedTime, Operation::Total, SelfElapsedTime},
    {TotalFloatOps, Operation::Total, SelfFloatOps},
    {TotalIntOps, Operation::Total, SelfIntOps},
    {TotalMixedOps, Operation::Total, SelfMixedOps},
    {TotalMem, Operation::Total, SelfMemL1},
    {TotalL1Load, Operation::Total, SelfL1Load},
    {TotalL1Store, Operation::Total, SelfL1Store},
    {TotalL2Load, Operation::Total, SelfL2Load},
    {TotalL2Store, Operation::Total, SelfL2Store},
    {TotalL3Load, Operation::Total, SelfL3Load},
    {TotalL3Store, Operation::Total, SelfL3Store},
    {TotalL4Load, Operation::Total, SelfL4Load},
    {TotalL4Store, Operation::Total, SelfL4Store},
    {TotalDramLoad, Operation::Total, SelfDramLoad},
    {TotalDramStore, Operation::Total, SelfDramStore},

    {SelfGFlops, Operation::Ratio, SelfFloatOps, SelfElapsedTime},
    {SelfGIntOps, Operation::Ratio, SelfIntOps, SelfElapsedTime},
    {SelfGMixedOps, Operation::Ratio, SelfMixedOps, SelfElapsedTime},
    {SelfFloatAi, Operation::Ratio, SelfFloatOps, SelfMemL1},
    {SelfIntAi, Operation::Ratio, SelfIntOps, SelfMemL1},
    {SelfMixedAi, Operation::Ratio, SelfMixedOps, SelfMemL1},
    {TotalGFlops, Operation::Ratio, TotalFloatOps, TotalElapsedTime},
    {TotalGIntOps, Operation::Ratio, TotalIntOps, TotalElapsedTime},
    {TotalGMixedOps, Operation::Ratio, TotalMixedOps, TotalElapsedTime},
    {TotalFloatAi, Operation::Ratio, TotalFloatOps, TotalMem},
    {TotalIntAi, Operation::Ratio, TotalIntOps, TotalMem},
    {TotalMixedAi, Operation::Ratio, TotalMixedOps, TotalMem},
});

// A device has no levels by thread and no totals: a kernel's work is its own.
constexpr auto kGpuRules = std::to_array<DerivationRule>({
    {RowKey, Operation::RowId},
    {MangledName, Operation::Copy, FunctionName},
    {SelfGFlops, Operation::Ratio, SelfFloatOps, GpuElapsedTime},
    {SelfGIntOps, Operation::Ratio, SelfIntOps, GpuElapsedTime},
    {SelfFloatAi, Operation::Ratio, SelfFloatOps, GpuCarmTraffic},
    {SelfIntAi, Operation::Ratio, SelfIntOps, GpuCarmTraffic},
    {GpuL3Bandwidth, Operation::Ratio, GpuL3Traffic, GpuElapsedTime},
});

// A projected row stands for all that is below it. Its own intensity is taken over the first cache.
constexpr auto kOffloadRules = std::to_array<DerivationRule>({
    {RowKey, Operation::RowId},
    {MangledName, Operation::Copy, FunctionName},
    {TotalFloatOps, Operation::Sum, OffloadFloat32Ops, OffloadFloat64Ops},
    {TotalIntOps, Operation::Sum, OffloadInt32Ops, OffloadInt64Ops},
    {TotalMixedOps, Operation::Sum, TotalFloatOps, TotalIntOps},
    {TotalMem, Operation::Giga, OffloadL1Bytes},
    {TotalGFlops, Operation::Ratio, TotalFloatOps, OffloadElapsedTime},
    {TotalGIntOps, Operation::Ratio, TotalIntOps, OffloadElapsedTime},
    {TotalGMixedOps, Operation::Ratio, TotalMixedOps, OffloadElapsedTime},
    {TotalFloatAi, Operation::Ratio, TotalFloatOps, TotalMem},
    {TotalIntAi, Operation::Ratio, TotalIntOps, TotalMem},
    {TotalMixedAi, Operation::Ratio, TotalMixedOps, TotalMem},
    {OffloadL1Bandwidth, Operation::Ratio, OffloadL1Bytes, OffloadElapsedTime},
    {OffloadL3Bandwidth, Operation::Ratio, OffloadL3Bytes, OffloadElapsedTime},
    {OffloadLlcBandwidth, Operation::Ratio, OffloadLlcBytes, OffloadElapsedTime},
    {OffloadDramBandwidth, Operation::Ratio, OffloadDramBytes, OffloadElapsedTime},
    {OffloadHbmBandwidth, Operation::Ratio, OffloadHbmBytes, OffloadElapsedTime},
    {OffloadEdramBandwidth, Operation::Ratio, OffloadEdramBytes, OffloadElapsedTime},
    {OffloadGddr6Bandwidth, Operation::Ratio, OffloadGddr6Bytes, OffloadElapsedTime},
    {OffloadXliBandwidth, Operation::Ratio, OffloadXliBytes, OffloadElapsedTime},
    {OffloadSlmBandwidth, Operation::Ratio, OffloadSlmBytes, OffloadElapsedTime},
});

}  // namespace

std::span<const DerivationRule> cpuRules() { return kCpuRules; }
std::span<const DerivationRule> gpuRules() { return kGpuRules; }
std::span<const DerivationRule> offloadRules() { return kOffloadRules; }

}  // namespace embedded_host
