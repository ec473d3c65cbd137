#include "roofline_model/memory_metrics.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/row_data_access.h"

#include <boost/property_tree/ptree.hpp>

#include <algorithm>
#include <array>

namespace data_models2 {

namespace {

constexpr double kMeasurable = 1e-12;

template <class Map, class Key>
double valueOr0(const Map& map, const Key& key) {
    const auto found = map.find(key);
    return found == map.end() ? 0.0 : found->second;
}

// A missing type or level and what can't be told from 0 read as 0.
double sumOf(const CMemoryLevelMetrics::TypeLevelMap& map, OperationsType type, const std::string& level) {
    const auto levels = map.find(type);
    if (levels == map.end()) return 0.0;
    const double value = valueOr0(levels->second, level);
    return value > kMeasurable ? value : 0.0;
}

double quotient(double dividend, double divisor) {
    return dividend > kMeasurable && divisor > kMeasurable ? dividend / divisor : 0.0;
}

double valueOf(const ValueGetter& getter, const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) {
    return getter ? getter->get(dataset, row).toDouble() : 0.0;
}

// The rows that count, by the bits of their type; of a dataset that isn't named all do.
struct CountedRows {
    DataType dataset;
    std::uint64_t wanted, unwanted;
};

constexpr auto kCountedRows = std::to_array<CountedRows>({
    {DataType::Cpu, 0, row_type::kHidden},
    {DataType::CpuTopDown, 0, row_type::kHidden},
    {DataType::Gpu, row_type::kGpuTask, 0},
});

MetricRecipe withDefaults(MetricRecipe recipe) {
    if (recipe.operations.empty())
        recipe.operations = {{defGetter(FieldId::SelfFloatOps), OperationsType::Float},
                             {defGetter(FieldId::SelfIntOps), OperationsType::Int},
                             {defGetter(FieldId::SelfMixedOps), OperationsType::Mixed}};
    if (recipe.traffic.empty())
        recipe.traffic = {{defGetter(FieldId::SelfMemL1), "L1"},
                          {defGetter(FieldId::SelfMemL2), "L2"},
                          {defGetter(FieldId::SelfMemL3), "L3"},
                          {defGetter(FieldId::SelfMemL4), "L4"},
                          {defGetter(FieldId::SelfMemDram), "DRAM"}};
    if (recipe.timeField == FieldId::None) recipe.timeField = FieldId::SelfTime;
    if (recipe.elapsedTimeField == FieldId::None) recipe.elapsedTimeField = FieldId::SelfElapsedTime;
    return recipe;
}

}  // namespace

double CMemoryLevelMetrics::getTotalOpCount(OperationsType type) const {
    return valueOr0(m_totalOpCount, type);
}
double CMemoryLevelMetrics::getTotalGBs(const std::string& level) const {
    return valueOr0(m_totalGBs, level);
}

double CMemoryLevelMetrics::getTotalAI(OperationsType type, const std::string& level) const {
    return quotient(getTotalOpCount(type), getTotalGBs(level));
}

double CMemoryLevelMetrics::getTotalNonZeroGBs(OperationsType type, const std::string& level) const {
    return sumOf(m_nonZeroGBs, type, level);
}

double CMemoryLevelMetrics::getTotalNonZeroElapsedTime(OperationsType type, const std::string& level) const {
    return sumOf(m_nonZeroElapsedTime, type, level);
}

double CMemoryLevelMetrics::getTotalNonZeroTime(OperationsType type, const std::string& level) const {
    return sumOf(m_nonZeroTime, type, level);
}

double CMemoryLevelMetrics::getTotalNonZeroOps(OperationsType type, const std::string& level) const {
    return quotient(sumOf(m_nonZeroOps, type, level), sumOf(m_nonZeroElapsedTime, type, level));
}

double CMemoryLevelMetrics::getTotalNonZeroAI(OperationsType type, const std::string& level) const {
    return quotient(sumOf(m_nonZeroOps, type, level), sumOf(m_nonZeroGBs, type, level));
}

RooflineMemoryMetricsRowVisitHandler::RooflineMemoryMetricsRowVisitHandler(sptr_t<IDataset> dataset,
                                                                           MetricRecipe recipe)
    : m_dataset(std::move(dataset)),
      m_recipe(withDefaults(std::move(recipe))),
      m_sums(m_recipe.operations.size() * m_recipe.traffic.size()),
      m_rowTraffic(m_recipe.traffic.size()) {
    for (const auto& entry : m_recipe.operations)
        if (entry.first) entry.first->init(m_dataset);
    for (const auto& entry : m_recipe.traffic)
        if (entry.first) entry.first->init(m_dataset);
}

RooflineMemoryMetricsRowVisitHandler::~RooflineMemoryMetricsRowVisitHandler() {
    for (const auto& entry : m_recipe.operations)
        if (entry.first) entry.first->deInit();
    for (const auto& entry : m_recipe.traffic)
        if (entry.first) entry.first->deInit();
}

bool RooflineMemoryMetricsRowVisitHandler::accepts(const RowNode& row) const {
    const auto specification = row.getSpecification();
    if (!specification) return false;
    const auto counted = std::find_if(kCountedRows.begin(), kCountedRows.end(), [this](const auto& each) {
        return each.dataset == m_dataset->getDataType();
    });
    if (counted == kCountedRows.end()) return true;
    const auto type = specification->getRowType();
    return (type & counted->wanted) == counted->wanted && !(type & counted->unwanted);
}

variant_bag_t RooflineMemoryMetricsRowVisitHandler::handlePreVisit(const sptr_t<RowNode>& row,
                                                                   const variant_bag_t&, bool&) {
    if (!row || !m_dataset || !accepts(*row)) return {};
    const double elapsedTime = checkData<double>(m_recipe.elapsedTimeField, 0.0, row, m_dataset);
    const double time = checkData<double>(m_recipe.timeField, 0.0, row, m_dataset);
    // A row that took no time adds nothing at all, not even its traffic.
    if (elapsedTime > kMeasurable) addRow(row, elapsedTime, time);
    return {};
}

variant_bag_t RooflineMemoryMetricsRowVisitHandler::handlePostVisit(const sptr_t<RowNode>&,
                                                                    const variant_bag_t&) {
    reportAssertion("RooflineMemoryMetricsRowVisitHandler::handlePostVisit not implemented",
                    "roofline_model/memory_metrics", __LINE__);
    return {};
}

void RooflineMemoryMetricsRowVisitHandler::addRow(const sptr_t<RowNode>& row, double elapsedTime,
                                                  double time) {
    m_metrics.m_totalElapsedTime += elapsedTime;
    m_metrics.m_totalTime += time;
    for (std::size_t level = 0; level < m_recipe.traffic.size(); ++level) {
        m_rowTraffic[level] = valueOf(m_recipe.traffic[level].first, m_dataset, row);
        m_metrics.m_totalGBs[m_recipe.traffic[level].second] += m_rowTraffic[level];
    }
    for (std::size_t operation = 0; operation < m_recipe.operations.size(); ++operation) {
        const double ops = valueOf(m_recipe.operations[operation].first, m_dataset, row);
        m_metrics.m_totalOpCount[m_recipe.operations[operation].second] += ops;
        if (!(ops > kMeasurable)) continue;
        for (std::size_t level = 0; level < m_rowTraffic.size(); ++level) {
            if (!(m_rowTraffic[level] > kMeasurable)) continue;
            const Sums& sums = sumsOf(operation, level);
            *sums.gigabytes += m_rowTraffic[level];
            *sums.operations += ops;
            *sums.elapsedTime += elapsedTime;
            *sums.time += time;
        }
    }
}

// The maps' nodes never move, so a pair's place is looked up once a walk.
RooflineMemoryMetricsRowVisitHandler::Sums& RooflineMemoryMetricsRowVisitHandler::sumsOf(
    std::size_t operation, std::size_t level) {
    Sums& result = m_sums[operation * m_recipe.traffic.size() + level];
    if (result.gigabytes) return result;
    const OperationsType type = m_recipe.operations[operation].second;
    const std::string& name = m_recipe.traffic[level].second;
    result.gigabytes = &m_metrics.m_nonZeroGBs[type][name];
    result.operations = &m_metrics.m_nonZeroOps[type][name];
    result.elapsedTime = &m_metrics.m_nonZeroElapsedTime[type][name];
    result.time = &m_metrics.m_nonZeroTime[type][name];
    return result;
}

std::shared_ptr<const CMemoryLevelMetrics> makeMemoryMetrics(const sptr_t<IDataset>& dataset,
                                                             const MetricRecipe& recipe) {
    const auto helper = createDatasetHelper(dataset);
    if (!helper) return nullptr;
    const sptr_t<RooflineMemoryMetricsRowVisitHandler> handler(
        new RooflineMemoryMetricsRowVisitHandler(dataset, recipe));
    helper->visit(handler, true);
    return std::make_shared<const CMemoryLevelMetrics>(handler->getMetrics());
}

namespace roofline {

OperationsType getDominatingType(const std::shared_ptr<const CMemoryLevelMetrics>& metrics) {
    const bool isInt = metrics && metrics->getTotalOpCount(OperationsType::Int) >
                                      metrics->getTotalOpCount(OperationsType::Float);
    return isInt ? OperationsType::Int : OperationsType::Float;
}

bool checkDefaultFloatType(const std::shared_ptr<const CMemoryLevelMetrics>& metrics,
                           const std::string& level) {
    return metrics && !(metrics->getTotalNonZeroOps(OperationsType::Float, level) > 0.0);
}

}  // namespace roofline

}  // namespace data_models2
