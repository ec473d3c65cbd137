// Result files of any size for benchmarks: random numbers, plausible shapes.
#pragma once

#include <cstddef>
#include <string>

struct SyntheticShape {
    std::size_t rows;
    int depth;    // 1: a flat file; 4: each row of the tree has three children down to the fourth level
    bool levels;  // loads and stores of four memory levels
};

// The text of a CPU result without a machine. The same shape gives the same text.
std::string makeSyntheticResult(const SyntheticShape& shape);
