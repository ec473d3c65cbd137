// Plain records that library and host exchange.
#pragma once

#include "host_interfaces/ids.h"

#include <compare>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

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

// By value.
inline bool operator<(const RoofItem& a, const RoofItem& b) { return a.value < b.value; }

// Which part of a machine holds a row back; the numbers are part of the interface.
enum class BoundCategory : std::int32_t {
    Compute = 0,
    NearMemory = 1,
    FarCache = 2,
    MainMemory = 3,
    Other = 4,  // a bound that is no roof
    None = 5,
};

// Deliberate: the peaks of 8-bit and 16-bit integers belong to no category, they never are what holds a row
// back.
constexpr BoundCategory getBoundCategory(RoofId id) {
    switch (id) {
        case RoofId::SpVectorFmaPeak:
        case RoofId::DpVectorFmaPeak:
        case RoofId::ScalarAddPeak:
        case RoofId::SpVectorAddPeak:
        case RoofId::DpVectorAddPeak:
        case RoofId::IntScalarAddPeak:
        case RoofId::Int32VectorAddPeak:
        case RoofId::Int64VectorAddPeak:
            return BoundCategory::Compute;
        case RoofId::L1Bandwidth:
        case RoofId::L2Bandwidth:
        case RoofId::ScalarL1Bandwidth:
        case RoofId::ScalarL2Bandwidth:
        case RoofId::SlmBandwidth:
            return BoundCategory::NearMemory;
        case RoofId::L3Bandwidth:
        case RoofId::L4Bandwidth:
        case RoofId::ScalarL3Bandwidth:
        case RoofId::ScalarL4Bandwidth:
        case RoofId::DeviceL3Bandwidth:
            return BoundCategory::FarCache;
        case RoofId::PkgRamBandwidth:
        case RoofId::DramBandwidth:
        case RoofId::XliBandwidth:
        case RoofId::DeviceDramBandwidth:
        case RoofId::DeviceHbmBandwidth:
            return BoundCategory::MainMemory;
        default:
            return BoundCategory::None;
    }
}

// The roof that limits a row. Without a name and with the category None no roof does.
struct LimitingRoof : RoofItem {
    double limitValue = 0.0;  // the roof's height at the row's point, giga operations per second
    BoundCategory boundCategory = BoundCategory::None;

    LimitingRoof() = default;
    LimitingRoof(const RoofItem& roof, double height)
        : RoofItem(roof), limitValue(height), boundCategory(getBoundCategory(roof.id)) {}
};

// One point of a row: in total, or at one memory level.
struct RooflinePoint {
    double performance = 0.0;  // giga operations per second
    double ai = 0.0;           // arithmetic intensity, operations per byte
    double traffic = 0.0;      // gigabytes at the point's level
    MemoryLevel memoryLevel = MemoryLevel::L1;
    RoofId limitingRoofId = RoofId::None;
    OperationsType operationsType = OperationsType::Undefined;
};

// One entry of a row's memory tables.
struct MemoryValue {
    std::string caption;           // the level's token
    double value = 0.0;            // percent
    std::string text;              // gigabytes; in the table of time the whole percent
    RoofId roofId = RoofId::None;  // of the memory roof that the entry speaks of
    std::string roofName;
    MemoryLevel memoryLevel = MemoryLevel::None;
};

// A conclusion about a row: a key such as "rec_memory_bound" and its named attributes.
struct RooflineConclusion {
    std::string key;
    std::vector<std::pair<std::string, std::string>> attributes;

    explicit RooflineConclusion(std::string conclusionKey,
                                std::vector<std::pair<std::string, std::string>> namedAttributes = {})
        : key(std::move(conclusionKey)), attributes(std::move(namedAttributes)) {}
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

// What is known of a computing device by name.
struct DeviceInfo {
    std::string name;
};

// What is known of the device that a GPU result was measured on. The default knows nothing.
struct GpuDeviceProperties {
    std::uint64_t memoryType = 0;        // number of the MemoryLevel of the device's last memory; 0: unknown
    std::uint64_t subDeviceCount = 0;    // 0: unknown
    std::uint64_t computeUnitCount = 0;  // 0: unknown
    bool isIntegrated = false;           // shares its memory with the CPU
    bool hasMatrixUnits = false;
    std::string name;
    std::string vendor;
    std::string architecture;
};

// What a machine and a program offer for a choice of threads.
struct ThreadsInfo {
    int physicalCoreCount = 0;
    int processorPackageCount = 0;
    int usedNumberOfThreads = 0;
};

}  // namespace data_models2
