// Two passes over the rows: the first makes the tree and finds out how many there are, the second fills
// columns.
#include "embedded_host/result/row_reader.h"

#include "embedded_host/services/fields.h"

#include <fmt/format.h>

#include <charconv>
#include <cstring>
#include <functional>
#include <optional>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

constexpr auto kRowMembers = std::to_array<std::string_view>(
    {"id", "kind", "type", "source", "executed", "cells", "mix", "boundedBy", "statistics", "children"});

// Deliberate: only a kernel has a bit of its own. Loops, functions and regions are told apart by nobody.
constexpr auto kKindNames = std::to_array<std::string_view>({"loop", "function", "region", "kernel"});
constexpr auto kKindBits = std::to_array<std::uint64_t>({0, 0, 0, row_type::kGpuTask});

// Texts that come again and again are stored once: a small cache by hash, where a newer text wins its place.
class TextPool {
public:
    Column::Text get(std::string_view text) {
        auto& entry = m_entries[std::hash<std::string_view>{}(text) % m_entries.size()];
        if (!entry || entry->text() != text) entry = Column::Text(new SharedText(std::string(text)));
        return entry;
    }

private:
    std::array<Column::Text, 512> m_entries;
};

class RowReader {
public:
    RowReader(const JsonFile& file, const KindTraits& kind) : m_file(file), m_kind(kind) {}

    RowTable read(const JsonValue& rows) {
        readTree(rows);
        checkIds();
        if (!m_hasSources) m_table.sources.clear();
        for (std::size_t row = 0; row < m_cells.size(); ++row) {
            if (m_cells[row]) readCells(row, *m_cells[row]);
        }
        markVectorized();
        return std::move(m_table);
    }

private:
    // An array of rows that is being read.
    struct Level {
        const JsonValue* rows;
        rapidjson::SizeType next;
        std::uint32_t parent;
    };

    void readTree(const JsonValue& top) {
        std::vector<Level> path{{&m_file.array(top), 0, RowTable::kNoParent}};
        m_table.ids.reserve(top.Size());
        while (!path.empty()) {
            auto& [rows, next, parent] = path.back();
            if (next == rows->Size()) {
                if (parent != RowTable::kNoParent)
                    m_table.ends[parent] = static_cast<std::uint32_t>(m_table.size());
                path.pop_back();
                continue;
            }
            const auto& row = *(rows->Begin() + next++);
            const auto place = static_cast<std::uint32_t>(m_table.size());
            const auto* const children = readRow(row, parent);
            if (!children) continue;
            m_table.childCounts[place] = m_file.array(*children).Size();
            m_table.hasTree |= !children->Empty();
            path.push_back({children, 0, place});
        }
    }

    // Appends a row and returns its children, null when it has none.
    const JsonValue* readRow(const JsonValue& row, std::uint32_t parent) {
        const auto [id, kind, type, source, executed, cells, mix, boundedBy, statistics, children] =
            m_file.members(row, kRowMembers);
        m_file.need(row, id, "id");
        const auto number = static_cast<std::int64_t>(m_file.integer(*id, 0, kMaxInt64));
        m_table.ids.push_back(number);
        m_table.sources.push_back(source ? static_cast<std::int64_t>(m_file.integer(*source, 0, kMaxInt64))
                                         : number);
        m_hasSources |= source != nullptr;
        m_table.types.push_back(readType(kind, type, executed));
        m_table.parents.push_back(parent);
        m_table.childCounts.push_back(0);
        m_table.ends.push_back(static_cast<std::uint32_t>(m_table.size()));
        m_rows.push_back(&row);
        if (cells && !cells->IsObject()) m_file.refuse(*cells, "an object of cells by field name");
        m_cells.push_back(cells);
        if (mix) readMix(m_table.size() - 1, *mix);
        if (boundedBy) readBounds(m_table.size() - 1, *boundedBy);
        if (statistics) {
            if (!m_kind.hasStatistics) m_file.fail(*statistics, "only a row of kind gpu has statistics");
            readStatistics(m_file, *statistics, static_cast<std::uint32_t>(m_table.size() - 1),
                           m_table.statistics);
        }
        return children;
    }

    void readBounds(std::size_t row, const JsonValue& value) {
        if (!value.IsArray()) {
            m_table.bounds.emplace_back(row, m_file.text(value));
            return;
        }
        for (const auto& name : value.GetArray()) m_table.bounds.emplace_back(row, m_file.text(name));
    }

    std::uint64_t readType(const JsonValue* kind, const JsonValue* type, const JsonValue* executed) const {
        if (kind && type) m_file.fail(*type, "expected either \"kind\" or \"type\", found both");
        const auto bits = kind   ? kKindBits[m_file.choice(*kind, kKindNames)]
                          : type ? m_file.integer(*type, 0, UINT64_MAX)
                                 : m_kind.rowType;
        return bits | (executed && !m_file.boolean(*executed) ? row_type::kNotExecuted : 0);
    }

