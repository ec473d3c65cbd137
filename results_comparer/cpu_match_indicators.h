// Indicators for the loops and functions of a CPU result.
#pragma once

#include "results_comparer/match_indicators.h"

namespace data_models2::results_comparer_algs::cpu_match_indicators {

// Weight 1: the same nesting level.
class NestingLevelsMatch final : public AMatchIndicator, public Datasets {
public:
    using Datasets::Datasets;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

// Weight 1: called as often. Says nothing of two loops.
class CallCountsMatch final : public AMatchIndicator, public Datasets {
public:
    using Datasets::Datasets;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

// Weight 3: the same linker-level name once what changes from build to build is taken away.
class MangledNamesMatch final : public AMatchIndicator, public Datasets {
public:
    using Datasets::Datasets;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

// Weight 1: the same kind of row, vector loops and their remainders told apart.
class RowTypesMatch final : public AMatchIndicator, public Datasets {
public:
    using Datasets::Datasets;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

// Weight 1.2 when both texts mark a dominant data type in bold, else 1.
class DataTypesMatch final : public AMatchIndicator, public Datasets {
public:
    using Datasets::Datasets;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

// Weight 1: both have a parent in the tree, or neither.
class BUParentalPresenceMatch final : public AMatchIndicator, public Datasets {
public:
    using Datasets::Datasets;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

// The results themselves, for what a dataset doesn't tell; either may be null.
struct ViewModels {
    ViewModels(std::shared_ptr<ISurveyingViewModel> firstModel,
               std::shared_ptr<ISurveyingViewModel> secondModel)
        : first(std::move(firstModel)), second(std::move(secondModel)) {}
    const std::shared_ptr<ISurveyingViewModel>& of(Side side) const {
        return side == Side::First ? first : second;
    }

    std::shared_ptr<ISurveyingViewModel> first;
    std::shared_ptr<ISurveyingViewModel> second;
};

// Weight 1: the same median of trip counts. Says nothing of two functions.
class TripCountMediansMatch final : public AMatchIndicator, public ViewModels {
public:
    using ViewModels::ViewModels;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

// Weight 1: loops of nesting level 1 that were unrolled to the same widths.
class UnrolledChildPresenceMatch final : public AMatchIndicator, public ViewModels {
public:
    using ViewModels::ViewModels;
    std::unique_ptr<IPreparedIndicator> prepare(const RowLists&, const IProgress&) const override;
};

}  // namespace data_models2::results_comparer_algs::cpu_match_indicators
