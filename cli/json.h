// Reading of the library's JSON texts: what is missing or of another type reads as absent; and the writer of
// the program's own.
#pragma once

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <optional>
#include <string>
#include <string_view>

namespace cli::json {

using Value = rapidjson::Value;
using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

// Throws std::runtime_error, which names the text as `what`.
rapidjson::Document parse(const std::string& text, std::string_view what);
// Null when `object` is no object or lacks the member.
const Value* member(const Value& object, const char* name);
// Empty for anything but a text.
std::string text(const Value& object, const char* name);
// A finite number; integers that travel as text, as 64-bit ones do, are no numbers.
std::optional<double> number(const Value& object, const char* name);
bool flag(const Value& object, const char* name);
// The elements of an array member; none when it is no array. For range-for.
Value::ConstArray items(const Value& object, const char* name);
Value::ConstArray items(const Value& array);

}  // namespace cli::json
