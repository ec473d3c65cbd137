// The hardware counters of a kernel dispatch, and what they add up to.
#pragma once

#include "embedded_host/result/csv_reader.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace embedded_host::rocprof {

enum Counter : std::size_t {
    AddF16,
    MulF16,
    FmaF16,
    TransF16,
    AddF32,
    MulF32,
    FmaF32,
    TransF32,
    AddF64,
    MulF64,
    FmaF64,
    TransF64,
    Int32,
    Int64,
    MopsF16,
    MopsBf16,
    MopsF32,
    MopsF64,
    MopsI8,
    LdsActive,
    LdsConflict,
    CacheAccesses,
    L2Read,
    L2Write,
    L2AtomicWithReturn,
    L2AtomicWithoutReturn,
    HbmRead32,
    HbmRead,
    HbmWrite64,
    HbmWrite,
    ElapsedNs,  // of the two timestamps
    kCounterCount
};

// By Counter; not a number where it wasn't measured, so that every sum with it is missing too.
using Counts = std::array<double, kCounterCount>;

// What a counter weighs in a sum.
struct Term {
    Counter counter;
    double weight;
};

// A cell of the row: the sum, of which the field's unit is 1e9.
struct CellFormula {
    std::string_view field;
    std::span<const Term> terms;
};
std::span<const CellFormula> cellFormulas();

// A statistic of the row: operations are `perInstruction` times the sum of the counters.
struct StatisticFormula {
    std::string_view instruction;
    std::string_view type;  // "float" or "int"
    int width;
    std::vector<Counter> counters;
    double perInstruction;
    bool countsInstructions = true;  // else the counters count blocks of operations
};
std::span<const StatisticFormula> statisticFormulas();

// The sum over the terms; not a number when one of them isn't.
double sumOf(const Counts& counts, std::span<const Term> terms);
double sumOf(const Counts& counts, std::span<const Counter> counters);

// Reads the counters of a table's rows. Names differ between chips and versions: "_sum" may stand behind
// those of the caches, and the ports of the memory are called EA or EA0.
class CounterReader {
public:
    explicit CounterReader(const CsvReader& table);

    // Throws FileError for a cell that is neither empty nor a number.
    void read(const std::vector<std::string_view>& cells, Counts& counts);
    // One text for each column that is missing, with the fields that lack for it, and for each that had empty
    // cells.
    std::vector<std::string> warnings() const;

private:
    double number(const std::vector<std::string_view>& cells, std::size_t column) const;

    const CsvReader& m_table;
    std::array<std::optional<std::size_t>, kCounterCount> m_columns;
    std::optional<std::size_t> m_start;
    std::optional<std::size_t> m_end;
    std::array<std::size_t, kCounterCount> m_emptyCells{};
};

}  // namespace embedded_host::rocprof
