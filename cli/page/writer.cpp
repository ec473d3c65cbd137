// Rounding and writing of numbers.
#include "cli/page/writer.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>

namespace cli::page {
namespace {

using Digits = std::array<char, 32>;

std::string_view print(double value, Digits& digits) {
    const auto end = fmt::format_to_n(digits.data(), digits.size(), "{:.6g}", value).out;
    return {digits.data(), static_cast<std::size_t>(end - digits.data())};
}

}  // namespace

double roundNumber(double value) {
    if (!std::isfinite(value)) return value;
    Digits digits;
    const auto text = print(value, digits);
    double result = value;  // the largest doubles would be rounded to infinity
    std::from_chars(text.data(), text.data() + text.size(), result);
    return result;
}

bool Writer::Double(double value) {
    if (!std::isfinite(value)) return Null();
    Digits digits;
    const auto text = print(value, digits);
    return RawValue(text.data(), text.size(), rapidjson::kNumberType);
}

void Writer::raw(std::string_view json) {
    if (json.empty()) return void(Null());
    RawValue(json.data(), json.size(), rapidjson::kObjectType);
}

void Writer::rounded(const std::string& json) {
    if (json.empty()) return void(Null());
    json::parse(json, "the library's answer").Accept(*this);
}

}  // namespace cli::page
