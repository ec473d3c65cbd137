// What the tables of all kinds say alike.
#include "roofline_model/unified/loop_params_tables.h"

namespace data_models2 {

RooflineProperties axisProperties(bool hasMixed, const RooflineProperties& captions) {
    RooflineProperties properties{
        {"nameX", "roofline_ai_axis_caption", {""}},
        {"nameY", "roofline_perf_axis_caption", {""}},
        {"measureX", "roofline_ai_axis_measure", {"f"}},
        {"measureY", "roofline_perf_axis_measure", {"f"}},
        {"measureX", "roofline_ai_axis_measure_int", {"i"}},
        {"measureY", "roofline_perf_axis_measure_int", {"i"}},
    };
    if (hasMixed) {
        properties.emplace_back("measureX", "roofline_ai_axis_measure_int_float", RooflineTypes{"b"});
        properties.emplace_back("measureY", "roofline_perf_axis_measure_int_float", RooflineTypes{"b"});
    }
    properties.insert(properties.end(), captions.begin(), captions.end());
    return properties;
}

}  // namespace data_models2
