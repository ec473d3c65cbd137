#include "roofline_model/offload_row_roofline_helper.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/instruction_mix_summary.h"
#include "roofline_model/logging.h"
#include "roofline_model/offload_operation_map.h"
#include "roofline_model/row_data_access.h"
#include "roofline_model/unified/offload_levels.h"

#include <algorithm>
#include <array>
#include <limits>

namespace data_models2 {

namespace {

constinit const roofline::LogChannel kLog{"projection_row_roofline_helper"};
constexpr auto kUnit = "roofline_model/offload_row_roofline_helper";

// What makes a point; of one type of operations.
using Point = std::array<FieldId, 3>;
constexpr Point kFloatPoint{FieldId::TotalGFlops, FieldId::TotalFloatAi, FieldId::TotalFloatOps};
constexpr Point kIntPoint{FieldId::TotalGIntOps, FieldId::TotalIntAi, FieldId::TotalIntOps};

bool isDataPresent(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, const Point& fields) {
    return std::all_of(fields.begin(), fields.end(), [&](FieldId field) {
        double value = 0.0;
        return requireData<double>(field, value, row, dataset) && value > 0.0;
    });
}

}  // namespace

OffloadRowRooflineHelper::OffloadRowRooflineHelper(std::shared_ptr<IRoofManager> roofManager,
                                                   bool singleSubDevice)
    : m_roofManager(std::move(roofManager)), m_singleSubDevice(singleSubDevice) {}

bool OffloadRowRooflineHelper::isValid(bool /*totalMetricsAvailable*/) const {
    if (!m_row) reportAssertion("m_row", kUnit, __LINE__);
    if (!m_dataset) reportAssertion("m_dataset", kUnit, __LINE__);
    return isDataPresent(m_row, m_dataset, kFloatPoint) || isDataPresent(m_row, m_dataset, kIntPoint);
}

double OffloadRowRooflineHelper::countOf(FieldId field) const {
    return checkData<double>(field, 0.0, m_row, m_dataset);
}

// Equal counts take 32 bits, also when there is nothing at all.
void OffloadRowRooflineHelper::findRoofs(std::vector<RoofItem>& memoryRoofs,
                                         std::vector<RoofItem>& computeRoofs) const {
    if (!m_roofManager) return;
    using enum ArithTypeExtDef;
    const auto integers =
        countOf(FieldId::OffloadInt32Ops) < countOf(FieldId::OffloadInt64Ops) ? Int64 : Int32;
    const auto floats =
        countOf(FieldId::OffloadFloat32Ops) < countOf(FieldId::OffloadFloat64Ops) ? Float64 : Float32;
    kLog.debug([&](std::ostream& out) {
        out << "widths " << static_cast<int>(integers) << " and " << static_cast<int>(floats);
    });
    const auto usage = m_singleSubDevice ? TileUsage::Single : TileUsage::Multi;
    auto roofs = m_roofManager->getRoofs(roof::getGpuRoofConfiguration(usage, OperationsType::Undefined));
    for (; !roofs.isEnd(); ++roofs) {
        const RoofItem roof = *roofs;
        if (roof::hasType(roof, RoofItem::Memory)) memoryRoofs.push_back(roof);
        // Deliberate: roofs of matrix operations are drawn but never chosen, as no instruction is of them.
        else if (roof.roofOpType != RoofOpType::Matrix &&
                 (roof.arithType == integers || roof.arithType == floats))
            computeRoofs.push_back(roof);
    }
    std::stable_sort(memoryRoofs.begin(), memoryRoofs.end());
}

unsigned OffloadRowRooflineHelper::getMemoryLevelNumber(MemoryLevel level) const {
    const OffloadLevel* const found = findOffloadLevel(level);
    return found ? found->position : std::numeric_limits<unsigned>::max();
}

ValueGetter OffloadRowRooflineHelper::getTrafficGetter(MemoryLevel level, bool /*useTotal*/) const {
    const OffloadLevel* const found = findOffloadLevel(level);
    return found && found->traffic != FieldId::None ? gigabytesGetter(found->traffic) : nullptr;
}

void OffloadRowRooflineHelper::dumpInstructionMixSummary(rabbit::object& object) const {
    const auto operations = std::make_shared<const OperationMap>(getOffloadOperations(m_row, m_dataset));
    roofline::summary::dumpInstructionMixSummary(object, operations);
}

std::vector<RooflineConclusion> OffloadRowRooflineHelper::findRooflineConclusions(
    const LimitingRoof& limitingRoof) const {
    if (limitingRoof.boundCategory == BoundCategory::None) return {};
    const bool isCompute = limitingRoof.boundCategory == BoundCategory::Compute;
    return {RooflineConclusion(isCompute ? "rec_compute_bound" : "rec_memory_bound",
                               {{"limitingRoof", limitingRoof.name}})};
}

}  // namespace data_models2
