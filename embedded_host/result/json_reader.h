// A JSON file read whole and checked on the way: every refusal names the file, the place and what was
// expected.
#pragma once

#include "embedded_host/embedded_host.h"

#include <rapidjson/document.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <span>
#include <string>
#include <string_view>

namespace embedded_host {

using JsonValue = rapidjson::Value;

inline std::string_view textOf(const JsonValue& value) {
    return {value.GetString(), value.GetStringLength()};
}

inline constexpr std::uint64_t kMaxInt64 = std::numeric_limits<std::int64_t>::max();

// A parsed file. The checks give the value or throw FileError; none of them keeps track of where it is: the
// place is found by searching the document for the refused value, so that what is right costs nothing.
// Nesting of any depth is safe.
class JsonFile {
public:
    // `name` stands in errors. Throws FileError with line and column for what isn't JSON or isn't UTF-8.
    JsonFile(std::string name, const std::string& text);

    const std::string& name() const { return m_name; }
    const JsonValue& root() const { return m_document; }

    // `at` is a value of this document or a member's name; any other value is told without a place.
    [[noreturn]] void fail(const JsonValue& at, std::string_view what) const;
    // "expected <expected>, found <kind of value>".
    [[noreturn]] void refuse(const JsonValue& at, std::string_view expected) const;

    // Finds the members of an object by name, null for those it lacks, in the order of `names`. Refuses
    // unknown and repeated ones.
    template <std::size_t N>
    std::array<const JsonValue*, N> members(const JsonValue& object,
                                            const std::array<std::string_view, N>& names) const {
        std::array<const JsonValue*, N> found{};
        readMembers(object, names, found);
        return found;
    }
    // Refuses an object whose member `name` was not found.
    void need(const JsonValue& object, const JsonValue* member, std::string_view name) const;

    const JsonValue& array(const JsonValue& value) const;
    std::string_view text(const JsonValue& value) const;
    bool boolean(const JsonValue& value) const;
    // Finite and not negative; a negative zero is read as 0.
    double amount(const JsonValue& value) const {
        if (value.IsNumber()) {
            const double number = value.GetDouble();
            if (number >= 0.0 && number <= std::numeric_limits<double>::max()) return number + 0.0;
        }
        refuse(value, "a finite number that is not negative");
    }
    // A number without fraction part or exponent.
    std::uint64_t integer(const JsonValue& value, std::uint64_t min, std::uint64_t max) const {
        if (value.IsUint64() && value.GetUint64() >= min && value.GetUint64() <= max)
            return value.GetUint64();
        refuseInteger(value, min, max);
    }
    // The index in `names` of a text.
    std::size_t choice(const JsonValue& value, std::span<const std::string_view> names) const;
    // Refuses a file whose members `format` and `version` aren't these.
    void header(const JsonValue& object, const JsonValue* format, const JsonValue* version,
                std::string_view expectedFormat) const;

private:
    void readMembers(const JsonValue& object, std::span<const std::string_view> names,
                     std::span<const JsonValue*> found) const;
    [[noreturn]] void refuseInteger(const JsonValue& value, std::uint64_t min, std::uint64_t max) const;

    std::string m_name;
    rapidjson::Document m_document;
};

// " (did you mean X?)" for a name of `names` that differs by a slip of the keyboard, else empty.
std::string suggestion(std::string_view name, std::span<const std::string_view> names);

}  // namespace embedded_host
