// The steps of a comparison: scoring candidate pairs, then choosing among them.
#pragma once

#include "host_interfaces/comparison.h"
#include "host_interfaces/progress.h"

#include <memory>
#include <vector>

namespace data_models2::results_comparer_algs {

class IComparisonAlgorithm {
public:
    virtual ~IComparisonAlgorithm() = default;
    // Appends the pairs that score at least `threshold` percent. False when a view model or dataset is
    // missing, no row may take part, or `progress` (may be null) was cancelled. What was appended by then
    // stays; it may be nothing for the first half of the work, in which candidates are only counted.
    virtual bool run(std::shared_ptr<ISurveyingViewModel> first, std::shared_ptr<ISurveyingViewModel> second,
                     DataType dataType, double threshold, std::vector<RowMatchInfo>& matches,
                     IProgress* progress) const = 0;
};

class IFilterAlgorithm {
public:
    virtual ~IFilterAlgorithm() = default;
    // Reduces the candidates to pairs in which each row stands at most once. False when there is none or
    // `progress` (may be null) was cancelled.
    virtual bool run(std::vector<RowMatchInfo>& matches, IProgress* progress) const = 0;
};

}  // namespace data_models2::results_comparer_algs
