// The units in which a machine file gives its roofs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace embedded_host {

struct RoofUnit {
    bool isMemory = false;  // bytes per second, else operations per second
    double factor = 1.0;    // from the unit to the base unit
};

inline constexpr std::string_view kRoofUnitForm =
    "a unit of a roof: B/s, KB/s, MB/s, GB/s, TB/s, KiB/s, MiB/s, GiB/s, TiB/s, or OP/s, FLOP/s, INTOP/s "
    "with the "
    "prefix K, M, G or T";

// "GB/s", "GiB/s", "GFLOP/s" and the like, letters as in SI (k and K are both kilo). Nothing for anything
// else: "Gb/s" counts bits.
std::optional<RoofUnit> parseRoofUnit(std::string_view unit);

// What stands in place of `unit` for a roof of this kind, as words behind "expected"; empty when it fits.
std::string expectedRoofUnit(std::string_view unit, bool isMemory);
// Whole bytes or operations per second; nothing outside 1..1e19, which is below the end of 64 bits.
std::optional<std::uint64_t> toRoofValue(double amount, const RoofUnit& unit);

// How a value stands in a machine file.
struct RoofValueText {
    std::string value;
    std::string unit;
};
// In thousand millions where reading that gives the same value again, else in single bytes or operations.
// `operation` names what a compute roof counts, such as "FLOP"; empty for a memory roof.
RoofValueText formatRoofValue(std::uint64_t value, std::string_view operation);

}  // namespace embedded_host
