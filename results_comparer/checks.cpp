#include "results_comparer/checks.h"

#include "results_comparer/row_readings.h"

#include <algorithm>
#include <utility>

namespace data_models2::results_comparer_algs {
namespace {

// A measured double counts as not zero only above this.
constexpr double kSmallest = 1e-12;

enum class RowClass : std::uint8_t { None, Function, Loop };

RowClass classOf(const sptr_t<RowNode>& row) {
    const auto type = typeOf(row);
    if (!type) return RowClass::None;
    return isLoop(*type) ? RowClass::Loop : RowClass::Function;
}

// `&`: without a branch the loop over a block closes several pairs at a time.
bool areComparable(RowClass a, RowClass b) { return (a == b) & (a != RowClass::None); }

class PreparedRowTypes final : public IPreparedCheck {
public:
    explicit PreparedRowTypes(const RowLists& rows)
        : m_first(classesOf(rows.first)), m_second(classesOf(rows.second)) {}

    void closePairs(PairBlock& block) const override {
        const auto first = m_first[block.first];
        const auto* const second = m_second.data() + block.begin;
        for (std::size_t i = 0; i < block.count; ++i)
            block.verdicts[i] |= areComparable(first, second[i]) ? 0 : PairBlock::kClosed;
    }

private:
    static std::vector<RowClass> classesOf(const Rows& rows) {
        std::vector<RowClass> classes(rows.size());
        std::transform(rows.begin(), rows.end(), classes.begin(), classOf);
        return classes;
    }

    const std::vector<RowClass> m_first;
    const std::vector<RowClass> m_second;
};

}  // namespace

bool ExecutedLoop::operator()(sptr_t<RowNode> row, sptr_t<IDataset>) const {
    const auto type = typeOf(row);
    return type && !(*type & row_type::kNotExecuted);
}

bool FuncIndexPresence::operator()(sptr_t<RowNode> row, sptr_t<IDataset> dataset) const {
    variant_t address;
    return dataset && dataset->getValue(row, dataset->getColumn(FieldId::Rva), 0, address);
}

bool NonZeroGMixedOPS::operator()(sptr_t<RowNode> row, sptr_t<IDataset> dataset) const {
    return checkData(FieldId::SelfGMixedOps, 0.0, row, dataset) > kSmallest ||
           checkData(FieldId::TotalGMixedOps, 0.0, row, dataset) > kSmallest;
}

bool RowTypesComparability::operator()(sptr_t<RowNode> first, sptr_t<RowNode> second) const {
    return areComparable(classOf(first), classOf(second));
}

std::unique_ptr<IPreparedCheck> RowTypesComparability::prepare(const RowLists& rows) const {
    return std::make_unique<PreparedRowTypes>(rows);
}

}  // namespace data_models2::results_comparer_algs
