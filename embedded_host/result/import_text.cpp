// Numbers in cells, JSON texts and complaints about names for the importers.
#include "embedded_host/result/import_text.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/json_reader.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <type_traits>

namespace embedded_host {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::size_t kLongestQuote = 60;  // bytes
constexpr std::size_t kMostColumns = 20;

}  // namespace

bool writeText(JsonWriter& writer, std::string_view text) {
    if (text.empty()) return writer.String("");  // rapidjson wants no null pointer
    return writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

std::string jsonText(std::string_view text, std::string_view what) {
    rapidjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    if (!writeText(writer, text)) throw FileError(fmt::format("{}: expected UTF-8", what));
    return {buffer.GetString(), buffer.GetSize()};
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

template <class Number>
std::optional<Number> parseNumber(std::string_view cell) {
    const std::string_view text = trimmed(cell);
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    if constexpr (std::is_floating_point_v<Number>)
        if (!std::isfinite(number)) return std::nullopt;
    return number;
}
template std::optional<double> parseNumber(std::string_view);
template std::optional<std::int64_t> parseNumber(std::string_view);
template std::optional<std::uint32_t> parseNumber(std::string_view);

std::string inQuotes(std::string_view text) {
    if (text.size() <= kLongestQuote) return fmt::format("\"{}\"", text);
    std::size_t cut = kLongestQuote;
    while (cut > 0 && (text[cut] & 0xC0) == 0x80) --cut;  // not inside a character
    return fmt::format("\"{}...\"", text.substr(0, cut));
}

std::string nearColumns(std::string_view name, std::span<const std::string_view> columns) {
    const std::string near = suggestion(name, columns);
    if (columns.size() > kMostColumns) return near;
    return fmt::format("{}; the columns are \"{}\"", near, fmt::join(columns, "\", \""));
}

std::size_t requireColumn(const CsvReader& table, std::string_view name) {
    if (const auto column = table.findColumn(name)) return *column;
    throw FileError(
        fmt::format("{}: no column {}{}", table.file(), inQuotes(name), nearColumns(name, table.header())));
}

}  // namespace embedded_host
