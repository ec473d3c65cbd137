// The operations of a device's kernels by instruction and data type.
#pragma once

#include "host_interfaces/ids.h"

#include <compare>
#include <cstdint>
#include <map>
#include <memory>

namespace data_models2 {

struct OperationKey {
    int instructionType = 0;
    ArithTypeDef arithType = ArithTypeDef::None;
    std::uint64_t width = 0;  // of the data, bits

    auto operator<=>(const OperationKey&) const = default;
};

struct OperationValue {
    double operationCount = 0.0;  // giga operations
    double instructionCount = 0.0;
};

using OperationMap = std::map<OperationKey, OperationValue>;

class IGpuOperationMapProvider {
public:
    virtual ~IGpuOperationMapProvider() = default;
    // Never null.
    virtual std::shared_ptr<const OperationMap> getOperationMap() const = 0;
};

// Adds the counts of equal keys.
void mergeOperations(OperationMap& into, const OperationMap& from);

namespace roofline {

// Operations on one data type by instructions of one kind: those that a compute roof stands for. A null map
// is asserted and counts 0.
double getOperationCount(RoofOpType opType, ArithTypeExtDef extType,
                         const std::shared_ptr<const OperationMap>& operationMap);

}  // namespace roofline

}  // namespace data_models2
