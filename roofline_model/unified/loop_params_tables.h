// The tables of loop parameters, properties and attributes, one set a kind of analysis. Each is built at
// first use and lives for the thread.
#pragma once

#include "roofline_model/unified/loop_params.h"

namespace data_models2 {

struct ChartTables {
    LoopParams params;
    RooflineProperties properties;
    RooflineAttributes attributes;
};

const ChartTables& getCpuTables();
const ChartTables& getGpuTables();
const ChartTables& getOffloadTables();

}  // namespace data_models2
