#include "results_comparer/match_indicator.h"

#include <utility>

namespace data_models2::results_comparer_algs {

MatchResult AMatchIndicator::operator()(sptr_t<RowNode> first, sptr_t<RowNode> second) const {
    return prepare({{std::move(first)}, {std::move(second)}}, DummyProgress())->judge(0, 0);
}

}  // namespace data_models2::results_comparer_algs
