// Tolerant access to JSON values.
#include "cli/json.h"

#include <fmt/format.h>
#include <rapidjson/error/en.h>

#include <cmath>
#include <stdexcept>

namespace cli::json {
namespace {

const Value& emptyArray() {
    static const Value kEmpty(rapidjson::kArrayType);
    return kEmpty;
}

}  // namespace

rapidjson::Document parse(const std::string& text, std::string_view what) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseFullPrecisionFlag | rapidjson::kParseIterativeFlag>(text.data(),
                                                                                        text.size());
    if (document.HasParseError())
        throw std::runtime_error(fmt::format("{}: no JSON at byte {}: {}", what, document.GetErrorOffset(),
                                             rapidjson::GetParseError_En(document.GetParseError())));
    return document;
}

const Value* member(const Value& object, const char* name) {
    if (!object.IsObject()) return nullptr;
    const auto found = object.FindMember(name);
    return found == object.MemberEnd() ? nullptr : &found->value;
}

std::string text(const Value& object, const char* name) {
    const auto* value = member(object, name);
    return value && value->IsString() ? std::string(value->GetString(), value->GetStringLength())
                                      : std::string();
}

std::optional<double> number(const Value& object, const char* name) {
    const auto* value = member(object, name);
    if (!value || !value->IsNumber() || !std::isfinite(value->GetDouble())) return {};
    return value->GetDouble();
}

bool flag(const Value& object, const char* name) {
    const auto* value = member(object, name);
    return value && value->IsBool() && value->GetBool();
}

Value::ConstArray items(const Value& array) {
    return array.IsArray() ? array.GetArray() : emptyArray().GetArray();
}

Value::ConstArray items(const Value& object, const char* name) {
    const auto* value = member(object, name);
    return items(value ? *value : emptyArray());
}

}  // namespace cli::json
