#include "cli/page/roof_change.h"

#include "cli/json.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>

namespace cli::page {
namespace {

using json::Value;

constexpr std::array<std::string_view, 6> kMembers{"result",      "id",           "value",
                                                   "threadCount", "packageCount", "single"};
constexpr double kMostThreads = 1 << 20, kMostPackages = 1 << 10;  // as on the command line
constexpr double kLargestRoof = 1e19;

[[noreturn]] void refuse(std::string_view member, std::string_view expected) {
    throw UsageError(fmt::format("{}: expected {}", member, expected));
}

double wholeNumber(const Value& body, const char* name, double most) {
    const auto value = json::number(body, name);
    if (!value || *value < 0.0 || *value > most || *value != std::floor(*value))
        refuse(name, fmt::format("a whole number from 0 to {:.0f}", most));
    return *value;
}

std::optional<std::uint64_t> readValue(const Value& body) {
    const auto* const value = json::member(body, "value");
    if (value && value->IsNull()) return {};
    const auto number = json::number(body, "value");
    if (!number || *number < 1.0 || *number > kLargestRoof)
        refuse("value", "a number from 1 to 1e19 per second, or null");
    return static_cast<std::uint64_t>(std::round(*number));
}

rapidjson::Document parseBody(const std::string& text) {
    try {
        return json::parse(text, "the body");
    } catch (const std::runtime_error& error) {
        throw UsageError(error.what());
    }
}

}  // namespace

RoofChange parseRoofChange(const std::string& text) {
    const auto document = parseBody(text);
    const Value& body = document;
    if (!body.IsObject()) throw UsageError("the body: expected an object");
    for (const auto& member : body.GetObject()) {
        const std::string_view name(member.name.GetString(), member.name.GetStringLength());
        if (std::find(kMembers.begin(), kMembers.end(), name) == kMembers.end())
            throw UsageError(fmt::format("there is no member '{}'", shorten(cleanText(name), 40)));
    }
    RoofChange change;
    change.result = static_cast<std::size_t>(wholeNumber(body, "result", 1));
    change.value = readValue(body);
    change.id = static_cast<int>(wholeNumber(body, "id", std::numeric_limits<std::int32_t>::max()));
    if (json::member(body, "threadCount"))
        change.roofs.threads = static_cast<int>(wholeNumber(body, "threadCount", kMostThreads));
    if (json::member(body, "packageCount"))
        change.roofs.packages = static_cast<int>(wholeNumber(body, "packageCount", kMostPackages));
    if (const auto* const single = json::member(body, "single")) {
        if (!single->IsBool()) refuse("single", "true or false");
        change.roofs.single = single->GetBool();
    }
    return change;
}

}  // namespace cli::page
