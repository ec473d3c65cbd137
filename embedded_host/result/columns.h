// Typed columns of cells and the table of rows that owns them: what every dataset of a result is a view on.
#pragma once

#include "host_interfaces/ids.h"
#include "host_interfaces/values.h"

#include "embedded_host/result/gpu_statistics.h"
#include "embedded_host/result/instruction_mixes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace embedded_host {

// The cells of one field, one a row. A missing cell holds 0 or a null text: sums may ignore the mask.
class Column {
public:
    using Text = data_models2::sptr_t<const data_models2::SharedText>;
    using Cells = std::variant<std::vector<Text>, std::vector<std::uint32_t>, std::vector<std::int64_t>,
                               std::vector<double>>;

    Column(data_models2::FieldType type, std::size_t rows);

    bool has(std::size_t row) const noexcept { return (present[row / 64] >> (row % 64)) & 1U; }
    // T is the cell type of the field's type; false, and nothing is done, for a cell that is there already.
    template <class T>
    bool set(std::size_t row, T value) {
        auto& word = present[row / 64];
        const auto bit = std::uint64_t{1} << (row % 64);
        if (word & bit) return false;
        word |= bit;
        (*std::get_if<std::vector<T>>(&cells))[row] = std::move(value);
        return true;
    }
    template <class T>
    const std::vector<T>& as() const {
        return std::get<std::vector<T>>(cells);
    }
    // Nothing for a missing cell.
    bool get(std::size_t row, data_models2::variant_t& out) const;

    Cells cells;
    std::vector<std::uint64_t> present;  // a bit a row; bits behind the last row are 0
};

// A field's place in `kFields`; fields are few, so that tables by place waste nothing.
inline constexpr std::size_t kFieldCount = data_models2::kFields.size();
inline constexpr int kNoSlot = -1;
inline constexpr auto kFieldSlots = [] {
    std::array<std::int16_t, static_cast<std::size_t>(data_models2::kFields.back().id) + 1> slots{};
    slots.fill(kNoSlot);
    for (std::size_t i = 0; i < kFieldCount; ++i) {
        slots[static_cast<std::size_t>(data_models2::kFields[i].id)] = static_cast<std::int16_t>(i);
    }
    return slots;
}();
constexpr int fieldSlot(data_models2::FieldId field) {
    const auto number = static_cast<std::size_t>(field);  // a negative number becomes a huge one
    return number < kFieldSlots.size() ? kFieldSlots[number] : kNoSlot;
}

// All rows of a result, in the order of the file: a row stands before its children, depth first. Not changed
// once a dataset is made of it.
struct RowTable {
    static constexpr std::uint32_t kNoParent = UINT32_MAX;

    std::vector<std::int64_t> ids;
    std::vector<std::int64_t> sources;   // object ids; empty: every row is its own object
    std::vector<std::uint64_t> types;    // bits of row_type
    std::vector<std::uint32_t> parents;  // kNoParent at the top
    std::vector<std::uint32_t> ends;     // the first row that isn't below this one
    std::vector<std::uint32_t> childCounts;
    std::array<std::shared_ptr<Column>, kFieldCount> columns;  // by slot; null: the field is nowhere
    InstructionMixes mixes;
    std::vector<GpuStatistic> statistics;                     // ascending by row; only of a GPU result
    std::vector<std::pair<std::size_t, std::string>> bounds;  // what bounds a row; ascending by row
    bool hasTree = false;                                     // some row has children

    std::size_t size() const noexcept { return ids.size(); }
    std::uint64_t objectId(std::size_t row) const {
        return static_cast<std::uint64_t>(sources.empty() ? ids[row] : sources[row]);
    }
    std::shared_ptr<Column>& column(data_models2::FieldId field) {
        return columns[static_cast<std::size_t>(fieldSlot(field))];
    }
    const Column* find(data_models2::FieldId field) const {
        return columns[static_cast<std::size_t>(fieldSlot(field))].get();
    }
};

// Calls `visit(row)` for each bit that is set in the words `word(i)`, ascending.
template <class Word, class Visit>
void forEachBit(std::size_t words, Word word, Visit visit) {
    for (std::size_t i = 0; i < words; ++i) {
        for (auto left = word(i); left; left &= left - 1) {
            visit(i * 64 + static_cast<std::size_t>(std::countr_zero(left)));
        }
    }
}

}  // namespace embedded_host
