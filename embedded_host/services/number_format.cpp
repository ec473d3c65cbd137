// Numbers and variants as texts, the same in every locale.
#include "host_interfaces/host_functions.h"

#include "embedded_host/embedded_host.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace embedded_host {
namespace {

int exponentOf(const std::string& scientific) {
    return std::atoi(scientific.c_str() + scientific.find('e') + 1);
}

// From here on a plain decimal number is harder to read than one with an exponent.
constexpr int kSmallestExponent = -5;
constexpr int kLargestExponent = 15;

std::string withoutTrailingZeros(std::string text) {
    if (text.find('.') == std::string::npos) return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

// Fixed digits behind the point, but more of them rather than a 0 for what isn't 0, and an exponent where
// neither would be readable.
std::string fixedDigits(double value, int precision) {
    if (std::abs(value) > std::pow(10.0, kLargestExponent)) return fmt::format("{:.{}e}", value, precision);
    const auto text = fmt::format("{:.{}f}", value, precision);
    if (value == 0.0 || text.find_first_of("123456789") != std::string::npos) return text;
    const auto scientific = fmt::format("{:.0e}", value);
    const auto exponent = exponentOf(scientific);
    return exponent < -kLargestExponent ? scientific : fmt::format("{:.{}f}", value, -exponent);
}

}  // namespace

// Digits before the decimal point are never rounded away: 1234567 stays so with three significant digits.
std::string formatNumber(double value, int significantDigits) {
    if (!std::isfinite(value)) return "N/A";
    if (value == 0.0) return "0";
    const auto digits = std::clamp(significantDigits, 1, 17);
    // The exponent after rounding: 9.996 with three digits has that of 10.0.
    const auto scientific = fmt::format("{:.{}e}", value, digits - 1);
    const auto exponent = exponentOf(scientific);
    if (exponent < kSmallestExponent || exponent > kLargestExponent)
        return fmt::format("{:.{}g}", value, digits);
    return withoutTrailingZeros(fmt::format("{:.{}f}", value, std::max(0, digits - 1 - exponent)));
}

}  // namespace embedded_host

namespace data_models2 {

std::string toText(const variant_t& value) {
    if (value.isText()) return std::string(value.text());
    if (!value.isNumber()) return {};
    if (!value.isInteger()) return fmt::format("{:g}", value.toDouble());
    const auto isUnsigned = value.kind() % 2 == 1;
    return isUnsigned ? fmt::format("{}", value.unsignedValue()) : fmt::format("{}", value.signedValue());
}

// A `smallest` that isn't above 0 cuts nothing off. 0 is shown without a sign.
std::string double2str(double value, const std::string& unit, int precision, double smallest) {
    if (!std::isfinite(value)) return "N/A";
    const auto digits = std::clamp(precision, 0, 17);
    const auto shown = value == 0.0 || !(std::abs(value) < smallest)
                           ? embedded_host::fixedDigits(value == 0.0 ? 0.0 : value, digits)
                       : value > 0.0 ? fmt::format("< {}", smallest)
                                     : fmt::format("> -{}", smallest);
    return unit.empty() ? shown : fmt::format("{} {}", shown, unit);
}

std::string int2str(long long value) { return fmt::format("{}", value); }

}  // namespace data_models2
