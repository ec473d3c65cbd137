// Roofs by column, measured and derived, and the members of the device.
#include "embedded_host/result/importers/rocprof_machine.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/csv_reader.h"
#include "embedded_host/result/import_text.h"

#include <fmt/format.h>

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
// was measured; they are taken to run as fast as float additions of their width. Ids above 100 are the
// importer's own.
constexpr auto kRoofs = std::to_array<RoofRow>({
    {"L1Bw", 1, "L1 Bandwidth", "GB/s", ""},
    {"LDSBw", 22, "SLM Bandwidth", "GB/s", ""},
    {"L2Bw", 3, "L3 Bandwidth", "GB/s", ""},
    {"HBMBw", 25, "HBM Bandwidth", "GB/s", ""},
    {"FP16Flops", 101, "HP Vector FMA Peak", "GFLOP/s", R"("arith": "float16", "opKind": "fma", )"},
    {"FP16Flops", 102, "HP Vector Add Peak", "GFLOP/s", R"("arith": "float16", "opKind": "basic", )", 0.5,
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
// Chips and versions without them are no reason for a warning.
constexpr std::string_view kMayLack = "FP16Flops";

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
    std::string_view cell(std::string_view column) const {
        const auto place = m_table ? m_table->findColumn(column) : std::nullopt;
        return place ? trimmed(m_cells[*place]) : std::string_view();
    }

private:
    std::unique_ptr<CsvReader> m_table;
    std::vector<std::string_view> m_cells;
};

std::string roofs(const FirstRow& row, std::vector<std::string>& warnings) {
    std::string text;
    std::string_view missing;
    for (const auto& roof : kRoofs) {
        const auto cell = row.cell(roof.column);
        if (cell.empty()) {
            if (roof.column != missing && roof.column != kMayLack)
                warnings.push_back(
                    fmt::format("{}: no column {}: the {} is missing", row.file(), roof.column, roof.name));
            missing = roof.column;
            continue;
        }
        const auto value = parseNumber<double>(cell);
        if (!value || *value * 1e9 < 1.0 || *value > 1e10)
            throw FileError(
                fmt::format("{}: line 2, column \"{}\": expected a number, 1 to 1e19 per second, found {}",
                            row.file(), roof.column, inQuotes(cell)));
        text += fmt::format(R"({}{{"id": {}, "name": "{}", {}"value": {}, "unit": "{}", "how": "{}"}})",
                            text.empty() ? "\n" : ",\n", roof.id, roof.name, roof.what, *value * roof.factor,
                            roof.unit, roof.how);
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
    const bool hasMatrixUnits = !peaks.cell("MFMAF16Flops").empty() || !peaks.cell("MFMAF32Flops").empty();
    device += fmt::format(R"("matrixUnits": {}, "memory": "HBM")", hasMatrixUnits);

    const auto title =
        name.empty() || chip.empty() ? fmt::format("{}{}", name, chip) : fmt::format("{} ({})", name, chip);
    MachineText machine;
    machine.programName = system.cell("workload_name");
    machine.text = fmt::format(
        "{{\n\"format\": \"roofline-machine\",\n\"version\": 1,\n\"name\": {},\n\"device\": {{{}}},\n"
        "\"roofs\": [{}\n]\n}}\n",
        jsonText(title, "sysinfo.csv"), device, peaks.isThere() ? roofs(peaks, warnings) : std::string());
    return machine;
}

}  // namespace embedded_host::rocprof
