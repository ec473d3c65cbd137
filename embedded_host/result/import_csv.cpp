// Makes a result file of a table: columns become fields, lines become rows.
#include "embedded_host/embedded_host.h"
#include "embedded_host/result/csv_reader.h"
#include "embedded_host/result/import_text.h"
#include "embedded_host/result/json_reader.h"
#include "embedded_host/result/kinds.h"
#include "embedded_host/services/fields.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <unordered_map>
#include <unordered_set>

namespace embedded_host {

namespace {

using data_models2::FieldInfo;
using data_models2::FieldType;

using Cells = std::vector<std::string_view>;

// A member of each row's cells: the column times the factor, or the same JSON value for every row.
struct Source {
    const FieldInfo* field;
    std::size_t column = 0;  // those of the second table follow those of the first
    double factor = 1.0;
    std::string constant;  // empty: from the column
};

constexpr std::size_t kRowsBetweenReports = 4096;

// The second table by its key.
class JoinedTable {
public:
    JoinedTable(const std::string& file, std::string_view keyColumn) : m_reader(readFile(file), file) {
        const std::size_t key = requireColumn(m_reader, keyColumn);
        Row row;
        while (m_reader.next(row.cells)) {
            row.line = m_reader.line();
            const auto [other, isNew] = m_rows.emplace(row.cells[key], row);
            if (!isNew)
                throw FileError(
                    fmt::format("{}: line {}: the key {} stands in line {} too; expected one row a key", file,
                                row.line, inQuotes(row.cells[key]), other->second.line));
        }
    }

    const CsvReader& reader() const { return m_reader; }
    // Appends the partner's cells and returns its line; without a partner the cells are empty, thus missing.
    std::size_t append(std::string_view key, Cells& cells) const {
        const auto found = m_rows.find(key);
        if (found == m_rows.end()) {
            cells.resize(cells.size() + m_reader.header().size());
            return 0;
        }
        cells.insert(cells.end(), found->second.cells.begin(), found->second.cells.end());
        return found->second.line;
    }

private:
    struct Row {
        std::size_t line = 0;
        Cells cells;
    };
    CsvReader m_reader;
    std::unordered_map<std::string_view, Row> m_rows;
};

// Writes the value that a cell stands for; says what was expected when it can't be one, else nothing. As in
// any result file a number is at least 0.
std::string writeValue(JsonWriter& writer, const FieldInfo& field, double factor, std::string_view cell) {
    if (field.type == FieldType::Text)
        return writeText(writer, cell) ? std::string{} : std::string("expected UTF-8 text");

    const auto integer = parseNumber<std::int64_t>(cell);
    if (field.type == FieldType::Int64 && integer && *integer >= 0 && factor == 1.0) {
        writer.Int64(*integer);  // a double would round beyond 2^53
        return {};
    }
    const auto number = parseNumber<double>(cell);
    if (!number) return fmt::format("expected a number, found {}", inQuotes(cell));
    const double value = *number * factor;
    if (value < 0.0) return fmt::format("expected a number that is not negative, found {}", value);
    if (field.type == FieldType::Double)
        return writer.Double(value) ? std::string{}
                                    : fmt::format("{} times {} is too large", *number, factor);

    constexpr double kEndOfInt64 = 9223372036854775808.0;
    constexpr double kEndOfUInt32 = 4294967296.0;
    if (value != std::trunc(value) || value >= (field.type == FieldType::Int64 ? kEndOfInt64 : kEndOfUInt32))
        return fmt::format("expected a whole number of {} bits, found {}",
                           field.type == FieldType::Int64 ? 63 : 32, inQuotes(cell));
    writer.Int64(static_cast<std::int64_t>(value));
    return {};
}

class CsvImporter {
public:
    explicit CsvImporter(const CsvImport& import)
        : m_import(import), m_table(readFile(import.file), import.file) {
        if (import.map.empty()) throw FileError("nothing to import: no column is mapped to a field");
        if (!import.joinFile.empty()) {
            m_key = requireColumn(m_table, import.joinColumn);
            m_second.emplace(import.joinFile, import.joinColumn);
        }
        for (const ColumnMapping& mapping : import.map) m_sources.push_back(mapped(mapping));
        for (const auto& [field, value] : import.set) m_sources.push_back(constant(field, value));
    }

    std::string run(const Progress& progress) {
        writeHead();
        const std::size_t all = m_table.linesLeft();
        std::size_t count = 0;
        for (Cells cells; m_table.next(cells);) {
            if (progress && count % kRowsBetweenReports == 0 && !progress(count, all))
                throw FileError("cancelled");
            put(count == 0 ? "\n" : ",\n");
            const std::size_t partnerLine = m_second ? m_second->append(cells[*m_key], cells) : 0;
            writeRow(++count, cells, partnerLine);
        }
        if (count == 0) throw FileError(fmt::format("{}: no rows below the header", m_import.file));
        if (progress) progress(count, count);
        put("\n]\n}\n");
        return {m_buffer.GetString(), m_buffer.GetSize()};
    }

private:
    const FieldInfo* checkedField(const std::string& name) {
        const FieldInfo* const field = findField(name);
        if (!field) {
            std::vector<std::string_view> names;
            for (const FieldInfo& row : data_models2::kFields) names.push_back(row.name);
            throw FileError(fmt::format("no field is named {}{}", inQuotes(name), suggestion(name, names)));
        }
        if (!m_taken.insert(field).second) throw FileError(fmt::format("the field {} is set twice", name));
        return field;
    }