    void readMix(std::size_t row, const JsonValue& mix) {
        if (!mix.IsObject()) m_file.refuse(mix, "an object of instruction counts by class number");
        m_mix.clear();
        for (auto member = mix.MemberBegin(); member != mix.MemberEnd(); ++member)
            m_mix.emplace_back(readClass(member->name), &*member);
        std::stable_sort(m_mix.begin(), m_mix.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        const auto twin = std::adjacent_find(m_mix.begin(), m_mix.end(),
                                             [](const auto& a, const auto& b) { return a.first == b.first; });
        if (twin != m_mix.end()) m_file.fail((twin + 1)->second->name, "repeated class");
        for (const auto& [number, member] : m_mix)
            m_table.mixes.add(row, number,
                              static_cast<std::int64_t>(m_file.integer(member->value, 0, kMaxInt64)));
    }

    int readClass(const JsonValue& name) const {
        const auto text = textOf(name);
        std::uint32_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || end != text.data() + text.size() || number > INT32_MAX)
            m_file.fail(name, "expected the number of an instruction class");
        return static_cast<int>(number);
    }

    // Ids mostly ascend; only when they don't is it worth sorting them.
    void checkIds() const {
        const auto& ids = m_table.ids;
        if (std::adjacent_find(ids.begin(), ids.end(), std::greater_equal<>()) == ids.end()) return;
        std::vector<std::pair<std::int64_t, std::size_t>> sorted(ids.size());
        for (std::size_t row = 0; row < ids.size(); ++row) sorted[row] = {ids[row], row};
        std::sort(sorted.begin(), sorted.end());
        const auto twin = std::adjacent_find(sorted.begin(), sorted.end(),
                                             [](const auto& a, const auto& b) { return a.first == b.first; });
        if (twin == sorted.end()) return;
        m_file.fail((*m_rows[(twin + 1)->second])["id"],
                    fmt::format("id {} is taken by an earlier row; ids are unique in a file", twin->first));
    }

    // The cells of a row mostly come in the order of the row before it.
    void readCells(std::size_t row, const JsonValue& cells) {
        std::size_t position = 0;
        for (auto cell = cells.MemberBegin(); cell != cells.MemberEnd(); ++cell, ++position) {
            if (position == m_order.size()) m_order.push_back(0);
            auto& slot = m_order[position];
            const auto name = textOf(cell->name);
            if (kFields[slot].name != name) slot = findSlot(cell->name, name);
            if (!m_table.columns[slot]) {
                m_table.columns[slot] = std::make_shared<Column>(kFields[slot].type, m_table.size());
            }
            auto& column = *m_table.columns[slot];
            if (!readCell(row, cell->value, kFields[slot].type, column))
                m_file.fail(cell->name, "repeated field");
        }
    }

    bool readCell(std::size_t row, const JsonValue& value, FieldType type, Column& column) {
        switch (type) {
            case FieldType::Double:
                return column.set(row, m_file.amount(value));
            case FieldType::UInt32:
                return column.set(row, static_cast<std::uint32_t>(m_file.integer(value, 0, UINT32_MAX)));
            case FieldType::Int64:
                return column.set(row, static_cast<std::int64_t>(m_file.integer(value, 0, kMaxInt64)));
            case FieldType::Text:
                break;
        }
        return column.set(row, m_texts.get(m_file.text(value)));
    }

    std::size_t findSlot(const JsonValue& at, std::string_view name) const {
        if (const auto* const field = findField(name))
            return static_cast<std::size_t>(field - kFields.data());
        std::vector<std::string_view> names;
        for (const auto& field : kFields) names.push_back(field.name);
        m_file.fail(at, fmt::format("unknown field{}", suggestion(name, names)));
    }

    void markVectorized() {
        const auto* const vectorized = m_table.find(FieldId::Vectorized);
        if (!vectorized) return;
        const auto& values = vectorized->as<std::uint32_t>();
        for (std::size_t row = 0; row < values.size(); ++row) {
            if (values[row]) m_table.types[row] |= row_type::kVectorized;
        }
    }

    const JsonFile& m_file;
    const KindTraits& m_kind;
    RowTable m_table;
    std::vector<const JsonValue*> m_rows;
    std::vector<const JsonValue*> m_cells;
    std::vector<std::pair<int, const JsonValue::Member*>> m_mix;  // of one row, by class
    std::vector<std::size_t> m_order;  // slot of the field at each position of the last rows' cells
    TextPool m_texts;
    bool m_hasSources = false;
};

}  // namespace

RowTable readRows(const JsonFile& file, const JsonValue& rows, const KindTraits& kind) {
    return RowReader(file, kind).read(rows);
}

}  // namespace embedded_host
