// Reads the head of a result file; the rows are read by the row reader.
#include "embedded_host/result/result_file.h"

#include "embedded_host/result/derivation.h"
#include "embedded_host/result/device.h"
#include "embedded_host/result/kinds.h"
#include "embedded_host/result/row_reader.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace embedded_host {
namespace {
using namespace data_models2;

constexpr auto kTopMembers = std::to_array<std::string_view>(
    {"format", "version", "kind", "program", "machine", "levels", "rows", "device", "target"});
constexpr auto kProgramMembers =
    std::to_array<std::string_view>({"name", "elapsedTime", "usedThreads", "collected"});
constexpr auto kLevelNames =
    std::to_array<std::string_view>({"L1", "L2", "L3", "L4", "PKGRAM", "DRAM", "LLC"});
constexpr auto kCollectedNames = std::to_array<std::string_view>({"trip_counts", "call_counts"});
constexpr auto kCollectedBits =
    std::to_array<std::uint64_t>({collected_data::kTripCounts, collected_data::kCallCounts});
constexpr std::uint64_t kMaxThreads = 1'000'000;

// Reads an array of different names of a list; calls `take(index)` for each.
template <class Take>
void readNames(const JsonFile& file, const JsonValue& value, std::span<const std::string_view> names,
               Take take) {
    std::vector<std::size_t> seen;
    for (const auto& item : file.array(value).GetArray()) {
        const auto index = file.choice(item, names);
        if (std::find(seen.begin(), seen.end(), index) != seen.end()) file.fail(item, "named twice");
        seen.push_back(index);
        take(index);
    }
}

// The program's elapsed time, null when the file doesn't give it.
const JsonValue* readProgram(const JsonFile& file, const JsonValue& value, ResultFile& result) {
    const auto [name, elapsedTime, usedThreads, collected] = file.members(value, kProgramMembers);
    if (name) result.program.name = file.text(*name);
    if (usedThreads) result.usedThreads = static_cast<int>(file.integer(*usedThreads, 1, kMaxThreads));
    if (collected) {
        readNames(file, *collected, kCollectedNames,
                  [&](std::size_t index) { result.collected |= kCollectedBits[index]; });
    }
    if (elapsedTime) result.program.elapsedTime = file.amount(*elapsedTime);
    return elapsedTime;
}

void readMachineMember(const JsonFile& file, const JsonValue& value, ResultFile& result) {
    if (value.IsObject()) {
        result.machine = readMachine(file, value);
        return;
    }
    if (!value.IsString() || value.GetStringLength() == 0)
        file.refuse(value, "a machine or the path of its file");
    result.machinePath = value.GetString();
}

void readLevels(const JsonFile& file, const JsonValue& value, ResultFile& result) {
    readNames(file, value, kLevelNames,
              [&](std::size_t index) { result.levels.emplace_back(kLevelNames[index]); });
    if (result.levels.empty()) file.fail(value, "expected the name of at least one memory level");
}

constexpr auto kKindNames = [] {
    std::array<std::string_view, kResultKinds.size()> names;
    for (const auto& kind : kResultKinds) names[static_cast<std::size_t>(kind.kind)] = kind.name;
    return names;
}();

// The total elapsed time of the top rows; on a device the time of all kernels, on a target that of all rows.
double elapsedTimeOf(const RowTable& rows, const KindTraits& kind) {
    const auto* const times = rows.find(kind.time);
    if (!times) return 0.0;
    double sum = 0.0;
    for (std::size_t row = 0; row < rows.size(); row = kind.isTopTime ? rows.ends[row] : row + 1) {
        if ((rows.types[row] & kind.rowType) == kind.rowType) sum += times->as<double>()[row];
    }
    return std::isfinite(sum) ? sum : 0.0;
}

}  // namespace

ResultFile readResult(const JsonFile& file) {
    const auto& root = file.root();
    const auto [format, version, kind, program, machine, levels, rows, device, target] =
        file.members(root, kTopMembers);
    file.header(root, format, version, "roofline-result");
    file.need(root, kind, "kind");
    ResultFile result;
    result.kind = static_cast<ResultKind>(file.choice(*kind, kKindNames));
    const auto& traits = traitsOf(result.kind);
    for (const auto* const foreign :
         {traits.hasLevels ? nullptr : levels, traits.hasDevice ? nullptr : device,
          traits.hasTarget ? nullptr : target}) {
        if (foreign) file.fail(*foreign, "not a member of a result of kind " + std::string(textOf(*kind)));
    }
    result.program.name = std::filesystem::path(file.name()).stem().string();
    const auto* const elapsedTime = program ? readProgram(file, *program, result) : nullptr;
    if (machine) readMachineMember(file, *machine, result);
    if (levels) readLevels(file, *levels, result);
    if (result.levels.empty()) result.levels = {"L1"};
    if (device) result.device = readDevice(file, *device);
    if (target) result.target = readTarget(file, *target);

    file.need(root, rows, "rows");
    auto table = readRows(file, *rows, traits);
    derive(table, result.kind, static_cast<std::uint32_t>(result.usedThreads));
    const double total = elapsedTimeOf(table, traits);
    if (!elapsedTime) result.program.elapsedTime = total;
    if (traits.hasDevice) result.kernelTime = total;
    result.rows = std::make_shared<const RowTable>(std::move(table));
    return result;
}

}  // namespace embedded_host
