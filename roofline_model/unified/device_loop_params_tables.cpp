// The tables of computing devices and of projections on them: 5 parameters for every chart, the performance
// by operations, the intensities by operations and level, traffic and bandwidth by level. In all 31 of a
// device, 53 of a projection.
#include "roofline_model/unified/gpu_levels.h"
#include "roofline_model/unified/loop_params_tables.h"
#include "roofline_model/unified/offload_levels.h"

#include <cstdint>
#include <span>

namespace data_models2 {

namespace {

using namespace param_type;

struct Operations {
    const char* type;
    FieldId performance;
    FieldId count;
};

constexpr auto kGpuOperations = std::to_array<Operations>({
    {"f", FieldId::SelfGFlops, FieldId::SelfFloatOps},
    {"i", FieldId::SelfGIntOps, FieldId::SelfIntOps},
});

constexpr auto kOffloadOperations = std::to_array<Operations>({
    {"f", FieldId::TotalGFlops, FieldId::TotalFloatOps},
    {"i", FieldId::TotalGIntOps, FieldId::TotalIntOps},
    {"b", FieldId::TotalGMixedOps, FieldId::TotalMixedOps},
});

ValueGetter trafficOf(const GpuLevel& level) { return defGetter(level.traffic); }
ValueGetter trafficOf(const OffloadLevel& level) { return gigabytesGetter(level.traffic); }

ValueGetter bandwidthOf(const GpuLevel& level) {
    return level.bandwidth == FieldId::None ? divGetter(level.traffic, FieldId::GpuElapsedTime)
                                            : defGetter(level.bandwidth);
}
ValueGetter bandwidthOf(const OffloadLevel& level) { return gigabytesGetter(level.bandwidth); }

template <class Level>
LoopParams makeParams(FieldId sourceFile, FieldId elapsedTime, std::span<const Operations> operations,
                      std::span<const Level> levels) {
    LoopParams table;
    const RooflineTypes any{""};
    table.emplace_back("name", defGetter(FieldId::FunctionName), any, 0);
    table.emplace_back("locat", joinGetter({defGetter(sourceFile), defGetter(FieldId::SourceLine)}, ':'), any,
                       0);
    // What runs on a device always counts as vectorised. Unsigned: records leave out signed numbers.
    table.emplace_back("vec", fakeGetter(std::uint32_t{1}), any, 0);
    table.emplace_back("selfElapsedTime", defGetter(elapsedTime), any, 0);
    table.emplace_back("key", defGetter(FieldId::RowKey), any, 0);
    for (const auto& each : operations)
        table.emplace_back("y", log10Getter(defGetter(each.performance)), RooflineTypes{each.type},
                           kNecessary);
    for (const auto& each : operations)
        for (const auto& level : levels)
            table.emplace_back("x", log10Getter(divGetter(each.count, trafficOf(level))),
                               RooflineTypes{level.name, each.type}, kNecessary);
    for (const auto& level : levels)
        table.emplace_back("selfMem", trafficOf(level), RooflineTypes{level.name}, 0);
    for (const auto& level : levels)
        table.emplace_back("effectiveBand", bandwidthOf(level), RooflineTypes{level.name}, 0);
    return table;
}

RooflineAttributes makeAttributes(const char* timeCaption, const char* trafficCaption) {
    return {
        {"selfElapsedTime", timeCaption, "roofline_time_sec", false, {""}},
        {"selfMem", trafficCaption, "roofline_memory_gb", true, {""}},
        {"effectiveBand", "roofline_effective_bw", "roofline_mem_roof_measure", true, {""}},
    };
}

}  // namespace

// Each thread has tables of its own, since a pass binds the getters to its dataset.
const ChartTables& getGpuTables() {
    static thread_local const ChartTables tables{
        makeParams<GpuLevel>(FieldId::SourceLocation, FieldId::GpuElapsedTime, kGpuOperations, kGpuLevels),
        axisProperties(false, {{"namePref", "roofline_value_prefix", {""}}}),
        makeAttributes("roofline_self_elapsed_time", "roofline_self_traffic")};
    return tables;
}

const ChartTables& getOffloadTables() {
    static thread_local const ChartTables tables{
        makeParams<OffloadLevel>(FieldId::OffloadSourceLocation, FieldId::OffloadElapsedTime,
                                 kOffloadOperations, kOffloadChartLevels),
        axisProperties(true, {{"namePref1", "roofline_value_prefix1", {""}}}),
        // Deliberate: the keys say self, the captions total; a region includes what it calls.
        makeAttributes("roofline_total_elapsed_time", "roofline_total_traffic")};
    return tables;
}

}  // namespace data_models2
