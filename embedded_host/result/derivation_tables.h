// The rules by which the columns that a result leaves out follow from those that it has.
#pragma once

#include "host_interfaces/ids.h"

#include <span>

namespace embedded_host {

enum class Derivation {
    RowId,        // the row's id
    RowIdText,    // the row's id in decimal
    UsedThreads,  // the program's thread count
    Copy,         // a, a text
    PerThread,    // a / used threads
    AllThreads,   // a * used threads
    Sum,          // a + b; of those present when one is missing
    Ratio,        // a / b; missing when b is 0
    Giga,         // a / 1e9
    Total,        // a of the row + this field of its children; of those present
};

struct DerivationRule {
    data_models2::FieldId target;
    Derivation operation;
    data_models2::FieldId a = data_models2::FieldId::None;
    data_models2::FieldId b = data_models2::FieldId::None;
};

// In the order of application: a rule sees what the rules above it have filled.
std::span<const DerivationRule> cpuRules();
std::span<const DerivationRule> gpuRules();
std::span<const DerivationRule> offloadRules();

}  // namespace embedded_host
