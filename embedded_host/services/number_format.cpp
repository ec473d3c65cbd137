// Numbers and variants as texts, the same in every locale.
#include "host_interfaces/host_functions.h"

#include "embedded_host/embedded_host.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace embedded_host {
namespace {

// From here on a plain decimal number is harder to read than one with an exponent.
constexpr int kSmallestExponent = -5;
constexpr int kLargestExponent = 15;

std::string withoutTrailingZeros(std::string text) {
    if (text.find('.') == std::string::npos) return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

}  // namespace

// Digits before the decimal point are never rounded away: 1234567 stays so with three significant digits.
std::string formatNumber(double value, int significantDigits) {
    if (!std::isfinite(value)) return "N/A";
    if (value == 0.0) return "0";
    const auto digits = std::clamp(significantDigits, 1, 17);
    // The exponent after rounding: 9.996 with three digits has that of 10.0.
    const auto scientific = fmt::format("{:.{}e}", value, digits - 1);
    const auto exponent = std::atoi(scientific.c_str() + scientific.find('e') + 1);
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

}  // namespace data_models2
