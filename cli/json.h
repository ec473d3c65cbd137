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

// The members of all objects below are written by `fill`.
template <class Fill>
void writeObject(Writer& writer, const char* key, Fill&& fill) {
    writer.Key(key), writer.StartObject();
    fill();
    writer.EndObject();
}

// An array with an object for each element, whose members `fill(element)` writes.
template <class Elements, class Fill>
void writeObjects(Writer& writer, const char* key, const Elements& elements, Fill&& fill) {
    writer.Key(key), writer.StartArray();
    for (const auto& each : elements) {
        writer.StartObject();
        fill(each);
        writer.EndObject();
    }
    writer.EndArray();
}

// The text of one object, given `fill(writer)`.
template <class Fill>
std::string objectText(Fill&& fill) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    fill(writer);
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize());
}

}  // namespace cli::json
