// Result files of any size for benchmarks: random numbers, plausible shapes.
#pragma once

#include <cstddef>
#include <string>

struct SyntheticShape {
    std::size_t rows;
    int depth;    // 1: a flat file; 4: each row of the tree has three children down to the fourth level
    bool levels;  // loads and stores of four memory levels
    bool types = false;  // data types, a vectorised mark, and a roof
};

// The text of a CPU result, with a machine only for the sake of `types`. The same shape gives the same text.
std::string makeSyntheticResult(const SyntheticShape& shape);
