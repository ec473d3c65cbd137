// What the kinds of comparison look at: the lists of checks and indicators.
#pragma once

#include "results_comparer/checks.h"
#include "results_comparer/match_indicator.h"

#include <memory>
#include <vector>

namespace data_models2::results_comparer_algs {

enum class ComparableReportType : int {
    Default = 0,
    Roofline = 1,  // only rows with operations; no effect on GPU results
};

class IComparisonConfiguration {
public:
    virtual ~IComparisonConfiguration() = default;
    virtual std::vector<std::shared_ptr<IEligibilityCheck>> getEligibilityChecks(bool isGpu) const = 0;
    virtual std::vector<std::shared_ptr<IComparabilityCheck>> getComparabilityChecks(bool isGpu) const = 0;
    // Empty when a view model is null or has no dataset of the kind that the indicators read.
    virtual std::vector<std::shared_ptr<IMatchIndicator>> getMatchIndicators(
        std::shared_ptr<ISurveyingViewModel> first, std::shared_ptr<ISurveyingViewModel> second,
        bool isGpu) const = 0;
};

class DefaultConfiguration : public IComparisonConfiguration {
public:
    std::vector<std::shared_ptr<IEligibilityCheck>> getEligibilityChecks(bool isGpu) const override;
    std::vector<std::shared_ptr<IComparabilityCheck>> getComparabilityChecks(bool isGpu) const override;
    std::vector<std::shared_ptr<IMatchIndicator>> getMatchIndicators(
        std::shared_ptr<ISurveyingViewModel> first, std::shared_ptr<ISurveyingViewModel> second,
        bool isGpu) const override;

    std::vector<std::shared_ptr<IMatchIndicator>> getCPUMatchIndicators(
        std::shared_ptr<ISurveyingViewModel> first, std::shared_ptr<ISurveyingViewModel> second) const;
    std::vector<std::shared_ptr<IMatchIndicator>> getGPUMatchIndicators(
        std::shared_ptr<ISurveyingViewModel> first, std::shared_ptr<ISurveyingViewModel> second) const;
};

// Of a name with the record of a chart's options in another namespace: never open both.
class RooflineConfiguration final : public DefaultConfiguration {
public:
    std::vector<std::shared_ptr<IEligibilityCheck>> getEligibilityChecks(bool isGpu) const override;
};

// Every type but Roofline gets the default one.
std::shared_ptr<IComparisonConfiguration> getComparisonConfig(ComparableReportType type);

}  // namespace data_models2::results_comparer_algs
