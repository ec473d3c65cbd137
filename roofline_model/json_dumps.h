// One row's roofline as JSON members, named like the members of its property bags.
#pragma once

#include "roofline_model/rabbit.h"
#include "roofline_model/row_roofline_engine.h"

#include <cstdint>
#include <memory>
#include <string>

namespace data_models2::roofline::json_dump {

// What all values of a summary have in common, ready for display.
struct DumpMetricInfo {
    std::string key;
    std::string caption;
    std::string measure;
    std::string description;
    std::string details;
    std::int32_t order = -1;
};

void dumpMetricInfo(rabbit::object& object, const DumpMetricInfo& info);

// Each adds nothing for a null or invalid engine.
using Engine = std::shared_ptr<const CRowRooflineEngine>;
// The row's small chart.
void dumpSingleRoofline(rabbit::object& object, const Engine& engine);
// Its tables by memory level, when it has any.
void dumpMemoryMetrics(rabbit::object& object, const Engine& engine);
void dumpRooflineConclusions(rabbit::object& object, const Engine& engine);

}  // namespace data_models2::roofline::json_dump
