// Indicators for the computing tasks of a GPU.
#pragma once

#include "results_comparer/match_indicators.h"

namespace data_models2::results_comparer_algs::gpu_match_indicators {

// Weight 1: the same name before its arguments.
class FunctionNameMatch final : public AMatchIndicator, public Datasets {
public:
    using Datasets::Datasets;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

// Weight 1: as many instances.
class InstanceCountMatch final : public AMatchIndicator, public Datasets {
public:
    using Datasets::Datasets;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

}  // namespace data_models2::results_comparer_algs::gpu_match_indicators
