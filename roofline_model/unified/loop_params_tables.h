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

// The axes' names and units, of both kinds of operations together where there are such charts, and behind
// them the captions of the values.
RooflineProperties axisProperties(bool hasMixed, const RooflineProperties& captions);

const ChartTables& getCpuTables();
const ChartTables& getGpuTables();
const ChartTables& getOffloadTables();

}  // namespace data_models2
