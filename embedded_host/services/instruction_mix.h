// How a dataset of the embedded host gives the instruction mixes of its rows.
#pragma once

#include "host_interfaces/host_functions.h"

namespace embedded_host {

// A second interface of a dataset; `getInstructionMixMap` finds it by a cast.
class IInstructionMixSource {
public:
    virtual ~IInstructionMixSource() = default;
    // Counts are integers (kind 8). Empty for a row without a mix and for a row of another dataset.
    virtual data_models2::InstructionMix instructionMix(const data_models2::RowNode& row) const = 0;
};

}  // namespace embedded_host
