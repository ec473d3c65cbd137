// Finds the candidate pairs: every pair of rows that may take part, scored by the indicators that agree.
#pragma once

#include "results_comparer/algorithms.h"
#include "results_comparer/configurations.h"

#include <memory>

namespace data_models2::results_comparer_algs {

class CComparisonAlgorithm final : public IComparisonAlgorithm {
public:
    explicit CComparisonAlgorithm(std::shared_ptr<IComparisonConfiguration> configuration)
        : m_configuration(std::move(configuration)) {}

    // A score is the weight that agrees in percent of the weight that can judge. True also when no pair
    // reaches the threshold. Pairs are appended row by row.
    bool run(std::shared_ptr<ISurveyingViewModel> first, std::shared_ptr<ISurveyingViewModel> second,
             DataType dataType, double threshold, std::vector<RowMatchInfo>& matches,
             IProgress* progress) const override;

private:
    const std::shared_ptr<IComparisonConfiguration> m_configuration;
};

}  // namespace data_models2::results_comparer_algs
