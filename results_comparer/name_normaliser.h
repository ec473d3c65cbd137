// What stays the same in the name of a loop or function from build to build.
#pragma once

#include <string>

namespace data_models2::results_comparer_algs {

// Without line numbers, addresses, leading underscores, and what compilers append to a parallel loop or
// region.
std::string normaliseName(const std::string& name);

}  // namespace data_models2::results_comparer_algs
