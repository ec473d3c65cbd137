// The tables of computing devices. 31 parameters: 5 for every chart, the performance by operations, the
// intensities by level and operations, traffic and bandwidth by level.
#include "roofline_model/unified/gpu_levels.h"
#include "roofline_model/unified/loop_params_tables.h"

#include <cstdint>

namespace data_models2 {

namespace {

using namespace param_type;

struct Operations {
    const char* type;
    FieldId performance;
    FieldId count;
};

constexpr auto kOperations = std::to_array<Operations>({
    {"f", FieldId::SelfGFlops, FieldId::SelfFloatOps},
    {"i", FieldId::SelfGIntOps, FieldId::SelfIntOps},
});

ValueGetter bandwidthOf(const GpuLevel& level) {
    return level.bandwidth == FieldId::None ? divGetter(level.traffic, FieldId::GpuElapsedTime)
                                            : defGetter(level.bandwidth);
}

LoopParams makeParams() {
    LoopParams table;
    const RooflineTypes any{""};
    const auto location =
        joinGetter({defGetter(FieldId::SourceLocation), defGetter(FieldId::SourceLine)}, ':');
    table.emplace_back("name", defGetter(FieldId::FunctionName), any, 0);
    table.emplace_back("locat", location, any, 0);
    // A kernel always counts as vectorised. Unsigned: records leave out signed numbers.
    table.emplace_back("vec", fakeGetter(std::uint32_t{1}), any, 0);
    table.emplace_back("selfElapsedTime", defGetter(FieldId::GpuElapsedTime), any, 0);
    table.emplace_back("key", defGetter(FieldId::RowKey), any, 0);
    for (const auto& each : kOperations)
        table.emplace_back("y", log10Getter(defGetter(each.performance)), RooflineTypes{each.type},
                           kNecessary);
    for (const auto& each : kOperations)
        for (const auto& level : kGpuLevels)
            table.emplace_back("x", log10Getter(divGetter(each.count, level.traffic)),
                               RooflineTypes{level.name, each.type}, kNecessary);
    for (const auto& level : kGpuLevels)
        table.emplace_back("selfMem", defGetter(level.traffic), RooflineTypes{level.name}, 0);
    for (const auto& level : kGpuLevels)
        table.emplace_back("effectiveBand", bandwidthOf(level), RooflineTypes{level.name}, 0);
    return table;
}

RooflineProperties makeProperties() {
    return axisProperties(false, {{"namePref", "roofline_value_prefix", {""}}});
}

RooflineAttributes makeAttributes() {
    return {
        {"selfElapsedTime", "roofline_self_elapsed_time", "roofline_time_sec", false, {""}},
        {"selfMem", "roofline_self_traffic", "roofline_memory_gb", true, {""}},
        {"effectiveBand", "roofline_effective_bw", "roofline_mem_roof_measure", true, {""}},
    };
}

}  // namespace

const ChartTables& getGpuTables() {
    // Each thread has its own, since a pass binds the getters to its dataset.
    static thread_local const ChartTables tables{makeParams(), makeProperties(), makeAttributes()};
    return tables;
}

}  // namespace data_models2
