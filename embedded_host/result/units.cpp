// Reads a unit as prefix and base.
#include "embedded_host/result/units.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/import_text.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>

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

std::string expectedRoofUnit(std::string_view unit, bool isMemory) {
    const auto parsed = parseRoofUnit(unit);
    if (!parsed) {
        const bool isBits = unit.find("b/s") != std::string_view::npos;
        return std::string(kRoofUnitForm) + (isBits ? " (b stands for bits, B for bytes)" : "");
    }
    if (parsed->isMemory == isMemory) return {};
    return isMemory ? "bytes per second, such as GB/s, for a memory roof"
                    : "operations per second, such as GFLOP/s, for a compute roof";
}

std::optional<std::uint64_t> toRoofValue(double amount, const RoofUnit& unit) {
    const double value = std::round(amount * unit.factor);
    if (!(value >= 1.0 && value <= 1e19)) return {};
    return static_cast<std::uint64_t>(value);
}

RoofValueText formatRoofValue(std::uint64_t value, std::string_view operation) {
    const auto base = operation.empty() ? std::string("B/s") : fmt::format("{}/s", operation);
    const RoofUnit giga{.isMemory = operation.empty(), .factor = 1e9};
    const double amount = static_cast<double>(value) / giga.factor;
    auto text = fmt::format("{}", amount);
    if (toRoofValue(amount, giga) == value && text.find('e') == std::string::npos)
        return {std::move(text), "G" + base};
    return {fmt::format("{}", value), base};
}

std::uint64_t parseRoofValue(const std::string& text, bool isMemory) {
    const auto refuse = [&](const std::string& expected) {
        throw std::invalid_argument(fmt::format("expected {}, found \"{}\"", expected, text));
    };
    const auto whole = trimmed(text);
    double amount = 0.0;
    const auto [end, error] = std::from_chars(whole.data(), whole.data() + whole.size(), amount);
    if (error != std::errc())
        refuse(fmt::format("a number and a unit, such as {}", isMemory ? "40GB/s" : "40GFLOP/s"));
    auto unit = trimmed(whole.substr(static_cast<std::size_t>(end - whole.data())));
    if (unit.empty()) unit = isMemory ? "GB/s" : "GFLOP/s";
    if (const auto expected = expectedRoofUnit(unit, isMemory); !expected.empty()) refuse(expected);
    const auto value = toRoofValue(amount, *parseRoofUnit(unit));
    if (!value) refuse("a value from 1 to 1e19 per second");
    return *value;
}

}  // namespace embedded_host
