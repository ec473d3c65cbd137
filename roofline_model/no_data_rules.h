// Why a chart has nothing to show.
#pragma once

#include "host_interfaces/model.h"

#include "roofline_model/rabbit.h"
#include "roofline_model/unified/configurations.h"

#include <string>

namespace data_models2 {

// What a walk over the rows told.
struct RowStatistics {
    double programOps = 0.0;  // of the rows that the walk saw
    double chartOps = 0.0;    // of the rows on the chart, once a record
    double rowTime = 0.0;     // of the last row with operations
    bool libraryRowSeen = false;
};

// "noDataMessage": title and description, the translated texts of two ids.
void addNoDataMessage(rabbit::object& object, const std::string& titleKey, const std::string& descrKey);

// The message of the first rule that holds. `memoryData` is true for self data.
void addNoDataMessage(rabbit::object& object, const sptr_t<IDataset>& dataset, bool memoryData,
                      const RooflineConfiguration& configuration, const RowStatistics& rows);

}  // namespace data_models2
