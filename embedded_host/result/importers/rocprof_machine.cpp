// Roofs by column, measured and derived, and the members of the device.
#include "embedded_host/result/importers/rocprof_machine.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/csv_reader.h"
#include "embedded_host/result/import_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <optional>

namespace embedded_host::rocprof {
namespace {
namespace fs = std::filesystem;

// A roof that a measured value gives, by itself or by a factor.
struct RoofRow {
    std::string_view column;
    int id;
    std::string_view name;
    std::string_view unit;
    std::string_view what;  // further members
    double factor = 1.0;
    std::string_view how = "measured";
};

// The peaks are those of fused multiply-add: what only adds reaches half of them. Integers have no peak that
// was measured; they are taken to run as fast as float additions of their width. Peaks of 16-bit floats have
// no ids of their own: they take those of scalar peaks, which no device has, so that they count as what
// bounds a row. Ids above 100 are the importer's own and never bound one.
constexpr auto kRoofs = std::to_array<RoofRow>({
    {"L1Bw", 1, "L1 Bandwidth", "GB/s", ""},
    {"LDSBw", 22, "SLM Bandwidth", "GB/s", ""},
    {"L2Bw", 3, "L3 Bandwidth", "GB/s", ""},
    {"HBMBw", 25, "HBM Bandwidth", "GB/s", ""},
    {"FP16Flops", 13, "HP Vector FMA Peak", "GFLOP/s", R"("arith": "float16", "opKind": "fma", )"},
    {"FP16Flops", 9, "HP Vector Add Peak", "GFLOP/s", R"("arith": "float16", "opKind": "basic", )", 0.5,
     "derived"},
    {"FP32Flops", 7, "SP Vector FMA Peak", "GFLOP/s", ""},
    {"FP32Flops", 10, "SP Vector Add Peak", "GFLOP/s", "", 0.5, "derived"},
    {"FP64Flops", 8, "DP Vector FMA Peak", "GFLOP/s", ""},
    {"FP64Flops", 11, "DP Vector Add Peak", "GFLOP/s", "", 0.5, "derived"},
    {"FP32Flops", 16, "Int32 Vector Add Peak", "GINTOP/s", "", 0.5, "assumed"},
    {"FP64Flops", 17, "Int64 Vector Add Peak", "GINTOP/s", "", 0.5, "assumed"},
    {"MFMAF16Flops", 111, "Matrix F16 Peak", "GFLOP/s", R"("arith": "float16", "opKind": "matrix", )"},
    {"MFMABF16Flops", 112, "Matrix BF16 Peak", "GFLOP/s", R"("arith": "float16", "opKind": "matrix", )"},
    {"MFMAF32Flops", 113, "Matrix F32 Peak", "GFLOP/s", R"("arith": "float32", "opKind": "matrix", )"},
    {"MFMAF64Flops", 114, "Matrix F64 Peak", "GFLOP/s", R"("arith": "float64", "opKind": "matrix", )"},
    {"MFMAI8Ops", 115, "Matrix I8 Peak", "GINTOP/s", R"("arith": "int8", "opKind": "matrix", )"},
});
constexpr std::uint32_t kMostUnits = 1'000'000;  // of a machine file
// Only rows with 16-bit floats miss it.
constexpr std::string_view kHalfPeak = "FP16Flops";

// A column that gives no roof, and those that it would have given.
struct Lack {
    std::string_view column;
    std::string_view what;
    std::vector<std::string_view> roofs;
};

// A table of which the first row counts; without the file all cells are empty.
class FirstRow {
public:
    FirstRow(const std::string& folder, const char* name, const char* what,
             std::vector<std::string>& warnings) {
        const auto path = (fs::path(folder) / name).string();
        if (!fs::exists(path)) {
            warnings.push_back(fmt::format("{}: no such file: {}", path, what));
            return;
        }
        m_table = std::make_unique<CsvReader>(readFile(path), path);
        if (!m_table->next(m_cells)) throw FileError(path + ": no row below the header");
        std::vector<std::string_view> others;
        if (m_table->next(others)) warnings.push_back(path + ": several devices; the first one is taken");
    }

