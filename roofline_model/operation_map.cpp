#include "roofline_model/operation_map.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/roof_names.h"

namespace data_models2 {

namespace {

RoofOpType roofOpTypeOf(int instructionType) {
    switch (static_cast<GpuInstruction>(instructionType)) {
        case GpuInstruction::Basic:
        case GpuInstruction::Div:
        case GpuInstruction::Power:
        case GpuInstruction::Math:
        case GpuInstruction::Mad:
        case GpuInstruction::Bit:
            return RoofOpType::Basic;
        case GpuInstruction::Fma:
            return RoofOpType::Fma;
        default:
            return RoofOpType::None;
    }
}

}  // namespace

void mergeOperations(OperationMap& into, const OperationMap& from) {
    for (const auto& [key, value] : from) {
        into[key].operationCount += value.operationCount;
        into[key].instructionCount += value.instructionCount;
    }
}

double roofline::getOperationCount(RoofOpType opType, ArithTypeExtDef extType,
                                   const std::shared_ptr<const OperationMap>& operationMap) {
    if (!operationMap) {
        reportAssertion("operationMap", "roofline_model/operation_map", __LINE__);
        return 0.0;
    }
    double count = 0.0;
    for (const auto& [key, value] : *operationMap) {
        const RoofOpType kind = roofOpTypeOf(key.instructionType);
        if (kind == RoofOpType::None || kind != opType) continue;
        if (getArithTypeExtDef(key.arithType, key.width) == extType) count += value.operationCount;
    }
    return count;
}

}  // namespace data_models2
