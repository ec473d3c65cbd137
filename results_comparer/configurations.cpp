#include "results_comparer/configurations.h"

#include "results_comparer/cpu_match_indicators.h"
#include "results_comparer/gpu_match_indicators.h"

#include <optional>

namespace data_models2::results_comparer_algs {
namespace {

using Model = std::shared_ptr<ISurveyingViewModel>;
using Indicators = std::vector<std::shared_ptr<IMatchIndicator>>;

// The datasets that indicators read, whatever is compared; nullopt when one is missing.
std::optional<Datasets> datasetsOf(const Model& first, const Model& second, DataType type) {
    if (!first || !second) return std::nullopt;
    Datasets datasets(first->getDataset(type), second->getDataset(type));
    if (!datasets.first || !datasets.second) return std::nullopt;
    return datasets;
}

}  // namespace

std::vector<std::shared_ptr<IEligibilityCheck>> DefaultConfiguration::getEligibilityChecks(bool isGpu) const {
    if (isGpu) return {std::make_shared<ExecutedLoop>()};
    return {std::make_shared<ExecutedLoop>(), std::make_shared<FuncIndexPresence>()};
}

std::vector<std::shared_ptr<IComparabilityCheck>> DefaultConfiguration::getComparabilityChecks(
    bool isGpu) const {
    if (isGpu) return {};
    return {std::make_shared<RowTypesComparability>()};
}

Indicators DefaultConfiguration::getMatchIndicators(Model first, Model second, bool isGpu) const {
    return isGpu ? getGPUMatchIndicators(std::move(first), std::move(second))
                 : getCPUMatchIndicators(std::move(first), std::move(second));
}

Indicators DefaultConfiguration::getCPUMatchIndicators(Model first, Model second) const {
    using namespace cpu_match_indicators;
    const auto datasets = datasetsOf(first, second, DataType::Cpu);
    if (!datasets) return {};
    const auto& [a, b] = *datasets;
    Indicators indicators{std::make_shared<NestingLevelsMatch>(a, b),
                          std::make_shared<MetricsMatch<long long>>(a, b, FieldId::ComparisonMetric, 1.0),
                          std::make_shared<MangledNamesMatch>(a, b),
                          std::make_shared<RowTypesMatch>(a, b),
                          std::make_shared<DataTypesMatch>(a, b),
                          std::make_shared<UnrolledChildPresenceMatch>(first, second),
                          std::make_shared<BUParentalPresenceMatch>(a, b),
                          std::make_shared<SourceFilesMatch>(a, b),
                          std::make_shared<SourceLinesMatch>(a, b)};
    const auto collected = first->getCollectedDataFlags() & second->getCollectedDataFlags();
    if (collected & collected_data::kTripCounts)
        indicators.push_back(std::make_shared<TripCountMediansMatch>(first, second));
    if (collected & collected_data::kCallCounts)
        indicators.push_back(std::make_shared<CallCountsMatch>(a, b));
    return indicators;
}

Indicators DefaultConfiguration::getGPUMatchIndicators(Model first, Model second) const {
    using namespace gpu_match_indicators;
    const auto datasets = datasetsOf(first, second, DataType::Gpu);
    if (!datasets) return {};
    const auto& [a, b] = *datasets;
    return {std::make_shared<FunctionNameMatch>(a, b), std::make_shared<InstanceCountMatch>(a, b),
            std::make_shared<SourceLinesMatch>(a, b), std::make_shared<SourceFilesMatch>(a, b)};
}

std::vector<std::shared_ptr<IEligibilityCheck>> RooflineConfiguration::getEligibilityChecks(
    bool isGpu) const {
    auto checks = DefaultConfiguration::getEligibilityChecks(isGpu);
    if (!isGpu) checks.push_back(std::make_shared<NonZeroGMixedOPS>());
    return checks;
}

std::shared_ptr<IComparisonConfiguration> getComparisonConfig(ComparableReportType type) {
    if (type == ComparableReportType::Roofline) return std::make_shared<RooflineConfiguration>();
    return std::make_shared<DefaultConfiguration>();
}

}  // namespace data_models2::results_comparer_algs
