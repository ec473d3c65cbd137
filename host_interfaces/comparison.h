// Two results side by side: what is compared and which rows were found to be the same.
#pragma once

#include "host_interfaces/model.h"

#include <memory>
#include <vector>

namespace data_models2 {

// A pair of rows of two results.
struct RowMatchInfo {
    double score = 0.0;  // match percentage, above 0 up to 100
    sptr_t<RowNode> first;
    sptr_t<RowNode> second;
};

// By score alone.
inline bool operator<(const RowMatchInfo& a, const RowMatchInfo& b) { return a.score < b.score; }

struct ComparisonData {
    std::shared_ptr<ISurveyingViewModel> first;
    std::shared_ptr<ISurveyingViewModel> second;
    DataType dataType = DataType::Cpu;
    std::vector<RowMatchInfo> matches;
};

}  // namespace data_models2
