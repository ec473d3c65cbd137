// Reads a unit as prefix and base.
#include "embedded_host/result/units.h"

#include <array>

namespace embedded_host {
namespace {

struct Prefix {
    std::string_view name;
    double factor;
    bool isForBytesOnly;
};
// The longer ones stand first.
constexpr auto kPrefixes = std::to_array<Prefix>({
    {"Ki", 1024.0, true},
    {"Mi", 1048576.0, true},
    {"Gi", 1073741824.0, true},
    {"Ti", 1099511627776.0, true},
    {"k", 1e3, false},
    {"K", 1e3, false},
    {"M", 1e6, false},
    {"G", 1e9, false},
    {"T", 1e12, false},
    {"", 1.0, false},
});

struct Base {
    std::string_view name;
    bool isMemory;
};
constexpr auto kBases = std::to_array<Base>({
    {"B/s", true},
    {"OP/s", false},
    {"FLOP/s", false},
    {"INTOP/s", false},
    {"OPS", false},
    {"FLOPS", false},
    {"INTOPS", false},
});

}  // namespace

std::optional<RoofUnit> parseRoofUnit(std::string_view unit) {
    for (const auto& prefix : kPrefixes) {
        if (unit.substr(0, prefix.name.size()) != prefix.name) continue;
        const auto rest = unit.substr(prefix.name.size());
        for (const auto& base : kBases) {
            if (rest == base.name && (base.isMemory || !prefix.isForBytesOnly)) {
                return RoofUnit{base.isMemory, prefix.factor};
            }
        }
    }
    return {};
}

}  // namespace embedded_host
