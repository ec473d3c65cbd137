// What a valid row's engine tells, as widgets: the source of its bags and of its JSON text.
#pragma once

#include "roofline_model/chart_widgets.h"
#include "roofline_model/row_roofline_engine.h"

#include <optional>

namespace data_models2::roofline::helpers {

// The row's small chart; none when the row isn't valid or has no compute roof of its type. The bottleneck is
// in it when there are memory-level metrics.
std::optional<RooflineWidget> makeRooflineWidget(const CRowRooflineEngine& engine);
// Time and traffic by memory level; none when the row isn't valid or has no such tables.
std::optional<MemoryMetricWidget> makeMemoryMetricWidget(const CRowRooflineEngine& engine);

}  // namespace data_models2::roofline::helpers
