// Indicators that ask the results and not only their datasets: trip counts and what unrolling made of a loop.
#include "host_interfaces/host_functions.h"

#include "results_comparer/cpu_match_indicators.h"
#include "results_comparer/prepared_indicator.h"
#include "results_comparer/row_readings.h"

#include <map>
#include <optional>
#include <set>

namespace data_models2::results_comparer_algs::cpu_match_indicators {
namespace {

sptr_t<IDataset> datasetOf(const std::shared_ptr<ISurveyingViewModel>& model) {
    return model ? model->getDataset(DataType::Cpu) : nullptr;
}

struct TripCount {
    PropertyId state;  // there when the row's counts were found
    bool isFunction;
    bool isTold;  // the host set the median
    std::int64_t median;
};

using Widths = std::set<long long>;

// Empty too when a row can't be judged.
Widths unrollWidths(generic_iterator_t<RowIterator> groups, const sptr_t<IDataset>& dataset,
                    const IProgress& progress) {
    Widths widths;
    for (; !groups.isEnd(); ++groups) {
        for (auto rows = *groups; !rows.isEnd() && !progress.isCancelled(); ++rows) {
            const auto row = *rows;
            const auto type = typeOf(row);
            if (!type) return {};
            if (!(*type & row_type::kUnrolledChild)) continue;
            std::string isa;
            requireData(FieldId::Isa, isa, row, dataset);
            const auto factor = checkData<long long>(FieldId::UnrollFactor, 1, row, dataset);
            // Unsigned: a factor from a file may be anything.
            widths.insert(
                static_cast<long long>(static_cast<std::uint64_t>(factor) *
                                       static_cast<std::uint64_t>(isa_helpers::getVectorLength(isa))));
        }
    }
    return widths;
}

struct Unrolling {
    bool isJudged;  // a loop of nesting level 1
    bool canNavigate;
    std::uint32_t widths;  // number of the set of widths, 0: the empty one
};

}  // namespace

std::unique_ptr<IPreparedIndicator> TripCountMediansMatch::prepare(const RowLists& rows,
                                                                   const IProgress& progress) const {
    PropertyIds ids;
    const auto found = ids.of(1);
    return prepareIndicator(
        rows, progress, {1.0},
        [&](const sptr_t<RowNode>& row, Side side) -> TripCount {
            const auto type = typeOf(row);
            if (!type) return {missingType(row), false, false, 0};
            const bool isFunction = !isLoop(*type);
            if (!of(side)) return {PropertyIds::missing(Lack::Dataset), isFunction, false, 0};
            const auto dataset = datasetOf(of(side));
            const auto medianAfter = [&](std::int64_t before) -> std::optional<std::int64_t> {
                tripcounts_helpers::SourceTripCountsData data;
                data.median = before;
                if (!tripcounts_helpers::getSourceTripCounts(row, dataset, FieldId::TripCounts, data))
                    return std::nullopt;
                return data.median;
            };
            const auto median = medianAfter(0);
            if (!median) return {PropertyIds::missing(Lack::Value), isFunction, false, 0};
            // A host may find counts and leave the median alone: then it stays at anything.
            return {found, isFunction, *median != 0 || medianAfter(1) == 0, *median};
        },
        [](const TripCount& a, const TripCount& b) {
            if (a.isFunction && b.isFunction) return MatchStatus::Invalid;
            const auto status = matchProperties(a.state, b.state);
            if (status != MatchStatus::Match) return status;
            // Deliberate: as if one record served both rows, a median that isn't told is the first row's.
            return matchIf(!b.isTold || a.median == b.median);
        });
}

std::unique_ptr<IPreparedIndicator> UnrolledChildPresenceMatch::prepare(const RowLists& rows,
                                                                        const IProgress& progress) const {
    std::map<Widths, std::uint32_t> numbers{{Widths(), 0}};
    return prepareIndicator(
        rows, progress, {1.0},
        [&](const sptr_t<RowNode>& row, Side side) -> Unrolling {
            const auto dataset = datasetOf(of(side));
            if (checkData<unsigned long long>(FieldId::NestingLevel, 0, row, dataset) != 1) return {};
            const auto navigator = of(side) ? of(side)->getRowNavigator() : nullptr;
            if (!navigator) return {true, false, 0};
            const auto widths = unrollWidths(navigator->getRelatedRows(IRowNavigator::kRowsBelow, row, 1, 1),
                                             dataset, progress);
            const auto number = static_cast<std::uint32_t>(numbers.size());
            return {true, true, numbers.try_emplace(widths, number).first->second};
        },
        [](const Unrolling& a, const Unrolling& b) {
            if (!a.isJudged || !b.isJudged) return MatchStatus::Invalid;
            const auto validity = AMatchIndicator::matchValidity(a.canNavigate, b.canNavigate);
            if (validity != MatchStatus::Match) return validity;
            if (!a.widths || !b.widths) return MatchStatus::Invalid;
            return matchIf(a.widths == b.widths);
        });
}

}  // namespace data_models2::results_comparer_algs::cpu_match_indicators
