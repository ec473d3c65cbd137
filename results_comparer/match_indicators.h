// Indicators for rows of any kind: source positions, metrics, and their base of two datasets.
#pragma once

#include "results_comparer/match_indicator.h"

#include <type_traits>
#include <utility>

namespace data_models2::results_comparer_algs {

// Where the rows of either side are read; either may be null.
struct Datasets {
    Datasets(sptr_t<IDataset> firstDataset, sptr_t<IDataset> secondDataset)
        : first(std::move(firstDataset)), second(std::move(secondDataset)) {}
    const sptr_t<IDataset>& of(Side side) const { return side == Side::First ? first : second; }

    sptr_t<IDataset> first;
    sptr_t<IDataset> second;
};

// Weight 1: the same file.
class SourceFilesMatch final : public AMatchIndicator, public Datasets {
public:
    using Datasets::Datasets;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

// Weight 1: lines that lie at most 3 apart.
class SourceLinesMatch final : public AMatchIndicator, public Datasets {
public:
    using Datasets::Datasets;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

// The same number in a field.
template <class T>
class MetricsMatch final : public AMatchIndicator, public Datasets {
public:
    static_assert(std::is_same_v<T, long long>);
    MetricsMatch(sptr_t<IDataset> firstDataset, sptr_t<IDataset> secondDataset, FieldId metric,
                 double metricWeight)
        : Datasets(std::move(firstDataset), std::move(secondDataset)), field(metric), weight(metricWeight) {}
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;

    FieldId field;
    double weight;
};

}  // namespace data_models2::results_comparer_algs
