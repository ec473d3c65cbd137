// `roofline operations`: what each kernel executed, by instruction, type and width.
#include "cli/operations.h"

#include "roofline_model/report_helpers.h"

#include "cli/answer.h"
#include "cli/json.h"
#include "cli/table.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace cli {
namespace {

// By the numbers of GpuInstruction and ArithTypeDef, as result files have the names.
constexpr auto kInstructions = std::to_array<std::string_view>(
    {"not_defined", "move", "basic", "fma", "div", "power", "math", "load", "store", "slm_load", "slm_store",
     "slm_atomic", "mad", "global_atomic", "control_flow", "sync", "vector", "bit"});
constexpr auto kTypes = std::to_array<std::string_view>({"none", "mixed", "int", "float", "float"});

// A number that has no name stays one.
std::string nameOf(std::span<const std::string_view> names, const json::Value& value, const char* key) {
    const auto number = json::number(value, key);
    if (!number) return {};
    if (*number >= 0 && *number < static_cast<double>(names.size()))
        return std::string(names[static_cast<std::size_t>(*number)]);
    return fmt::format("{}", *number);
}

Cell cellOf(const std::optional<double>& value) { return value ? Cell(*value) : Cell(); }

// A line for each instruction; a kernel of which nothing was counted has one too.
Table operationsTable(const std::string& text) {
    Table table{{{"id", "id"},
                 {"kernel", "kernel"},
                 {"instruction", "instruction"},
                 {"data type", "data_type"},
                 {"width", "width_bits", Column::Kind::Number},
                 {"giga operations", "giga_operations", Column::Kind::Number},
                 {"instructions", "instructions", Column::Kind::Number}},
                {}};
    for (const auto& kernel : parseOperations(text)) {
        if (kernel.counted.empty())
            table.rows.push_back({kernel.id, kernel.name, std::string("not counted"), {}, {}, {}, {}});
        for (const auto& each : kernel.counted)
            table.rows.push_back({kernel.id, kernel.name, each.instruction, each.type,
                                  static_cast<double>(each.width), cellOf(each.operations),
                                  cellOf(each.instructions)});
    }
    return table;
}

}  // namespace

std::string CountedOperations::fullType() const { return type + std::to_string(width); }

std::vector<KernelOperations> parseOperations(const std::string& text) {
    const auto root = json::parse(text, "the library's operations");
    std::vector<KernelOperations> kernels;
    for (const auto& row : json::items(root)) {
        auto& kernel = kernels.emplace_back();
        kernel.id = json::text(row, "id");
        kernel.name = json::text(row, "name");
        for (const auto& each : json::items(row, "operations"))
            kernel.counted.push_back(
                {nameOf(kInstructions, each, "instructionType"), nameOf(kTypes, each, "arithType"),
                 static_cast<int>(json::number(each, "width").value_or(0)),
                 json::number(each, "operationCount"), json::number(each, "instructionCount")});
    }
    return kernels;
}

std::map<std::string, MainTypes> mainTypes(const Session& session) {
    if (!session.kind->countsInstructions) return {};
    const auto text = data_models2::report_helpers::getGpuOperationsMapsJson(session.models.survey);
    std::map<std::string, MainTypes> all;
    if (text.empty()) return all;
    for (const auto& kernel : parseOperations(text)) {
        std::map<std::string, std::map<std::string, double>> sums;  // by base type, then by full type
        for (const auto& each : kernel.counted)
            if (each.operations.value_or(0.0) > 0.0) sums[each.type][each.fullType()] += *each.operations;
        const auto largest = [&](const char* base) {
            const auto& types = sums[base];
            const auto found = std::max_element(
                types.begin(), types.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
            return found == types.end() ? std::string() : found->first;
        };
        all[kernel.id] = {largest("float"), largest("int")};
    }
    return all;
}

int runOperations(const OperationsRequest& request, Console& console) {
    const auto session = openSession(request.source);
    if (!session.kind->countsInstructions)
        throw UsageError(fmt::format("{}: {} doesn't tell the instructions of kernels, a GPU one does",
                                     request.source.file, session.kind->aResult));
    const auto text = data_models2::report_helpers::getGpuOperationsMapsJson(session.models.survey);
    if (text.empty()) throw std::runtime_error("the library has no operations of this result");
    Answer answer;
    answer.json = [&] { return text; };
    answer.csv = [&] { return toCsv(operationsTable(text)); };
    answer.table = [&] { return toText(operationsTable(text)); };
    deliver(answer, request.outputs, console);
    return kDone;
}

}  // namespace cli
