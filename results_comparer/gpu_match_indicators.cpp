#include "results_comparer/gpu_match_indicators.h"

#include "results_comparer/prepared_indicator.h"
#include "results_comparer/row_readings.h"

namespace data_models2::results_comparer_algs::gpu_match_indicators {

std::unique_ptr<IPreparedIndicator> FunctionNameMatch::prepare(const RowLists& rows,
                                                               const IProgress& progress) const {
    PropertyIds ids;
    return prepareIndicator(
        rows, progress, {1.0},
        [&](const sptr_t<RowNode>& row, Side side) {
            std::string name;
            if (!of(side)) return ids.missing(Lack::Dataset);
            if (!requireData(FieldId::FunctionName, name, row, of(side))) return ids.missing(Lack::Value);
            return ids.of(name.substr(0, name.find('(')));
        },
        [](PropertyId a, PropertyId b) {
            constexpr auto kNameless = PropertyIds::missing(Lack::Value);
            constexpr auto kNowhere = PropertyIds::missing(Lack::Dataset);
            // Deliberate: a name that only one side lacks says nothing, unlike what other fields say.
            const bool isUnsaid = (a == kNameless && b != kNowhere) || (b == kNameless && a != kNowhere);
            return isUnsaid ? MatchStatus::Invalid : matchProperties(a, b);
        });
}

std::unique_ptr<IPreparedIndicator> InstanceCountMatch::prepare(const RowLists& rows,
                                                                const IProgress& progress) const {
    return prepareProperty(rows, progress, 1.0,
                           [this](const sptr_t<RowNode>& row, Side side, PropertyIds& ids) {
                               return readNumber<long long>(FieldId::InstanceCount, row, of(side), ids);
                           });
}

}  // namespace data_models2::results_comparer_algs::gpu_match_indicators
