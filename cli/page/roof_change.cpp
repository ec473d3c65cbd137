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

constexpr double kLargestRoof = 1e19;

[[noreturn]] void refuse(std::string_view member, std::string_view expected) {
    throw UsageError(fmt::format("{}: expected {}", member, expected));
}

// A member of the body; `value` is null when it isn't there.
struct Field {
    const char* name;
    const Value* value;
};

std::optional<double> numberIn(const Field& field, double least, double most) {
    if (!field.value || !field.value->IsNumber()) return {};
    const auto number = field.value->GetDouble();
    return number >= least && number <= most ? std::optional(number) : std::nullopt;
}

int wholeNumber(const Field& field, int most) {
    const auto number = numberIn(field, 0, most);
    if (!number || *number != std::floor(*number))
        refuse(field.name, fmt::format("a whole number from 0 to {}", most));
    return static_cast<int>(*number);
}

// The one list of what a body may have, in the order in which its faults are told.
struct Member {
    const char* name;
    bool isNeeded;
    void (*read)(RoofChange& change, const Field& field);
};
constexpr std::array<Member, 6> kMembers{{
    {"result", true,
     [](RoofChange& change, const Field& field) {
         change.result = static_cast<std::size_t>(wholeNumber(field, 1));
     }},
    {"value", true,
     [](RoofChange& change, const Field& field) {
         if (field.value && field.value->IsNull()) return;
         const auto number = numberIn(field, 1.0, kLargestRoof);
         if (!number) refuse(field.name, "a number from 1 to 1e19 per second, or null");
         change.value = static_cast<std::uint64_t>(std::round(*number));
     }},
    {"id", true,
     [](RoofChange& change, const Field& field) {
         change.id = wholeNumber(field, std::numeric_limits<std::int32_t>::max());
     }},
    {"threadCount", false,
     [](RoofChange& change, const Field& field) { change.roofs.threads = wholeNumber(field, kMostThreads); }},
    {"packageCount", false,
     [](RoofChange& change, const Field& field) {
         change.roofs.packages = wholeNumber(field, kMostPackages);
     }},
    {"single", false,
     [](RoofChange& change, const Field& field) {
         if (!field.value->IsBool()) refuse(field.name, "true or false");
         change.roofs.single = field.value->GetBool();
     }},
}};

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
        const auto isIt = [&](const Member& known) { return known.name == name; };
        if (std::none_of(kMembers.begin(), kMembers.end(), isIt))
            throw UsageError(fmt::format("there is no member '{}'", shorten(cleanText(name), 40)));
    }
    RoofChange change;
    for (const auto& member : kMembers) {
        const Field field{member.name, json::member(body, member.name)};
        if (field.value || member.isNeeded) member.read(change, field);
    }
    return change;
}

}  // namespace cli::page
