// What the importers share: numbers in cells, JSON texts and the wording of complaints.
#pragma once

#include "embedded_host/result/csv_reader.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace embedded_host {

// Refuses (false) texts that aren't UTF-8 and numbers that aren't finite. Doubles are written as the shortest
// text that reads back as the same number.
using JsonWriter = rapidjson::Writer<rapidjson::StringBuffer, rapidjson::UTF8<>, rapidjson::UTF8<>,
                                     rapidjson::CrtAllocator, rapidjson::kWriteValidateEncodingFlag>;
bool writeText(JsonWriter& writer, std::string_view text);
// The text as a JSON text, quotes included. `what` names it in the FileError for a text that isn't UTF-8.
std::string jsonText(std::string_view text, std::string_view what);

// Without blanks, tabs and line ends on both sides.
std::string_view trimmed(std::string_view text);
// The number that the whole cell stands for, blanks around it aside: "1.5e9" but neither "1.5 s" nor "nan".
// An integer type takes neither a point nor an exponent.
template <class Number>
std::optional<Number> parseNumber(std::string_view cell);

// For a FileError: the text in quotes, cut where it is long.
std::string inQuotes(std::string_view text);
// For a FileError about an unknown column: the nearest of the names and all of them where they are few.
std::string nearColumns(std::string_view name, std::span<const std::string_view> columns);
// The column's place; throws a FileError when the table lacks it.
std::size_t requireColumn(const CsvReader& table, std::string_view name);

}  // namespace embedded_host