    bool isThere() const { return m_table != nullptr; }
    const std::string& file() const { return m_table->file(); }
    bool hasColumn(std::string_view column) const {
        return m_table && m_table->findColumn(column).has_value();
    }
    std::string_view cell(std::string_view column) const {
        const auto place = m_table ? m_table->findColumn(column) : std::nullopt;
        return place ? trimmed(m_cells[*place]) : std::string_view();
    }

private:
    std::unique_ptr<CsvReader> m_table;
    std::vector<std::string_view> m_cells;
};

// Giga units per second; nothing where there is no roof: without a value, or with one of 0.
std::optional<double> peakOf(const FirstRow& row, std::string_view column, double factor = 1.0) {
    const auto cell = row.cell(column);
    if (cell.empty()) return {};
    const auto value = parseNumber<double>(cell);
    if (value && *value == 0.0) return {};
    const double peak = value.value_or(0.0) * factor;
    if (peak * 1e9 >= 1.0 && peak <= 1e10) return peak;
    throw FileError(
        fmt::format("{}: line 2, column \"{}\": expected 0 or a number, {} to 1e19 per second, found {}",
                    row.file(), column, 1.0 / factor, inQuotes(cell)));
}

void addLack(std::vector<Lack>& lacks, const FirstRow& row, const RoofRow& roof) {
    auto lack = std::find_if(lacks.begin(), lacks.end(),
                             [&](const Lack& each) { return each.column == roof.column; });
    if (lack == lacks.end()) {
        const bool isEmpty = row.cell(roof.column).empty();
        const auto what = !row.hasColumn(roof.column) ? "no" : isEmpty ? "empty cell in" : "0 in";
        lack = lacks.insert(lack, {roof.column, what, {}});
    }
    lack->roofs.push_back(roof.name);
}

// The elements of the machine's roofs.
std::string readRoofs(const FirstRow& row, std::vector<std::string>& warnings, std::string& halfPeakWarning) {
    std::string text;
    std::vector<Lack> lacks;
    for (const auto& roof : kRoofs) {
        const auto peak = peakOf(row, roof.column, roof.factor);
        if (!peak) {
            addLack(lacks, row, roof);
            continue;
        }
        text += fmt::format(R"({}{{"id": {}, "name": "{}", {}"value": {}, "unit": "{}", "how": "{}"}})",
                            text.empty() ? "\n" : ",\n", roof.id, roof.name, roof.what, *peak, roof.unit,
                            roof.how);
    }
    for (const auto& lack : lacks) {
        auto warning = fmt::format("{}: {} column {}: missing roofs: {}", row.file(), lack.what, lack.column,
                                   fmt::join(lack.roofs, ", "));
        if (lack.column == kHalfPeak)
            halfPeakWarning = std::move(warning);
        else
            warnings.push_back(std::move(warning));
    }
    return text;
}

}  // namespace

MachineText makeMachine(const std::string& folder, std::vector<std::string>& warnings) {
    const FirstRow system(folder, "sysinfo.csv", "the device is not described", warnings);
    const FirstRow peaks(folder, "roofline.csv", "there are no roofs", warnings);

    const auto name = system.cell("name");
    const auto chip = system.cell("gpu_soc");
    std::string device;
    const auto add = [&](std::string_view member, std::string_view text) {
        if (!text.empty()) device += fmt::format(R"("{}": {}, )", member, jsonText(text, "sysinfo.csv"));
    };
    add("name", name);
    device += R"("vendor": "AMD", )";
    add("architecture", chip);
    if (const auto units = parseNumber<std::uint32_t>(system.cell("numCU"));
        units && *units > 0 && *units <= kMostUnits)
        device += fmt::format(R"("computeUnits": {}, )", *units);
    const bool hasMatrixUnits = peakOf(peaks, "MFMAF16Flops") || peakOf(peaks, "MFMAF32Flops");
    device += fmt::format(R"("matrixUnits": {}, "memory": "HBM")", hasMatrixUnits);

    const auto title =
        name.empty() || chip.empty() ? fmt::format("{}{}", name, chip) : fmt::format("{} ({})", name, chip);
    MachineText machine;
    machine.programName = system.cell("workload_name");
    machine.text = fmt::format(
        "{{\n\"format\": \"roofline-machine\",\n\"version\": 1,\n\"name\": {},\n\"device\": {{{}}},\n"
        "\"roofs\": [{}\n]\n}}\n",
        jsonText(title, "sysinfo.csv"), device,
        peaks.isThere() ? readRoofs(peaks, warnings, machine.halfPeakWarning) : std::string());
    return machine;
}

}  // namespace embedded_host::rocprof
