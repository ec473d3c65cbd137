// Which rows take part in a comparison, and which pairs of them may be compared at all.
#pragma once

#include "host_interfaces/model.h"

#include "results_comparer/pair_block.h"

#include <memory>

namespace data_models2::results_comparer_algs {

class IEligibilityCheck {
public:
    virtual ~IEligibilityCheck() = default;
    // Whether the row may take part.
    virtual bool operator()(sptr_t<RowNode> row, sptr_t<IDataset> dataset) const = 0;
};

// The row was executed.
class ExecutedLoop final : public IEligibilityCheck {
public:
    bool operator()(sptr_t<RowNode> row, sptr_t<IDataset> dataset) const override;
};

// The row has an address, whatever it is.
class FuncIndexPresence final : public IEligibilityCheck {
public:
    bool operator()(sptr_t<RowNode> row, sptr_t<IDataset> dataset) const override;
};

// The row did operations, itself or below: more than 1e-12 giga operations.
class NonZeroGMixedOPS final : public IEligibilityCheck {
public:
    bool operator()(sptr_t<RowNode> row, sptr_t<IDataset> dataset) const override;
};

class IComparabilityCheck {
public:
    virtual ~IComparabilityCheck() = default;
    // Whether the two rows may be compared.
    virtual bool operator()(sptr_t<RowNode> first, sptr_t<RowNode> second) const = 0;
};

// A check that has read all rows of a run. It lives no longer than the run.
class IPreparedCheck {
public:
    virtual ~IPreparedCheck() = default;
    // Closes the pairs of a block that may not be compared.
    virtual void closePairs(PairBlock& block) const = 0;
};

// A check that can read the rows of a run once; a check of any other kind is called for each pair.
class AComparabilityCheck : public IComparabilityCheck {
public:
    virtual std::unique_ptr<IPreparedCheck> prepare(const RowLists& rows) const = 0;
};

// Two loops or two functions.
class RowTypesComparability final : public AComparabilityCheck {
public:
    bool operator()(sptr_t<RowNode> first, sptr_t<RowNode> second) const override;
    std::unique_ptr<IPreparedCheck> prepare(const RowLists& rows) const override;
};

}  // namespace data_models2::results_comparer_algs
