#include "results_comparer/results_comparer.h"

#include "roofline_model/guard.h"

#include "results_comparer/comparison_algorithm.h"
#include "results_comparer/filter_algorithm.h"

namespace data_models2 {
namespace {

using results_comparer_algs::ComparableReportType;

constexpr double kDefaultThreshold = 50.0;  // percent

std::shared_ptr<IResultsComparer> makeComparer(ComparableReportType type) {
    return roofline::guarded(nullptr, [&]() -> std::shared_ptr<IResultsComparer> {
        return std::make_shared<CResultsComparer>(type);
    });
}

}  // namespace

CResultsComparer::CResultsComparer(ComparableReportType type)
    : m_comparison(std::make_shared<results_comparer_algs::CComparisonAlgorithm>(
          results_comparer_algs::getComparisonConfig(type))),
      m_filter(std::make_shared<results_comparer_algs::CFilterAlgorithm>()) {}

bool CResultsComparer::compare(ComparisonData& data, IProgress* progress) const {
    return compare(data, kDefaultThreshold, progress);
}

bool CResultsComparer::compare(ComparisonData& data, double threshold, IProgress* progress) const {
    return roofline::guarded(false, [&] {
        return m_comparison && m_filter &&
               m_comparison->run(data.first, data.second, data.dataType, threshold, data.matches, progress) &&
               m_filter->run(data.matches, progress);
    });
}

std::shared_ptr<IResultsComparer> createResultsComparer() {
    return makeComparer(ComparableReportType::Default);
}

std::shared_ptr<IResultsComparer> createRooflineResultsComparer() {
    return makeComparer(ComparableReportType::Roofline);
}

}  // namespace data_models2
