// Enumerations and field numbers that the library and its host agree on.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace data_models2 {

// A column of a dataset; see fields.inc for the list. 0 stands for "none given".
enum class FieldId : int {
    None = 0,
#define OMBRIX_FIELD(number, name, type, unit, meaning) name = number,
#include "host_interfaces/fields.inc"
#undef OMBRIX_FIELD
};

enum class FieldType { Text, UInt32, Int64, Double };

struct FieldInfo {
    FieldId id;
    std::string_view name;
    FieldType type;
    std::string_view unit;
    std::string_view meaning;
};

// All fields, ascending by number.
inline constexpr auto kFields = std::to_array<FieldInfo>({
#define OMBRIX_FIELD(number, name, type, unit, meaning) \
    {FieldId::name, #name, FieldType::type, unit, meaning},
#include "host_interfaces/fields.inc"
#undef OMBRIX_FIELD
});

// Which rows a dataset holds.
enum class DataType : int {
    None = 0,
    Cpu = 1,             // the rows without their tree: self data
    CpuTopDown = 2,      // the same rows as a call tree: total data
    Gpu = 27,            // computing tasks
    GpuStatistics = 28,  // operation counts below each computing task
    Offload = 35,        // regions projected on a target device
};

// Bits of a row's type. Only those that the library or this host tests have a name.
namespace row_type {
inline constexpr std::uint64_t kLoop = 0x4;  // a row without it is a function
inline constexpr std::uint64_t kHidden = 0x8;
inline constexpr std::uint64_t kLoopSubRow =
    0x8;  // the same bit: such a row counts one nesting level too many
inline constexpr std::uint64_t kVectorized = 0x100;
inline constexpr std::uint64_t kNotExecuted = 0x400;
inline constexpr std::uint64_t kUnrolledChild = 0x800;  // a part that unrolling made of the row above it
inline constexpr std::uint64_t kGpuTask = 0x1000000;
}  // namespace row_type

// What a program's run was measured for; bits.
namespace collected_data {
inline constexpr std::uint64_t kTripCounts = 0x1;
inline constexpr std::uint64_t kCallCounts = 0x2;
}  // namespace collected_data

enum class OperationsType : std::uint32_t {
    Float = 0,
    Int = 1,
    Mixed = 2,
    Undefined = 3,  // before a point is found; as an argument: the row's own type
};

enum class MemoryLevel : std::uint64_t {
    None = 0,
    L1 = 1,
    L2 = 2,
    L3 = 3,
    L4 = 4,
    PkgRam = 5,  // on-package memory
    Dram = 6,
    LastCache = 7,
    Slm = 9,
    Xli = 10,
    Hbm = 11,
    Gddr6 = 12,
    Llc = 13,
    Edram = 14,
};

// Roofs that library and host know by number.
enum class RoofId : std::int32_t {
    None = 0,
    L1Bandwidth = 1,
    L2Bandwidth = 2,
    L3Bandwidth = 3,
    L4Bandwidth = 4,
    PkgRamBandwidth = 5,
    DramBandwidth = 6,
    SpVectorFmaPeak = 7,
    DpVectorFmaPeak = 8,
    ScalarAddPeak = 9,
    SpVectorAddPeak = 10,
    DpVectorAddPeak = 11,
    IntScalarAddPeak = 13,
    Int8VectorAddPeak = 14,
    Int16VectorAddPeak = 15,
    Int32VectorAddPeak = 16,
    Int64VectorAddPeak = 17,
    ScalarL1Bandwidth = 18,
    ScalarL2Bandwidth = 19,
    ScalarL3Bandwidth = 20,
    ScalarL4Bandwidth = 21,
    SlmBandwidth = 22,
    XliBandwidth = 23,
    DeviceDramBandwidth = 24,
    DeviceHbmBandwidth = 25,
    DeviceL3Bandwidth = 26,
};

// What kind of instruction a compute roof stands for; 0 on memory roofs. No instruction that is counted is of
// the kind Matrix: such a roof is drawn and never chosen for a row.
enum class RoofOpType : std::uint64_t { None = 0, Basic = 1, Fma = 2, Matrix = 3 };

// Base type of arithmetic; 3 and 4 are the two float forms.
enum class ArithTypeDef : std::uint32_t { None = 0, Mixed = 1, Int = 2, Float = 3, FloatOther = 4 };

// A base type and its width.
enum class ArithTypeExtDef : std::uint32_t {
    None = 0,
    Float8 = 1,
    Float16 = 2,
    Float32 = 3,
    Float64 = 4,
    Int8 = 6,
    Int16 = 7,
    Int32 = 8,
    Int64 = 9,
};

// Classes of a device's instructions, as statistic rows count them (field GpuInstructionType).
enum class GpuInstruction : int {
    NotDefined = 0,
    Move = 1,
    Basic = 2,  // additions, multiplications, comparisons
    Fma = 3,
    Div = 4,
    Power = 5,
    Math = 6,  // roots, exponentials, trigonometry
    Load = 7,
    Store = 8,
    SlmLoad = 9,
    SlmStore = 10,
    SlmAtomic = 11,
    Mad = 12,
    GlobalAtomic = 13,
    ControlFlow = 14,
    Sync = 15,
    Vector = 16,  // what works on whole vectors or matrices at once
    Bit = 17,
};

// How much of a device that consists of sub-devices is meant.
enum class TileUsage : int { Single = 1, Multi = 2 };

// Which table of a row's memory levels is meant.
enum class RooflineMemoryValuesType : int { Utilization = 0, Traffic = 1, Time = 2 };

// Whose memory levels are meant when a level is named.
enum class TargetDeviceType : int { Cpu = 1, Gpu = 2 };

}  // namespace data_models2
