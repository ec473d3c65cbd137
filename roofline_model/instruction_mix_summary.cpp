#include "roofline_model/instruction_mix_summary.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/translation.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>

namespace data_models2::roofline::summary {

namespace {

constexpr auto kInstructionMessages = [] {
    using enum GpuInstruction;
    return std::to_array<std::pair<GpuInstruction, const char*>>({
        {NotDefined, "roofline_summary_inst_not_defined"},
        {Move, "roofline_summary_inst_move"},
        {Basic, "roofline_summary_inst_basic"},
        {Fma, "roofline_summary_inst_fma"},
        {Div, "roofline_summary_inst_div"},
        {Power, "roofline_summary_inst_power"},
        {Math, "roofline_summary_inst_math"},
        {Load, "roofline_summary_inst_load"},
        {Store, "roofline_summary_inst_store"},
        {SlmLoad, "roofline_summary_inst_slm_load"},
        {SlmStore, "roofline_summary_inst_slm_store"},
        {SlmAtomic, "roofline_summary_inst_slm_atomic"},
        {Mad, "roofline_summary_inst_mad"},
        {GlobalAtomic, "roofline_summary_inst_global_atomic"},
        {ControlFlow, "roofline_summary_inst_control_flow"},
        {Sync, "roofline_summary_inst_sync"},
        {Vector, "roofline_summary_inst_vector"},
        {Bit, "roofline_summary_inst_bit"},
    });
}();

bool isFloat(ArithTypeDef type) { return type == ArithTypeDef::Float || type == ArithTypeDef::FloatOther; }

// A class that isn't known counts as one that isn't classified.
std::string instructionName(int instructionType) {
    const auto found =
        std::find_if(kInstructionMessages.begin(), kInstructionMessages.end(),
                     [&](const auto& row) { return static_cast<int>(row.first) == instructionType; });
    return translate(found == kInstructionMessages.end() ? kInstructionMessages.front().second
                                                         : found->second);
}

// Such as "Float 32"; mixed data have no width of their own.
std::string dataTypeTitle(const OperationKey& key) {
    if (key.arithType == ArithTypeDef::Mixed) return translate("roofline_options_operation_int_float");
    if (key.arithType != ArithTypeDef::Int && !isFloat(key.arithType)) return {};
    const auto base = translate(isFloat(key.arithType) ? "roofline_options_operation_float"
                                                       : "roofline_options_operation_int");
    return key.width == 0 ? base : fmt::format("{} {}", base, key.width);
}

std::string dataSizeText(const OperationKey& key) {
    if (isFloat(key.arithType) && key.width == 64) return translate("roofline_summary_inst_dp");
    if (isFloat(key.arithType) && key.width == 32) return translate("roofline_summary_inst_sp");
    return fmt::to_string(key.width);
}

rabbit::object makeCount(double count, rabbit::Allocator& allocator) {
    constexpr int kDigits = 0;
    rabbit::object result(allocator);
    result.append("value", count);
    result.append("type", "f");
    result.append("digits", kDigits);
    return result;
}

rabbit::object makeInstruction(const OperationKey& key, const OperationValue& value,
                               rabbit::Allocator& allocator) {
    rabbit::object dataType(allocator);
    dataType.append("id", static_cast<std::uint32_t>(key.arithType));
    dataType.append("title", dataTypeTitle(key));
    rabbit::object dataSize(allocator);
    dataSize.append("value", key.width);
    dataSize.append("formattedValue", dataSizeText(key));
    rabbit::object instruction(allocator);
    instruction.append("instruction", instructionName(key.instructionType));
    instruction.append("dataType", std::move(dataType));
    instruction.append("dataSize", std::move(dataSize));
    instruction.append("instructionCount", makeCount(value.instructionCount, allocator));
    instruction.append("operationCount", makeCount(value.operationCount, allocator));
    return instruction;
}

// Whether operations were counted, told by the first entry with instructions: a run without them still counts
// instructions.
bool isEnabled(const OperationMap& operations) {
    const auto first = std::find_if(operations.begin(), operations.end(),
                                    [](const auto& entry) { return entry.second.instructionCount != 0.0; });
    return first == operations.end() || first->second.operationCount > 0.0;
}

}  // namespace

void dumpInstructionMixSummary(rabbit::object& object,
                               const std::shared_ptr<const OperationMap>& operationMap) {
    if (!operationMap) return;
    rabbit::Allocator& allocator = object.allocator();
    std::map<std::string, rabbit::array> groups;
    for (const auto& [key, value] : *operationMap)
        groups.try_emplace(gpu_roofline_helpers::getInstructionType(key.instructionType), allocator)
            .first->second.push(makeInstruction(key, value, allocator));

    const bool enabled = isEnabled(*operationMap);
    rabbit::array mix(allocator);
    for (auto& [name, instructions] : groups) {
        rabbit::object group(allocator);
        group.append("name", translate("roofline_summary_inst_" + name));
        group.append("showDataType", name == "compute");
        group.append("enableInstructionMix", enabled);
        group.append("instructions", std::move(instructions));
        mix.push(std::move(group));
    }
    object.append("instructionMix", std::move(mix));
}

}  // namespace data_models2::roofline::summary
