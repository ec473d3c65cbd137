// The units in which a machine file gives its roofs.
#pragma once

#include <optional>
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

}  // namespace embedded_host