    Source mapped(const ColumnMapping& mapping) {
        const FieldInfo* const field = checkedField(mapping.field);
        if (!std::isfinite(mapping.factor) || mapping.factor == 0.0)
            throw FileError(
                fmt::format("the factor of the field {} must be a number other than 0", field->name));
        if (field->type == FieldType::Text && mapping.factor != 1.0)
            throw FileError(fmt::format("the field {} is a text: it takes no factor", field->name));
        return {.field = field, .column = column(mapping.column), .factor = mapping.factor, .constant = {}};
    }

    Source constant(const std::string& name, const std::string& value) {
        const FieldInfo* const field = checkedField(name);
        rapidjson::StringBuffer buffer;
        JsonWriter writer(buffer);
        if (const std::string fault = writeValue(writer, *field, 1.0, value); !fault.empty())
            throw FileError(fmt::format("the value set for the field {}: {}", field->name, fault));
        return {.field = field, .constant = {buffer.GetString(), buffer.GetSize()}};
    }

    std::size_t column(const std::string& name) const {
        const auto first = m_table.findColumn(name);
        const auto second = m_second ? m_second->reader().findColumn(name) : std::nullopt;
        if (first && second && first != m_key)
            throw FileError(fmt::format("the column {} stands in both {} and {}; expected it in one",
                                        inQuotes(name), m_import.file, m_import.joinFile));
        if (first) return *first;
        if (second) return m_table.header().size() + *second;
        Cells names = m_table.header();
        if (m_second)
            names.insert(names.end(), m_second->reader().header().begin(), m_second->reader().header().end());
        throw FileError(
            fmt::format("{}: no column {}{}", m_import.file, inQuotes(name), nearColumns(name, names)));
    }

    void put(std::string_view text) { std::copy(text.begin(), text.end(), m_buffer.Push(text.size())); }

    void writeHead() {
        const std::string program = m_import.programName.empty()
                                        ? std::filesystem::path(m_import.file).stem().string()
                                        : m_import.programName;
        put("{\n\"format\": \"roofline-result\",\n\"version\": 1,\n");
        put(fmt::format("\"kind\": \"{}\",\n", traitsOf(m_import.kind).name));
        put(fmt::format("\"program\": {{\"name\": {}}},\n", jsonText(program, "the program's name")));
        if (!m_import.machineFile.empty())
            put(fmt::format("\"machine\": {},\n", jsonText(m_import.machineFile, "the machine file's name")));
        put("\"rows\": [");
    }

    // One row a line: a change of one row is one line of a diff.
    void writeRow(std::size_t id, const Cells& cells, std::size_t partnerLine) {
        m_writer.Reset(m_buffer);
        m_writer.StartObject();
        m_writer.Key("id");
        m_writer.Uint64(id);
        m_writer.Key("kind");
        writeText(m_writer, traitsOf(m_import.kind).rowKind);
        m_writer.Key("cells");
        m_writer.StartObject();
        for (const Source& source : m_sources) {
            const bool isConstant = !source.constant.empty();
            if (!isConstant && trimmed(cells[source.column]).empty()) continue;  // missing, never 0
            m_writer.Key(source.field->name.data(),
                         static_cast<rapidjson::SizeType>(source.field->name.size()));
            if (isConstant) {
                m_writer.RawValue(source.constant.data(), source.constant.size(), rapidjson::kStringType);
                continue;
            }
            const std::string fault =
                writeValue(m_writer, *source.field, source.factor, cells[source.column]);
            if (!fault.empty()) failAt(source.column, partnerLine, fault);
        }
        m_writer.EndObject();
        m_writer.EndObject();
    }

    [[noreturn]] void failAt(std::size_t column, std::size_t partnerLine, const std::string& fault) const {
        const std::size_t width = m_table.header().size();
        const bool isFirst = column < width;
        const CsvReader& table = isFirst ? m_table : m_second->reader();
        throw FileError(fmt::format("{}: line {}, column {}: {}", table.file(),
                                    isFirst ? m_table.line() : partnerLine,
                                    inQuotes(table.header()[isFirst ? column : column - width]), fault));
    }

    const CsvImport& m_import;
    CsvReader m_table;
    std::optional<std::size_t> m_key;
    std::optional<JoinedTable> m_second;
    std::unordered_set<const FieldInfo*> m_taken;
    std::vector<Source> m_sources;
    rapidjson::StringBuffer m_buffer;
    JsonWriter m_writer{m_buffer};
};

}  // namespace

std::string importCsv(const CsvImport& import, const Progress& progress) {
    return CsvImporter(import).run(progress);
}

}  // namespace embedded_host
