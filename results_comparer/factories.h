// The factories of the comparer: which rows of two results are the same.
#pragma once

#include "host_interfaces/comparison.h"
#include "host_interfaces/export.h"
#include "host_interfaces/progress.h"

#include <memory>

namespace data_models2 {

// Finds which rows of two results are the same loop or function, one to one, with a percentage each.
class OMBRIX_API IResultsComparer {
public:
    virtual ~IResultsComparer() = default;
    // Appends to `data.matches`, which also may hold candidates already, and leaves the assignment there.
    // Pairs below `threshold` (percent, 50 unless given) aren't candidates. False when there is nothing to
    // compare, no pair was found, or `progress` (may be null) was cancelled. Throws nothing.
    virtual bool compare(ComparisonData& data, IProgress* progress) const = 0;
    virtual bool compare(ComparisonData& data, double threshold, IProgress* progress) const = 0;
};

OMBRIX_API std::shared_ptr<IResultsComparer> createResultsComparer();
// Compares only rows with operations; of GPU results all, as the other does.
OMBRIX_API std::shared_ptr<IResultsComparer> createRooflineResultsComparer();

}  // namespace data_models2
