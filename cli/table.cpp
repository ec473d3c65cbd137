// Writing of tables.
#include "cli/table.h"

#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace cli {
namespace {

using Kind = Column::Kind;

constexpr std::size_t kWidest = 60;  // code points of a text cell; the machine-readable forms hold it whole

std::string readable(const Cell& cell, Kind kind) {
    if (const auto* text = std::get_if<std::string>(&cell)) return shorten(cleanText(*text), kWidest);
    const auto* number = std::get_if<double>(&cell);
    if (!number || !std::isfinite(*number)) return "N/A";
    if (kind != Kind::Percent) return shortNumber(*number);
    return shortNumber(*number * 100.0) + (*number > 1.0 ? " %!" : " %");
}

std::string padded(const std::string& text, std::size_t width, bool toTheRight) {
    const std::string blanks(width - std::min(width, length(text)), ' ');
    return toTheRight ? blanks + text : text + blanks;
}

std::string quoted(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == text.npos) return text;
    std::string result = "\"";
    for (const char c : text) result.append(c == '"' ? 2 : 1, c);
    return result + '"';
}

std::string machineReadable(const Cell& cell) {
    if (const auto* text = std::get_if<std::string>(&cell)) return quoted(*text);
    const auto* number = std::get_if<double>(&cell);
    return number && std::isfinite(*number) ? fmt::format("{}", *number) : std::string();
}

template <class Parts>
std::string joined(const Parts& parts, std::string_view separator) {
    auto line = fmt::format("{}", fmt::join(parts, separator));
    line.erase(line.find_last_not_of(' ') + 1);
    return line + '\n';
}

}  // namespace

std::string toText(const Table& table) {
    std::vector<std::vector<std::string>> lines(1);
    for (const auto& column : table.columns) lines.front().push_back(column.title);
    for (const auto& row : table.rows) {
        auto& line = lines.emplace_back();
        for (std::size_t i = 0; i < table.columns.size(); ++i)
            line.push_back(readable(row.at(i), table.columns[i].kind));
    }
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        std::size_t width = 0;
        for (const auto& line : lines) width = std::max(width, length(line[i]));
        for (auto& line : lines) line[i] = padded(line[i], width, table.columns[i].kind != Kind::Text);
    }
    std::string text;
    for (const auto& line : lines) text += joined(line, "  ");
    return text;
}

std::string toCsv(const Table& table) {
    std::vector<std::string> cells;
    for (const auto& column : table.columns) cells.push_back(quoted(column.key));
    auto text = fmt::format("{}\n", fmt::join(cells, ","));
    for (const auto& row : table.rows) {
        cells.clear();
        std::transform(row.begin(), row.end(), std::back_inserter(cells), machineReadable);
        text += fmt::format("{}\n", fmt::join(cells, ","));
    }
    return text;
}

}  // namespace cli
