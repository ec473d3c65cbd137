// The range that all charts of a result need, so that they keep one scale.
#pragma once

#include "roofline_model/unified/loop_params.h"
#include "roofline_model/unified/view_rect.h"

#include <memory>

namespace data_models2 {

// Extends `rect` by the points of every row under every configuration that a chart of the CPU can show: each
// type of operations with self data, with each memory level and kind of traffic that the options offer;
// `withTotals` adds total data. The walk goes on below rows without a point.
void calcViewRectImp(RooflineViewRect& rect, const sptr_t<IDataset>& dataset, const LoopParams& params,
                     const std::shared_ptr<const CRooflineOptions>& options, bool withTotals);

}  // namespace data_models2
