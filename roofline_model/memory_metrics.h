// Program-wide sums of operations, traffic and time, by operations type and memory level.
#pragma once

#include "host_interfaces/model.h"

#include "roofline_model/unified/value_getters.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace data_models2 {

// Operations in giga units, traffic in gigabytes, times in seconds. A key is there only when a row added to
// it.
//
// The nonzero maps take in only rows that have both operations of the type and traffic at the level, so that
// rows of another type or level don't dilute a rate or an intensity; the totals take in every accepted row.
class CMemoryLevelMetrics {
public:
    using LevelMap = std::unordered_map<std::string, double>;
    using TypeLevelMap = std::unordered_map<OperationsType, LevelMap>;

    double getTotalOpCount(OperationsType type) const;
    double getTotalGBs(const std::string& level) const;
    // Operations per byte over all rows; 0 when either sum is not above 1e-12.
    double getTotalAI(OperationsType type, const std::string& level) const;
    double getTotalNonZeroGBs(OperationsType type, const std::string& level) const;
    double getTotalNonZeroElapsedTime(OperationsType type, const std::string& level) const;
    double getTotalNonZeroTime(OperationsType type, const std::string& level) const;
    // A rate, in spite of its name: giga operations per second of elapsed time.
    double getTotalNonZeroOps(OperationsType type, const std::string& level) const;
    double getTotalNonZeroAI(OperationsType type, const std::string& level) const;
    double getTotalElapsedTime() const { return m_totalElapsedTime; }
    double getTotalTime() const { return m_totalTime; }

private:
    friend class RooflineMemoryMetricsRowVisitHandler;

    TypeLevelMap m_nonZeroOps;
    TypeLevelMap m_nonZeroGBs;
    TypeLevelMap m_nonZeroElapsedTime;
    TypeLevelMap m_nonZeroTime;
    std::unordered_map<OperationsType, double> m_totalOpCount;
    LevelMap m_totalGBs;
    double m_totalElapsedTime = 0.0;
    double m_totalTime = 0.0;
};

// What the metrics of a kind of analysis are made of; what is left empty or None stands for the CPU's.
struct MetricRecipe {
    std::vector<std::pair<ValueGetter, OperationsType>> operations;
    std::vector<std::pair<ValueGetter, std::string>> traffic;
    FieldId timeField = FieldId::None;
    FieldId elapsedTimeField = FieldId::None;
};

// Sums up the rows that a walk shows it. The getters are bound to the dataset for the life of the handler.
class RooflineMemoryMetricsRowVisitHandler final : public RefCounted<IVisitHandler<RowNode>> {
public:
    RooflineMemoryMetricsRowVisitHandler(sptr_t<IDataset> dataset, MetricRecipe recipe);
    ~RooflineMemoryMetricsRowVisitHandler() override;
    RooflineMemoryMetricsRowVisitHandler(const RooflineMemoryMetricsRowVisitHandler&) = delete;
    RooflineMemoryMetricsRowVisitHandler& operator=(const RooflineMemoryMetricsRowVisitHandler&) = delete;

    variant_bag_t handlePreVisit(const sptr_t<RowNode>& row, const variant_bag_t& parent,
                                 bool& skipChildren) override;
    variant_bag_t handlePostVisit(const sptr_t<RowNode>& row, const variant_bag_t& parent) override;
    const CMemoryLevelMetrics& getMetrics() const { return m_metrics; }

private:
    // Where the sums of one pair of type and level stand in the maps; null until the pair's first row.
    struct Sums {
        double* gigabytes = nullptr;
        double* operations = nullptr;
        double* elapsedTime = nullptr;
        double* time = nullptr;
    };

    bool accepts(const RowNode& row) const;
    void addRow(const sptr_t<RowNode>& row, double elapsedTime, double time);
    Sums& sumsOf(std::size_t operation, std::size_t level);

    sptr_t<IDataset> m_dataset;
    CMemoryLevelMetrics m_metrics;
    MetricRecipe m_recipe;
    std::vector<Sums> m_sums;  // by operation and level
    std::vector<double> m_rowTraffic;
};

// The metrics of a dataset; null for a null dataset.
std::shared_ptr<const CMemoryLevelMetrics> makeMemoryMetrics(const sptr_t<IDataset>& dataset,
                                                             const MetricRecipe& recipe);

namespace roofline {

// Int when there are strictly more integer than float operations, else Float; Float without metrics.
OperationsType getDominatingType(const std::shared_ptr<const CMemoryLevelMetrics>& metrics);
// True when no float work is measurable at the level: the default type is then Int (1), else Float (0).
bool checkDefaultFloatType(const std::shared_ptr<const CMemoryLevelMetrics>& metrics,
                           const std::string& level);

}  // namespace roofline

}  // namespace data_models2
