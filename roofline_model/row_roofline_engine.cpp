#include "roofline_model/row_roofline_engine.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/guard.h"
#include "roofline_model/logging.h"
#include "roofline_model/row_data_access.h"

#include <algorithm>

namespace data_models2 {

namespace {

constinit const roofline::LogChannel kLog{"row_roofline_engine"};
constexpr auto kUnit = "roofline_model/row_roofline_engine";
constexpr double kGiga = 1e9;

bool isThere(bool exists, const char* expression) {
    if (!exists) reportAssertion(expression, kUnit, __LINE__);
    return exists;
}

}  // namespace

CRowRooflineEngine::CRowRooflineEngine(sptr_t<RowNode> row, sptr_t<IDataset> dataset,
                                       std::shared_ptr<IRowRooflineHelper> helper)
    : m_row(std::move(row)), m_dataset(std::move(dataset)), m_helper(std::move(helper)) {
    const bool hasRow = isThere(m_row != nullptr, "m_row");
    const bool hasDataset = isThere(m_dataset != nullptr, "m_dataset");
    if (!isThere(m_helper != nullptr, "m_helper") || !hasRow || !hasDataset) return;

    m_helper->init(m_row, m_dataset);
    initData();
    calcPoint();
    m_helper->findRoofs(m_memoryRoofs, m_computeRoofs);
    findLimitingRoof();
    if (!m_helper->areMemLevelMetricsCollected()) return;
    initMemLevelData();
    calcMemLevelPoints();
    initMemoryData();
    findLimitingRoofForMemLevelPoints();
    m_conclusions = m_helper->findRooflineConclusions(m_memLimitingRoof);
}

const CRowRooflineEngine::FieldTable& CRowRooflineEngine::fields(bool total) {
    static const FieldTable kTotal{
        {DataType::FloatPerformance, FieldId::TotalGFlops},
        {DataType::FloatAi, FieldId::TotalFloatAi},
        {DataType::FloatOps, FieldId::TotalFloatOps},
        {DataType::IntPerformance, FieldId::TotalGIntOps},
        {DataType::IntAi, FieldId::TotalIntAi},
        {DataType::IntOps, FieldId::TotalIntOps},
    };
    static const FieldTable kSelf{
        {DataType::FloatPerformance, FieldId::SelfGFlops},
        {DataType::FloatAi, FieldId::SelfFloatAi},
        {DataType::FloatOps, FieldId::SelfFloatOps},
        {DataType::IntPerformance, FieldId::SelfGIntOps},
        {DataType::IntAi, FieldId::SelfIntAi},
        {DataType::IntOps, FieldId::SelfIntOps},
    };
    return total ? kTotal : kSelf;
}

// A count that the self set lacks keeps what the total set read: only presence changes then.
void CRowRooflineEngine::readFields(const FieldTable& table) {
    for (const auto& [type, field] : table) {
        Data& data = m_data[type];
        data.present = requireData<double>(field, data.value, m_row, m_dataset);
    }
}

bool CRowRooflineEngine::has(DataType performance, DataType ai) const {
    return m_data.at(performance).present && m_data.at(ai).present;
}

void CRowRooflineEngine::initData() {
    readFields(fields(true));
    m_totalMetricsAvailable =
        has(DataType::FloatPerformance, DataType::FloatAi) || has(DataType::IntPerformance, DataType::IntAi);
    if (!m_totalMetricsAvailable) readFields(fields(false));
}

void CRowRooflineEngine::calcPoint() {
    const bool hasFloat = has(DataType::FloatPerformance, DataType::FloatAi);
    const bool hasInt = has(DataType::IntPerformance, DataType::IntAi);
    if (!hasFloat && !hasInt) {
        kLog.debug([](std::ostream& out) { out << "No Roofline data, exiting"; });
        return;
    }
    const bool isInt =
        hasFloat && hasInt ? m_data.at(DataType::FloatOps).value < m_data.at(DataType::IntOps).value : hasInt;
    kLog.debug([&](std::ostream& out) {
        out << (isInt ? "Int ops" : "Float ops") << (hasFloat && hasInt ? " dominate" : "");
    });
    if (isInt)
        setPoint(DataType::IntPerformance, DataType::IntAi, OperationsType::Int);
    else
        setPoint(DataType::FloatPerformance, DataType::FloatAi, OperationsType::Float);
}

void CRowRooflineEngine::setPoint(DataType performance, DataType ai, OperationsType type) {
    m_point.performance = m_data.at(performance).value;
    m_point.ai = m_data.at(ai).value;
    m_point.operationsType = type;
}

const RoofItem* CRowRooflineEngine::findComputeRoof(OperationsType type) const {
    const auto found =
        std::find_if(m_computeRoofs.begin(), m_computeRoofs.end(),
                     [type](const RoofItem& roof) { return roof::getOperationsType(roof) == type; });
    return found == m_computeRoofs.end() ? nullptr : &*found;
}

// A tie at the ridge and a point on a memory roof go to the memory roof.
void CRowRooflineEngine::findLimitingRoof() {
    const RoofItem* compute = findComputeRoof(m_point.operationsType);
    if (!compute || !(m_point.ai > 0.0)) return;
    const double bandwidth =
        m_point.performance / m_point.ai * kGiga;  // bytes per second that the row reaches
    const auto memory = std::find_if(
        m_memoryRoofs.begin(), m_memoryRoofs.end(),
        [bandwidth](const RoofItem& roof) { return bandwidth <= static_cast<double>(roof.value); });
    if (memory == m_memoryRoofs.end()) return;
    const double computeG = static_cast<double>(compute->value) / kGiga;
    const double ridge = static_cast<double>(compute->value) / static_cast<double>(memory->value);
    if (m_point.ai > ridge && computeG > m_point.performance)
        m_limitingRoof = LimitingRoof(*compute, computeG);
    else
        m_limitingRoof = LimitingRoof(*memory, m_point.ai * (static_cast<double>(memory->value) / kGiga));
}

RoofItem CRowRooflineEngine::getComputeRoof(OperationsType type) const {
    return roofline::guarded(RoofItem(), [&] {
        const RoofItem* roof =
            findComputeRoof(type == OperationsType::Undefined ? m_point.operationsType : type);
        return roof ? *roof : RoofItem();
    });
}

bool CRowRooflineEngine::isValid() const {
    const auto limits = [](const LimitingRoof& roof) {
        return roof.boundCategory != BoundCategory::None && !roof.name.empty();
    };
    if (m_point.operationsType == OperationsType::Undefined || m_memoryRoofs.empty() ||
        m_computeRoofs.empty())
        return false;
    if (!limits(m_limitingRoof) || (areMemLevelMetricsAvailable() && !limits(m_memLimitingRoof)))
        return false;
    return roofline::guarded(false, [this] { return m_helper->isValid(m_totalMetricsAvailable); });
}

std::vector<MemoryValue> CRowRooflineEngine::getMemoryValues(RooflineMemoryValuesType type) const {
    const auto found = m_memoryValues.find(type);
    return found == m_memoryValues.end() ? std::vector<MemoryValue>() : found->second;
}

void CRowRooflineEngine::extendMemoryRoofs(std::vector<RoofItem>& roofs) const {
    if (m_helper) roofline::guarded([&] { m_helper->extendMemoryRoofs(roofs); });
}

std::vector<RooflineConclusion> CRowRooflineEngine::getRooflineConclusions() const {
    return isValid() ? m_conclusions : std::vector<RooflineConclusion>();
}

}  // namespace data_models2
