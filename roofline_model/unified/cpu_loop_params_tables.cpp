// The CPU tables. 195 parameters: 11 for every chart, 18 coordinates without a level, the address, traffic
// and intensities by level and kind of traffic.
#include "roofline_model/unified/loop_params_tables.h"

#include <array>

namespace data_models2 {

namespace {

using namespace param_type;

constexpr int kPoint = kLog10 | kNecessary;

struct Level {
    const char* name;
    FieldId selfLoad;
    FieldId selfStore;
    FieldId totalLoad;
    FieldId totalStore;
};

constexpr auto kLevels = std::to_array<Level>({
    {"L1", FieldId::SelfL1Load, FieldId::SelfL1Store, FieldId::TotalL1Load, FieldId::TotalL1Store},
    {"L2", FieldId::SelfL2Load, FieldId::SelfL2Store, FieldId::TotalL2Load, FieldId::TotalL2Store},
    {"L3", FieldId::SelfL3Load, FieldId::SelfL3Store, FieldId::TotalL3Load, FieldId::TotalL3Store},
    {"L4", FieldId::SelfL4Load, FieldId::SelfL4Store, FieldId::TotalL4Load, FieldId::TotalL4Store},
    {"DRAM", FieldId::SelfDramLoad, FieldId::SelfDramStore, FieldId::TotalDramLoad, FieldId::TotalDramStore},
});

// A coordinate without a level; `total` coordinates exist for total data only.
struct Coordinate {
    const char* operations;
    const char* data;
    const char* name;
    FieldId field;
    int type;
};

constexpr auto kCoordinates = std::to_array<Coordinate>({
    {"f", "1", "y", FieldId::SelfGFlops, kPoint},
    {"f", "1", "x", FieldId::SelfFloatAi, kPoint},
    {"i", "1", "y", FieldId::SelfGIntOps, kPoint},
    {"i", "1", "x", FieldId::SelfIntAi, kPoint},
    {"b", "1", "y", FieldId::SelfGMixedOps, kPoint},
    {"b", "1", "x", FieldId::SelfMixedAi, kPoint},
    // With total data a row may lack self data and stay on the chart.
    {"f", "0", "y1", FieldId::TotalGFlops, kPoint},
    {"f", "0", "x1", FieldId::TotalFloatAi, kPoint},
    {"f", "0", "y", FieldId::SelfGFlops, kLog10},
    {"f", "0", "x", FieldId::SelfFloatAi, kLog10},
    {"i", "0", "y1", FieldId::TotalGIntOps, kPoint},
    {"i", "0", "x1", FieldId::TotalIntAi, kPoint},
    {"i", "0", "y", FieldId::SelfGIntOps, kLog10},
    {"i", "0", "x", FieldId::SelfIntAi, kLog10},
    {"b", "0", "y1", FieldId::TotalGMixedOps, kPoint},
    {"b", "0", "x1", FieldId::TotalMixedAi, kPoint},
    {"b", "0", "y", FieldId::SelfGMixedOps, kLog10},
    {"b", "0", "x", FieldId::SelfMixedAi, kLog10},
});

// An intensity by level: `operations` over the level's self or total traffic.
struct Intensity {
    const char* name;
    const char* operations;
    const char* data;
    FieldId field;
    bool isTotal;
    int type;
};

constexpr auto kIntensities = std::to_array<Intensity>({
    {"x", "f", "1", FieldId::SelfFloatOps, false, kPoint},
    {"x", "i", "1", FieldId::SelfIntOps, false, kPoint},
    {"x", "b", "1", FieldId::SelfMixedOps, false, kPoint},
    {"x", "f", "0", FieldId::SelfFloatOps, false, kLog10},
    {"x1", "f", "0", FieldId::TotalFloatOps, true, kPoint},
    {"x", "i", "0", FieldId::SelfIntOps, false, kLog10},
    {"x1", "i", "0", FieldId::TotalIntOps, true, kPoint},
    {"x", "b", "0", FieldId::SelfMixedOps, false, kLog10},
    {"x1", "b", "0", FieldId::TotalMixedOps, true, kPoint},
});

void addCommon(LoopParams& table) {
    const RooflineTypes any{""};
    const auto type =
        joinGetter({defGetter(FieldId::LoopType), defGetter(FieldId::TypeDetail),
                    translateGetter("roofline_vectorization_types", defGetter(FieldId::DataTypes))},
                   ' ');
    table.emplace_back("name", defGetter(FieldId::FunctionName), any, kClean);
    table.emplace_back("locat", defGetter(FieldId::Location), any, 0);
    table.emplace_back("type", type, any, 0);
    table.emplace_back("vec", defGetter(FieldId::Vectorized), any, kNumeric);
    table.emplace_back("selfElapsedTime", defGetter(FieldId::SelfElapsedTime), any, kNumeric);
    table.emplace_back("selfTime", defGetter(FieldId::SelfTime), any, kNumeric);
    table.emplace_back("key", defGetter(FieldId::RowKey), any, 0);
    table.emplace_back("totalTime", defGetter(FieldId::TotalTime), any, kNumeric);
    table.emplace_back("totalElapsedTime", defGetter(FieldId::TotalElapsedTime), any, kNumeric);
    table.emplace_back("selfMem", defGetter(FieldId::SelfMemL1), any, kNumeric);
    table.emplace_back("totalMem", defGetter(FieldId::TotalMem), any, kNumeric);
}

void addCoordinates(LoopParams& table) {
    for (const auto& point : kCoordinates)
        table.emplace_back(point.name, defGetter(point.field), RooflineTypes{point.operations, point.data},
                           point.type);
}

void addTraffic(LoopParams& table, const char* name, bool isTotal) {
    for (const auto& level : kLevels) {
        const FieldId load = isTotal ? level.totalLoad : level.selfLoad;
        const FieldId store = isTotal ? level.totalStore : level.selfStore;
        // Deliberate: the total traffic of L3 takes its stores from L1; charts rely on the value as it is.
        // The intensity at L3 isn't touched by it.
        const FieldId storeOfAll = store == FieldId::TotalL3Store ? FieldId::TotalL1Store : store;
        table.emplace_back(name, defGetter(load), RooflineTypes{level.name, "load"}, kNumeric);
        table.emplace_back(name, defGetter(store), RooflineTypes{level.name, "store"}, kNumeric);
        table.emplace_back(name, sumGetter(load, storeOfAll), RooflineTypes{level.name, "all"}, kNumeric);
    }
}

void addIntensities(LoopParams& table, const Intensity& row) {
    for (const auto& level : kLevels) {
        const FieldId load = row.isTotal ? level.totalLoad : level.selfLoad;
        const FieldId store = row.isTotal ? level.totalStore : level.selfStore;
        const auto add = [&](const char* traffic, const ValueGetter& getter) {
            table.emplace_back(row.name, getter, RooflineTypes{row.operations, row.data, level.name, traffic},
                               row.type);
        };
        add("load", divGetter(row.field, load));
        add("store", divGetter(row.field, store));
        add("all", divGetter(row.field, sumGetter(load, store)));
    }
}

LoopParams makeParams() {
    LoopParams table;
    addCommon(table);
    addCoordinates(table);
    table.emplace_back("rva", defGetter(FieldId::Rva), RooflineTypes{"0"}, 0);
    addTraffic(table, "selfMem", false);
    addTraffic(table, "totalMem", true);
    // Behind the coordinates without a level: a later value of a key overwrites an earlier one.
    for (const auto& row : kIntensities) addIntensities(table, row);
    return table;
}

RooflineProperties makeProperties() {
    return axisProperties(
        true, {{"namePref", "roofline_value_prefix", {"0"}}, {"namePref1", "roofline_value_prefix1", {"0"}}});
}

RooflineAttributes makeAttributes() {
    return {
        {"selfElapsedTime", "roofline_self_elapsed_time", "roofline_time_sec", false, {""}},
        {"selfTime", "roofline_self_time", "roofline_time_sec", false, {""}},
        {"totalElapsedTime", "roofline_total_elapsed_time", "roofline_time_sec", false, {""}},
        {"totalTime", "roofline_total_time", "roofline_time_sec", false, {""}},
        {"selfMem", "roofline_self_traffic", "roofline_memory_gb", false, {""}},
        {"totalMem", "roofline_total_traffic", "roofline_memory_gb", false, {""}},
    };
}

}  // namespace

const ChartTables& getCpuTables() {
    // A pass binds the getters to its dataset: each thread has its own, so that engines on several threads
    // don't meet.
    static thread_local const ChartTables tables{makeParams(), makeProperties(), makeAttributes()};
    return tables;
}

}  // namespace data_models2
