// The machine's roofs as JSON.
#pragma once

#include "host_interfaces/model.h"
#include "host_interfaces/records.h"

#include "roofline_model/rabbit.h"

#include <functional>

namespace data_models2::roofline {

// One object a roof, in the table's order.
void fillRoofs(rabbit::array& array, generic_iterator_t<RoofItem> roofs, TargetDeviceType device);

// The roofs of each thread set-up that a chart can offer: all packages and one, both strategies, threads 1,
// 2, 4, 6 and so on. `fill` writes the roofs of one set-up.
using FillRoofs = std::function<void(rabbit::array&, const RoofThreadingFeatures&)>;
void fillAllRoofs(rabbit::array& array, const ThreadsInfo& info, const FillRoofs& fill);

}  // namespace data_models2::roofline
