// Plain records that library and host exchange.
#pragma once

#include "host_interfaces/ids.h"

#include <compare>
#include <cstdint>
#include <string>

namespace data_models2 {

// One roof of a machine.
struct RoofItem {
    enum Type : std::uint64_t {
        Compute = 4,
        Memory = 8,
        OnlyNotVectorized = 16,  // shown by that perspective alone
        SingleNode = 0x20,       // measured on one NUMA node
    };

    RoofId id = RoofId::None;
    std::string name;         // caption, as the roof table gives it
    std::uint64_t value = 0;  // bytes per second for a memory roof, operations per second for a compute roof
    std::uint64_t typeBits = 0;  // the host's: bits of Type
    MemoryLevel memoryLevel = MemoryLevel::None;
    RoofOpType roofOpType = RoofOpType::None;
    ArithTypeExtDef arithType = ArithTypeExtDef::None;  // of a compute roof
    std::uint64_t hostWord = 0;                         // the host's, copied unread
};

// The thread set-up that a chart assumes.
struct RoofThreadingFeatures {
    enum class Strategy : std::int32_t { MultiThread = 0, SingleThread = 1 };

    int threadCount = 0;  // 0: the program's own
    Strategy strategy = Strategy::MultiThread;
    int packageCount = 1;

    auto operator<=>(const RoofThreadingFeatures&) const = default;
};

// What is known of the measured program.
struct ProgramInfo {
    std::string name;
    double elapsedTime = 0.0;  // seconds
};

// What a machine and a program offer for a choice of threads.
struct ThreadsInfo {
    int physicalCoreCount = 0;
    int processorPackageCount = 0;
    int usedNumberOfThreads = 0;
};

}  // namespace data_models2
