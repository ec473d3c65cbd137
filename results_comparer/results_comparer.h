// The comparer: candidates first, then the choice among them.
#pragma once

#include "results_comparer/algorithms.h"
#include "results_comparer/configurations.h"
#include "results_comparer/factories.h"

#include <memory>

namespace data_models2 {

class CResultsComparer final : public IResultsComparer {
public:
    explicit CResultsComparer(results_comparer_algs::ComparableReportType type);

    bool compare(ComparisonData& data, IProgress* progress) const override;
    bool compare(ComparisonData& data, double threshold, IProgress* progress) const override;

private:
    std::shared_ptr<results_comparer_algs::IComparisonAlgorithm> m_comparison;
    std::shared_ptr<results_comparer_algs::IFilterAlgorithm> m_filter;
};

}  // namespace data_models2
