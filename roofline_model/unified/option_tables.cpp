#include "roofline_model/unified/option_tables.h"

#include "roofline_model/roof_names.h"
#include "roofline_model/translation.h"
#include "roofline_model/unified/gpu_levels.h"
#include "roofline_model/unified/offload_levels.h"

#include <algorithm>
#include <array>

namespace data_models2 {

namespace {

struct Value {
    const char* value;
    const char* caption;
    const char* expl = "";
};

constexpr auto kOperations = std::to_array<Value>({
    {"f", "roofline_options_operation_float"},
    {"i", "roofline_options_operation_int"},
    {"b", "roofline_options_operation_int_float"},
});
constexpr std::array<Value, 2> kGpuOperations{kOperations[0], kOperations[1]};  // never mixed

// "0" is stacks on, "1" is stacks off.
constexpr auto kStacks = std::to_array<Value>({
    {"0", "roofline_options_stacks_on", "roofline_with_callstacks_expl"},
    {"1", "roofline_options_stacks_off"},
});

constexpr auto kMemoryOperations = std::to_array<Value>({
    {"load", "roofline_options_memop_load"},
    {"store", "roofline_options_memop_store"},
    {"all", "roofline_options_memop_load_store"},
});

constexpr std::array<const char*, 4> kCaches{"L1", "L2", "L3", "L4"};

// Strategies hold nothing: groups of one strategy share the object, which is made at the first need.
template <class Strategy, std::size_t N>
COptionGroup makeGroup(const char* caption, const std::array<Value, N>& values,
                       const RooflineTypes& defaults) {
    static const Strategy kStrategy;
    COptionGroup result(kStrategy, caption, false);
    for (const auto& value : values) result.addOptionValue({value.caption, value.value, value.expl});
    result.setDefRooflineTypes(defaults);
    return result;
}

COptionGroup makeLevelGroup() {
    static const CCertainValueOptionsStrategy kStrategy;
    return {kStrategy, "roofline_options_mem_levels", true};
}

void addLevel(COptionGroup& group, const std::string& level, const char* expl) {
    group.addOptionValue({roofline::helpers::getMemLevelCaption(level), level, expl});
}

COptionGroup makeCpuLevelGroup(int memoryLevelsCount) {
    auto result = makeLevelGroup();
    const auto caches = std::min(kCaches.size(), static_cast<std::size_t>(memoryLevelsCount) - 1);
    std::for_each_n(kCaches.begin(), caches, [&](const char* level) { addLevel(result, level, ""); });
    addLevel(result, "DRAM", "");
    return result;
}

// `find`: the record of a level by its name; null when nothing is known of it.
template <class Find>
COptionGroup makeDeviceLevelGroup(const std::vector<std::string>& levels, Find&& find) {
    auto result = makeLevelGroup();
    for (const auto& name : levels)
        if (const auto* const level = find(name)) addLevel(result, name, level->explanation);
    result.setDefRooflineTypes({levels.back()});
    return result;
}

const char* configurationCaption(bool isFloat, bool hasLevels) {
    if (hasLevels)
        return isFloat ? "roofline_options_def_config_integrated_caption"
                       : "roofline_options_def_int_config_integrated_caption";
    return isFloat ? "roofline_options_def_config_caption" : "roofline_options_def_int_config_caption";
}

}  // namespace

std::shared_ptr<CRooflineOptions> initRooflineOptions(
    int memoryLevelsCount, const std::shared_ptr<const CMemoryLevelMetrics>& metrics) {
    const auto defaultType = static_cast<OperationsType>(roofline::checkDefaultFloatType(metrics, "L1"));
    const bool hasLevels = memoryLevelsCount > 1;

    auto options = std::make_shared<CRooflineOptions>();
    options->addOptionGroup(
        makeGroup<CRadioOptionsStrategy>("roofline_options_operations_caption", kOperations,
                                         {roofline::getRooflineTypeFromOpsType(defaultType)}));
    options->addOptionGroup(
        makeGroup<CTwoStatesOptionsStrategy>("roofline_options_stacks_caption", kStacks, {"1"}));
    options->setDefConfigurationCaption(
        roofline::translate(configurationCaption(defaultType == OperationsType::Float, hasLevels)));
    if (!hasLevels) return options;
    options->addOptionGroup(makeCpuLevelGroup(memoryLevelsCount));
    options->addOptionGroup(
        makeGroup<CRadioOptionsStrategy>("roofline_options_mem_operation_type", kMemoryOperations, {"all"}));
    return options;
}

std::shared_ptr<CRooflineOptions> initRooflineOptions(
    const std::shared_ptr<const CMemoryLevelMetrics>& metrics, const GpuDeviceProperties& device) {
    const auto levels = getGpuMemoryLevels(device);
    const auto type = roofline::getDominatingType(metrics);
    auto options = std::make_shared<CRooflineOptions>();
    options->addOptionGroup(makeDeviceLevelGroup(levels, findGpuLevel));
    options->insertOptionGroup(
        0, makeGroup<CRadioOptionsStrategy>("roofline_options_operations_caption", kGpuOperations,
                                            {roofline::getRooflineTypeFromOpsType(type)}));
    const auto& operations = kGpuOperations[type == OperationsType::Float ? 0 : 1];
    options->setDefConfigurationCaption(roofline::translate(
        "roofline_options_def_config_integrated_gpu_caption", roofline::translate(operations.caption),
        roofline::helpers::getMemLevelCaption(levels.back())));
    return options;
}

std::shared_ptr<CRooflineOptions> initOffloadRooflineOptions(const std::string& targetLevel) {
    const auto find = [](const std::string& name) { return findOffloadLevel(name); };
    auto options = std::make_shared<CRooflineOptions>();
    options->addOptionGroup(makeDeviceLevelGroup(getOffloadMemoryLevels(targetLevel), find));
    options->insertOptionGroup(
        0, makeGroup<CRadioOptionsStrategy>("roofline_options_operations_caption", kOperations,
                                            {roofline::getRooflineTypeFromOpsType(OperationsType::Float)}));
    return options;
}

}  // namespace data_models2
