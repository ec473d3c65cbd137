// Taking the best of several runs.
#pragma once

#include <algorithm>
#include <chrono>
#include <limits>

inline constexpr int kRuns = 7;

template <class Run>
double seconds(Run run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The shortest of the times that `run` returns.
template <class Run>
double best(Run run) {
    double result = std::numeric_limits<double>::max();
    for (int i = 0; i < kRuns; ++i) result = std::min(result, run());
    return result;
}
