// The tables of projections. 53 parameters: 5 for every chart, the performance by operations, the intensities
// by operations and level, traffic and bandwidth by level.
#include "roofline_model/unified/loop_params_tables.h"
#include "roofline_model/unified/offload_levels.h"

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
    {"f", FieldId::TotalGFlops, FieldId::TotalFloatOps},
    {"i", FieldId::TotalGIntOps, FieldId::TotalIntOps},
    {"b", FieldId::TotalGMixedOps, FieldId::TotalMixedOps},
});

LoopParams makeParams() {
    LoopParams table;
    const RooflineTypes any{""};
    const auto location =
        joinGetter({defGetter(FieldId::OffloadSourceLocation), defGetter(FieldId::SourceLine)}, ':');
    table.emplace_back("name", defGetter(FieldId::FunctionName), any, 0);
    table.emplace_back("locat", location, any, 0);
    // A region on a target always counts as vectorised. Unsigned: records leave out signed numbers.
    table.emplace_back("vec", fakeGetter(std::uint32_t{1}), any, 0);
    table.emplace_back("selfElapsedTime", defGetter(FieldId::OffloadElapsedTime), any, 0);
    table.emplace_back("key", defGetter(FieldId::RowKey), any, 0);
    for (const auto& each : kOperations)
        table.emplace_back("y", log10Getter(defGetter(each.performance)), RooflineTypes{each.type},
                           kNecessary);
    for (const auto& each : kOperations)
        for (const auto& level : kOffloadChartLevels)
            table.emplace_back("x", log10Getter(divGetter(each.count, gigabytesGetter(level.traffic))),
                               RooflineTypes{level.name, each.type}, kNecessary);
    for (const auto& level : kOffloadChartLevels)
        table.emplace_back("selfMem", gigabytesGetter(level.traffic), RooflineTypes{level.name}, 0);
    for (const auto& level : kOffloadChartLevels)
        table.emplace_back("effectiveBand", gigabytesGetter(level.bandwidth), RooflineTypes{level.name}, 0);
    return table;
}

RooflineProperties makeProperties() {
    return axisProperties(true, {{"namePref1", "roofline_value_prefix1", {""}}});
}

// Deliberate: the keys say self, the captions total; a region includes what it calls.
RooflineAttributes makeAttributes() {
    return {
        {"selfElapsedTime", "roofline_total_elapsed_time", "roofline_time_sec", false, {""}},
        {"selfMem", "roofline_total_traffic", "roofline_memory_gb", true, {""}},
        {"effectiveBand", "roofline_effective_bw", "roofline_mem_roof_measure", true, {""}},
    };
}

}  // namespace

const ChartTables& getOffloadTables() {
    // Each thread has its own, since a pass binds the getters to its dataset.
    static thread_local const ChartTables tables{makeParams(), makeProperties(), makeAttributes()};
    return tables;
}

}  // namespace data_models2
