// The JSON writer of the page's data: six significant digits, null for what is no finite number.
#pragma once

#include "cli/json.h"

#include <optional>
#include <string>
#include <string_view>

namespace cli::page {

class Writer : public json::Writer {
public:
    Writer() { Reset(m_buffer); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    // Hides the base's, so that `Value::Accept` rounds too.
    bool Double(double value);

    void key(std::string_view name) { Key(name.data(), static_cast<rapidjson::SizeType>(name.size())); }
    void text(std::string_view value) {
        String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
    }
    void number(const std::optional<double>& value) { value ? void(Double(*value)) : void(Null()); }
    // A JSON text as it stands; null for an empty one.
    void raw(std::string_view json);
    // A JSON text with its numbers rounded; null for an empty one. Throws std::runtime_error for no JSON.
    void rounded(const std::string& json);

    template <class Fill>
    void object(Fill&& fill) {
        StartObject();
        fill();
        EndObject();
    }
    template <class Items, class Each>
    void array(const Items& items, Each&& each) {
        StartArray();
        for (const auto& item : items) each(item);
        EndArray();
    }
    void member(std::string_view name, std::string_view value) {
        key(name);
        text(value);
    }

    std::string take() const { return {m_buffer.GetString(), m_buffer.GetSize()}; }

private:
    rapidjson::StringBuffer m_buffer;
};

// With six significant digits; infinity and NaN stay.
double roundNumber(double value);

}  // namespace cli::page
