#include "results_comparer/match_indicators.h"

#include "host_interfaces/host_functions.h"

#include "results_comparer/prepared_indicator.h"
#include "results_comparer/row_readings.h"

#include <cstdlib>

namespace data_models2::results_comparer_algs {
namespace {

constexpr std::uint64_t kLinesApart = 3;

struct SourceLine {
    bool isThere;
    long long line;
};

std::uint64_t distance(long long a, long long b) {
    const auto low = static_cast<std::uint64_t>(a), high = static_cast<std::uint64_t>(b);
    return a < b ? high - low : low - high;
}

}  // namespace

std::unique_ptr<IPreparedIndicator> SourceFilesMatch::prepare(const RowLists& rows,
                                                              const IProgress& progress) const {
    return prepareProperty(rows, progress, 1.0,
                           [this](const sptr_t<RowNode>& row, Side side, PropertyIds& ids) {
                               std::string location;
                               if (!requireData(FieldId::SourceLocation, location, row, of(side)))
                                   return ids.missing(Lack::Value);
                               const auto pieces = split_string(location, ":", 0);
                               return pieces.empty() ? ids.missing(Lack::Content) : ids.of(pieces.front());
                           });
}

std::unique_ptr<IPreparedIndicator> SourceLinesMatch::prepare(const RowLists& rows,
                                                              const IProgress& progress) const {
    return prepareIndicator(
        rows, progress, {1.0},
        [this](const sptr_t<RowNode>& row, Side side) {
            SourceLine result{false, 0};
            result.isThere = requireData(FieldId::SourceLine, result.line, row, of(side));
            return result;
        },
        [](const SourceLine& a, const SourceLine& b) {
            if (!(a.isThere & b.isThere)) return AMatchIndicator::matchValidity(a.isThere, b.isThere);
            return matchIf(distance(a.line, b.line) <= kLinesApart);
        });
}

template <class T>
std::unique_ptr<IPreparedIndicator> MetricsMatch<T>::prepare(const RowLists& rows,
                                                             const IProgress& progress) const {
    return prepareProperty(rows, progress, weight,
                           [this](const sptr_t<RowNode>& row, Side side, PropertyIds& ids) {
                               return readNumber<T>(field, row, of(side), ids);
                           });
}
template class MetricsMatch<long long>;

}  // namespace data_models2::results_comparer_algs
