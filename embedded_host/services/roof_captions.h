// The roofs that are known by number: caption, kind, level and arithmetic type of each.
#pragma once

#include "host_interfaces/records.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace embedded_host {

enum class RoofOwner { Cpu, Device };

struct RoofCaption {
    data_models2::RoofId id;
    std::string_view caption;  // its lower-cased form without white space keys the message of its description
    RoofOwner owner;
    bool isMemory;
    data_models2::MemoryLevel level;  // None for a compute roof
    data_models2::ArithTypeExtDef arithType = data_models2::ArithTypeExtDef::None;
    data_models2::RoofOpType opType = data_models2::RoofOpType::None;
    std::uint64_t extraTypeBits = 0;  // of RoofItem::Type, beside Compute or Memory

    constexpr std::uint64_t typeBits() const {
        return extraTypeBits | (isMemory ? data_models2::RoofItem::Memory : data_models2::RoofItem::Compute);
    }
};

namespace detail {
using data_models2::ArithTypeExtDef;
using data_models2::MemoryLevel;
using data_models2::RoofId;
using data_models2::RoofItem;
using data_models2::RoofOpType;

constexpr RoofCaption bandwidth(RoofId id, std::string_view caption, MemoryLevel level,
                                std::uint64_t extraTypeBits = 0, RoofOwner owner = RoofOwner::Cpu) {
    return {.id = id,
            .caption = caption,
            .owner = owner,
            .isMemory = true,
            .level = level,
            .extraTypeBits = extraTypeBits};
}
constexpr RoofCaption peak(RoofId id, std::string_view caption, ArithTypeExtDef type, RoofOpType opType) {
    return {.id = id,
            .caption = caption,
            .owner = RoofOwner::Cpu,
            .isMemory = false,
            .level = MemoryLevel::None,
            .arithType = type,
            .opType = opType};
}
}  // namespace detail

// Ascending by id. A device's roofs repeat captions of the CPU's; the owner tells them apart.
// The scalar peaks carry the widest type: a scalar instruction takes as long at any width.
// clang-format off
inline constexpr auto kRoofCaptions = [] {
    using namespace detail;
    constexpr auto scalar = RoofItem::OnlyNotVectorized;
    constexpr auto device = RoofOwner::Device;
    return std::to_array<RoofCaption>({
        bandwidth(RoofId::L1Bandwidth, "L1 Bandwidth", MemoryLevel::L1),
        bandwidth(RoofId::L2Bandwidth, "L2 Bandwidth", MemoryLevel::L2),
        bandwidth(RoofId::L3Bandwidth, "L3 Bandwidth", MemoryLevel::L3),
        bandwidth(RoofId::L4Bandwidth, "L4 Bandwidth", MemoryLevel::L4),
        bandwidth(RoofId::PkgRamBandwidth, "PKGRAM Bandwidth", MemoryLevel::PkgRam),
        bandwidth(RoofId::DramBandwidth, "DRAM Bandwidth", MemoryLevel::Dram),
        peak(RoofId::SpVectorFmaPeak, "SP Vector FMA Peak", ArithTypeExtDef::Float32, RoofOpType::Fma),
        peak(RoofId::DpVectorFmaPeak, "DP Vector FMA Peak", ArithTypeExtDef::Float64, RoofOpType::Fma),
        peak(RoofId::ScalarAddPeak, "Scalar Add Peak", ArithTypeExtDef::Float64, RoofOpType::Basic),
        peak(RoofId::SpVectorAddPeak, "SP Vector Add Peak", ArithTypeExtDef::Float32, RoofOpType::Basic),
        peak(RoofId::DpVectorAddPeak, "DP Vector Add Peak", ArithTypeExtDef::Float64, RoofOpType::Basic),
        peak(RoofId::IntScalarAddPeak, "Integer Scalar Add Peak", ArithTypeExtDef::Int64, RoofOpType::Basic),
        peak(RoofId::Int8VectorAddPeak, "Int8 Vector Add Peak", ArithTypeExtDef::Int8, RoofOpType::Basic),
        peak(RoofId::Int16VectorAddPeak, "Int16 Vector Add Peak", ArithTypeExtDef::Int16, RoofOpType::Basic),
        peak(RoofId::Int32VectorAddPeak, "Int32 Vector Add Peak", ArithTypeExtDef::Int32, RoofOpType::Basic),
        peak(RoofId::Int64VectorAddPeak, "Int64 Vector Add Peak", ArithTypeExtDef::Int64, RoofOpType::Basic),
        bandwidth(RoofId::ScalarL1Bandwidth, "Scalar L1 Bandwidth", MemoryLevel::L1, scalar),
        bandwidth(RoofId::ScalarL2Bandwidth, "Scalar L2 Bandwidth", MemoryLevel::L2, scalar),
        bandwidth(RoofId::ScalarL3Bandwidth, "Scalar L3 Bandwidth", MemoryLevel::L3, scalar),
        bandwidth(RoofId::ScalarL4Bandwidth, "Scalar L4 Bandwidth", MemoryLevel::L4, scalar),
        bandwidth(RoofId::SlmBandwidth, "SLM Bandwidth", MemoryLevel::Slm, 0, device),
        bandwidth(RoofId::XliBandwidth, "XLI Bandwidth", MemoryLevel::Xli, 0, device),
        bandwidth(RoofId::DeviceDramBandwidth, "DRAM Bandwidth", MemoryLevel::Dram, 0, device),
        bandwidth(RoofId::DeviceHbmBandwidth, "HBM Bandwidth", MemoryLevel::Hbm, 0, device),
        bandwidth(RoofId::DeviceL3Bandwidth, "L3 Bandwidth", MemoryLevel::L3, 0, device),
    });
}();
// clang-format on

// Null for a number that isn't in the table.
constexpr const RoofCaption* findRoofCaption(data_models2::RoofId id) {
    const auto* const found = std::find_if(kRoofCaptions.begin(), kRoofCaptions.end(),
                                           [&](const auto& row) { return row.id == id; });
    return found == kRoofCaptions.end() ? nullptr : found;
}

}  // namespace embedded_host
