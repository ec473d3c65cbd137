// Tables of counters and formulas, and the reading of the cells that they need.
#include "embedded_host/result/importers/rocprof_counters.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/import_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

namespace embedded_host::rocprof {
namespace {

// By Counter, in the shortest form of the name; the last one has no column of its own.
constexpr std::array<std::string_view, kCounterCount> kNames{
    "SQ_INSTS_VALU_ADD_F16",
    "SQ_INSTS_VALU_MUL_F16",
    "SQ_INSTS_VALU_FMA_F16",
    "SQ_INSTS_VALU_TRANS_F16",
    "SQ_INSTS_VALU_ADD_F32",
    "SQ_INSTS_VALU_MUL_F32",
    "SQ_INSTS_VALU_FMA_F32",
    "SQ_INSTS_VALU_TRANS_F32",
    "SQ_INSTS_VALU_ADD_F64",
    "SQ_INSTS_VALU_MUL_F64",
    "SQ_INSTS_VALU_FMA_F64",
    "SQ_INSTS_VALU_TRANS_F64",
    "SQ_INSTS_VALU_INT32",
    "SQ_INSTS_VALU_INT64",
    "SQ_INSTS_VALU_MFMA_MOPS_F16",
    "SQ_INSTS_VALU_MFMA_MOPS_BF16",
    "SQ_INSTS_VALU_MFMA_MOPS_F32",
    "SQ_INSTS_VALU_MFMA_MOPS_F64",
    "SQ_INSTS_VALU_MFMA_MOPS_I8",
    "SQ_LDS_IDX_ACTIVE",
    "SQ_LDS_BANK_CONFLICT",
    "TCP_TOTAL_CACHE_ACCESSES",
    "TCP_TCC_READ_REQ",
    "TCP_TCC_WRITE_REQ",
    "TCP_TCC_ATOMIC_WITH_RET_REQ",
    "TCP_TCC_ATOMIC_WITHOUT_RET_REQ",
    "TCC_EA_RDREQ_32B",
    "TCC_EA_RDREQ",
    "TCC_EA_WRREQ_64B",
    "TCC_EA_WRREQ",
    "",
};
constexpr std::string_view kStart = "Start_Timestamp";
constexpr std::string_view kEnd = "End_Timestamp";
constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

// A wave has 64 lanes, each with an operation an instruction, fused ones two; the matrix counters count
// blocks of 512 operations.
constexpr double kLanes = 64.0;
constexpr double kBlock = 512.0;

const std::vector<StatisticFormula> kStatistics{
    {"basic", "float", 16, {AddF16, MulF16}, kLanes},
    {"fma", "float", 16, {FmaF16}, 2 * kLanes},
    {"math", "float", 16, {TransF16}, kLanes},
    {"basic", "float", 32, {AddF32, MulF32}, kLanes},
    {"fma", "float", 32, {FmaF32}, 2 * kLanes},
    {"math", "float", 32, {TransF32}, kLanes},
    {"basic", "float", 64, {AddF64, MulF64}, kLanes},
    {"fma", "float", 64, {FmaF64}, 2 * kLanes},
    {"math", "float", 64, {TransF64}, kLanes},
    {"basic", "int", 32, {Int32}, kLanes},
    {"basic", "int", 64, {Int64}, kLanes},
    {"vector", "float", 16, {MopsF16, MopsBf16}, kBlock, false},
    {"vector", "float", 32, {MopsF32}, kBlock, false},
    {"vector", "float", 64, {MopsF64}, kBlock, false},
    {"vector", "int", 8, {MopsI8}, kBlock, false},
};

// All operations of a type: what its statistics add up to.
std::vector<Term> operationsOf(std::string_view type) {
    std::vector<Term> terms;
    for (const auto& formula : kStatistics) {
        if (formula.type != type) continue;
        for (const auto counter : formula.counters) terms.push_back({counter, formula.perInstruction});
    }
    return terms;
}

constexpr auto kElapsed = std::to_array<Term>({{ElapsedNs, 1.0}});
constexpr auto kLds = std::to_array<Term>({{LdsActive, 128.0}, {LdsConflict, -128.0}});
constexpr auto kFirstLevel = std::to_array<Term>({{CacheAccesses, 64.0}});
constexpr auto kSharedCache = std::to_array<Term>(
    {{L2Read, 64.0}, {L2Write, 64.0}, {L2AtomicWithReturn, 64.0}, {L2AtomicWithoutReturn, 64.0}});
// 32 bytes for each small read, 64 for each other; with writes it is the large ones that are counted apart.
constexpr auto kHbm =
    std::to_array<Term>({{HbmRead, 64.0}, {HbmRead32, -32.0}, {HbmWrite, 32.0}, {HbmWrite64, 32.0}});

std::optional<std::size_t> findColumn(const CsvReader& table, std::string_view name) {
    constexpr std::string_view port = "TCC_EA_";
    std::vector<std::string> names{std::string(name)};
    if (name.starts_with(port)) names.push_back("TCC_EA0_" + std::string(name.substr(port.size())));
    for (const auto& each : names) {
        if (const auto column = table.findColumn(each + "_sum")) return column;
        if (const auto column = table.findColumn(each)) return column;
    }
    return std::nullopt;
}

bool uses(const CellFormula& cell, Counter counter) {
    return std::any_of(cell.terms.begin(), cell.terms.end(),
                       [&](const Term& term) { return term.counter == counter; });
}

}  // namespace

std::span<const StatisticFormula> statisticFormulas() { return kStatistics; }

std::span<const CellFormula> cellFormulas() {
    static const auto floats = operationsOf("float");
    static const auto integers = operationsOf("int");
    static const auto cells = std::to_array<CellFormula>({
        {"GpuElapsedTime", kElapsed},
        {"SelfFloatOps", floats},
        {"SelfIntOps", integers},
        {"GpuCarmTraffic", kFirstLevel},
        {"GpuSlmTraffic", kLds},
        {"GpuL3Traffic", kSharedCache},
        {"GpuMemTraffic", kHbm},
    });
    return cells;
}

double sumOf(const Counts& counts, std::span<const Term> terms) {
    return std::accumulate(terms.begin(), terms.end(), 0.0, [&](double sum, const Term& term) {
        return sum + term.weight * counts[term.counter];
    });
}

double sumOf(const Counts& counts, std::span<const Counter> counters) {
    return std::accumulate(counters.begin(), counters.end(), 0.0,
                           [&](double sum, Counter counter) { return sum + counts[counter]; });
}

CounterReader::CounterReader(const CsvReader& table)
    : m_table(table), m_start(table.findColumn(kStart)), m_end(table.findColumn(kEnd)) {
    for (std::size_t i = 0; i < ElapsedNs; ++i) m_columns[i] = findColumn(table, kNames[i]);
}

void CounterReader::read(const std::vector<std::string_view>& cells, Counts& counts) {
    for (std::size_t i = 0; i < ElapsedNs; ++i) {
        counts[i] = m_columns[i] ? number(cells, *m_columns[i]) : kMissing;
        if (std::isnan(counts[i])) ++m_emptyCells[i];
    }
    counts[ElapsedNs] = kMissing;
    if (!m_start || !m_end) return;
    // Nanoseconds since some year fill more digits than a double has: the difference is taken first.
    const auto start = parseNumber<std::int64_t>(cells[*m_start]);
    const auto end = parseNumber<std::int64_t>(cells[*m_end]);
    counts[ElapsedNs] = start && end && *start >= 0 && *end >= 0
                            ? static_cast<double>(*end - *start)
                            : number(cells, *m_end) - number(cells, *m_start);
    if (std::isnan(counts[ElapsedNs])) ++m_emptyCells[ElapsedNs];
}

double CounterReader::number(const std::vector<std::string_view>& cells, std::size_t column) const {
    const auto cell = cells[column];
    // Counters are whole numbers of few digits, often written with ".0": worth a way of their own.
    constexpr std::size_t digits = 15;  // fit a double exactly
    auto text = cell;
    if (text.ends_with(".0")) text.remove_suffix(2);
    if (!text.empty() && text.size() <= digits) {
        std::uint64_t value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error == std::errc{} && end == text.data() + text.size()) return static_cast<double>(value);
    }
    if (trimmed(cell).empty()) return kMissing;
    if (const auto value = parseNumber<double>(cell)) return *value;
    throw FileError(fmt::format("{}: line {}, column {}: expected a number, found {}", m_table.file(),
                                m_table.line(), inQuotes(m_table.header()[column]), inQuotes(cell)));
}

std::vector<std::string> CounterReader::warnings() const {
    std::vector<std::string> warnings;
    const auto warn = [&](std::string_view column, bool isThere, Counter counter) {
        if (isThere && m_emptyCells[counter] == 0) return;
        std::vector<std::string_view> fields;
        for (const auto& cell : cellFormulas())
            if (uses(cell, counter)) fields.push_back(cell.field);
        warnings.push_back(
            fmt::format("{}: {} column {}: {} is missing {}", m_table.file(),
                        isThere ? fmt::format("{} empty cells in", m_emptyCells[counter]) : std::string("no"),
                        column, fmt::join(fields, ", "), isThere ? "there" : "in every row"));
    };
    for (std::size_t i = 0; i < ElapsedNs; ++i) {
        const auto& column = m_columns[i];
        warn(column ? m_table.header()[*column] : kNames[i], column.has_value(), static_cast<Counter>(i));
    }
    if (!m_start) warn(kStart, false, ElapsedNs);
    if (!m_end) warn(kEnd, false, ElapsedNs);
    if (m_start && m_end) warn("Start_Timestamp or End_Timestamp", true, ElapsedNs);
    return warnings;
}

}  // namespace embedded_host::rocprof
