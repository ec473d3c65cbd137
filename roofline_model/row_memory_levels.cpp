// The memory-level side of the row engine: one point a level, the tables by level, the nearest roof above any
// point.
#include "host_interfaces/host_functions.h"

#include "roofline_model/chart_widgets.h"
#include "roofline_model/logging.h"
#include "roofline_model/row_roofline_engine.h"

#include <algorithm>
#include <limits>

namespace data_models2 {

namespace {

constinit const roofline::LogChannel kLog{"row_roofline_engine"};
constexpr double kMeasurable = 1e-12;
constexpr double kGiga = 1e9;

std::string caption(MemoryLevel level) {
    return roofline_helpers::getMemoryRooflineType(level, TargetDeviceType::Cpu);
}

MemoryValue makeMemoryValue(const RoofItem& roof, double value, std::string text) {
    return {.caption = caption(roof.memoryLevel),
            .value = value,
            .text = std::move(text),
            .roofId = roof.id,
            .roofName = roof.name,
            .memoryLevel = roof.memoryLevel};
}

}  // namespace

void CRowRooflineEngine::initMemLevelData() {
    const FieldTable& table = fields(m_totalMetricsAvailable);
    for (const auto& roof : m_memoryRoofs) {
        const auto traffic = m_helper->getTrafficGetter(roof.memoryLevel, m_totalMetricsAvailable);
        if (!traffic) continue;
        readLevel(roof.memoryLevel, DataType::FloatAi, divGetter(table.at(DataType::FloatOps), traffic));
        readLevel(roof.memoryLevel, DataType::IntAi, divGetter(table.at(DataType::IntOps), traffic));
        readLevel(roof.memoryLevel, DataType::Traffic, traffic);
    }
}

// Only a double makes an entry; another kind leaves no level behind that would look as if it was measured.
void CRowRooflineEngine::readLevel(MemoryLevel level, DataType type, const ValueGetter& getter) {
    getter->init(m_dataset);
    const variant_t value = getter->get(m_dataset, m_row);
    getter->deInit();
    if (value.kind() == variant_t::kDouble)
        m_memLevelData[level][type] = {value.toDouble(), value.toDouble() > kMeasurable};
}

void CRowRooflineEngine::calcMemLevelPoints() {
    const DataType ai = m_point.operationsType == OperationsType::Int ? DataType::IntAi : DataType::FloatAi;
    for (const auto& [level, data] : m_memLevelData) {
        const auto log = [l = level](const char* what) {
            kLog.debug([&](std::ostream& out) { out << what << caption(l); });
        };
        if (data.size() < 3) {
            log("No Roofline data for: ");
            continue;
        }
        const Data& traffic = data.at(DataType::Traffic);
        if (traffic.present)
            m_maxTraffic = std::max(m_maxTraffic, traffic.value);
        else
            log("No data transferred for : ");
        if (m_point.operationsType != OperationsType::Undefined && data.at(ai).present)
            m_memLevelPoints.push_back({.performance = m_point.performance,
                                        .ai = data.at(ai).value,
                                        .traffic = traffic.value,
                                        .memoryLevel = level,
                                        .limitingRoofId = RoofId::None,
                                        .operationsType = m_point.operationsType});
        else
            log("No Roofline point for : ");
    }
    std::stable_sort(m_memLevelPoints.begin(), m_memLevelPoints.end(), [this](const auto& a, const auto& b) {
        return m_helper->getMemoryLevelNumber(a.memoryLevel) < m_helper->getMemoryLevelNumber(b.memoryLevel);
    });
}

const RoofItem* CRowRooflineEngine::findMemoryRoof(MemoryLevel level) const {
    const auto found = std::find_if(m_memoryRoofs.begin(), m_memoryRoofs.end(),
                                    [level](const RoofItem& roof) { return roof.memoryLevel == level; });
    return found == m_memoryRoofs.end() ? nullptr : &*found;
}

// Shares of the traffic and of the memory time, and the utilisation of each level's roof, in percent.
void CRowRooflineEngine::initMemoryData() {
    if (!(m_maxTraffic >= kMeasurable)) return;
    double timeSum = 0.0;
    for (const auto& point : m_memLevelPoints) {
        const RoofItem* roof = findMemoryRoof(point.memoryLevel);
        if (!roof) continue;
        const auto peak = static_cast<double>(roof->value);
        const std::string trafficText = double2str(point.traffic, "", 3, 0.001);
        const double reached = point.performance / point.ai * kGiga;
        if (roof->value != 0 && reached < peak) {
            m_memoryValues[RooflineMemoryValuesType::Utilization].push_back(
                makeMemoryValue(*roof, reached / peak * 100.0, trafficText));
            const double time = point.traffic / peak * kGiga;
            m_memoryValues[RooflineMemoryValuesType::Time].push_back(
                makeMemoryValue(*roof, time, trafficText));
            timeSum += time;
        }
        m_memoryValues[RooflineMemoryValuesType::Traffic].push_back(
            makeMemoryValue(*roof, point.traffic / m_maxTraffic * 100.0, trafficText));
    }
    if (!(timeSum > 0.0)) return;
    for (auto& value : m_memoryValues[RooflineMemoryValuesType::Time]) {
        value.text = int2str(roofline::helpers::wholePercent(value.value, timeSum));
        value.value = value.value / timeSum * 100.0;
    }
}

// On equal distances the level nearer to the core stays; a point on its roof never wins.
void CRowRooflineEngine::findLimitingRoofForMemLevelPoints() {
    const RoofItem* compute = findComputeRoof(m_point.operationsType);
    if (!compute) return;
    const double computeG = static_cast<double>(compute->value) / kGiga;
    double best = std::numeric_limits<double>::max();
    RooflinePoint* bestPoint = nullptr;
    for (auto& point : m_memLevelPoints) {
        const RoofItem* roof = findMemoryRoof(point.memoryLevel);
        if (!roof) continue;
        const double memoryG = static_cast<double>(roof->value) / kGiga;
        const double ridge = static_cast<double>(compute->value) / static_cast<double>(roof->value);
        const bool isCompute = point.ai > ridge && computeG > point.performance;
        if (!isCompute && point.performance / point.ai > memoryG) continue;
        const LimitingRoof candidate =
            isCompute ? LimitingRoof(*compute, computeG) : LimitingRoof(*roof, memoryG * point.ai);
        const double distance = candidate.limitValue - point.performance;
        kLog.debug([&](std::ostream& out) {
            out << caption(point.memoryLevel) << " point has limiting roof " << candidate.name
                << " with distance " << distance;
        });
        if (!(distance > kMeasurable && best > distance)) continue;
        best = distance;
        m_memLimitingRoof = candidate;
        bestPoint = &point;
    }
    m_helper->updateLimitingRoof(m_memLimitingRoof);
    if (bestPoint) bestPoint->limitingRoofId = m_memLimitingRoof.id;
}

}  // namespace data_models2
