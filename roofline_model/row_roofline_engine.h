// Where one row stands on the roofline chart and which roof limits it.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "roofline_model/row_roofline_helper.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace data_models2 {

namespace roofline::helpers {
class BottleneckWidget;
}

// All work is done in the constructor. A point is taken as the row stores it: performance in giga operations
// per second, intensity in operations per byte; total data where they are there, else self data.
class CRowRooflineEngine final : public IRowRooflineInfo,
                                 public std::enable_shared_from_this<CRowRooflineEngine> {
public:
    // A null argument is asserted and gives an engine without a point.
    CRowRooflineEngine(sptr_t<RowNode> row, sptr_t<IDataset> dataset,
                       std::shared_ptr<IRowRooflineHelper> helper);

    RooflinePoint getPoint() const override { return m_point; }
    std::vector<RooflinePoint> getMemLevelPoints() const override { return m_memLevelPoints; }
    std::vector<RoofItem> getMemoryRoofs() const override { return m_memoryRoofs; }
    RoofItem getComputeRoof(OperationsType type) const override;
    LimitingRoof getLimitingRoof(bool total) const override {
        return total ? m_limitingRoof : m_memLimitingRoof;
    }
    bool isValid() const override;
    variant_bag_t getRooflineVariantBag() const override;
    variant_bag_t getMemoryMetricsVariantBag() const override;
    variant_bag_t getBotteleneckVariantBag(std::vector<std::string> messages) const override;
    bool areTotalMetricsAvailable() const override { return m_totalMetricsAvailable; }
    bool areMemLevelMetricsAvailable() const override { return !m_memLevelData.empty(); }
    std::vector<MemoryValue> getMemoryValues(RooflineMemoryValuesType type) const override;
    // Empty when no shared pointer holds the engine.
    std::string getRooflineData() const override;
    void extendMemoryRoofs(std::vector<RoofItem>& roofs) const override;

    // What limits the row at its memory levels, drawn and told; null only when the work failed.
    std::shared_ptr<roofline::helpers::BottleneckWidget> getBottleneck() const;
    // Empty when the row isn't valid.
    std::vector<RooflineConclusion> getRooflineConclusions() const;
    const sptr_t<RowNode>& row() const { return m_row; }
    const sptr_t<IDataset>& dataset() const { return m_dataset; }

private:
    struct Data {
        double value = 0.0;
        bool present = false;
    };
    enum class DataType {
        FloatPerformance = 0,
        FloatAi = 1,
        FloatOps = 2,
        IntPerformance = 3,
        IntAi = 4,
        IntOps = 5,
        Traffic = 6,  // at a memory level
    };
    using FieldTable = std::map<DataType, FieldId>;

    static const FieldTable& fields(bool total);
    void initData();
    void readFields(const FieldTable& table);
    bool has(DataType performance, DataType ai) const;
    void calcPoint();
    void setPoint(DataType performance, DataType ai, OperationsType type);
    void findLimitingRoof();
    const RoofItem* findComputeRoof(OperationsType type) const;

    void initMemLevelData();
    void readLevel(MemoryLevel level, DataType type, const ValueGetter& getter);
    void calcMemLevelPoints();
    void initMemoryData();
    void findLimitingRoofForMemLevelPoints();
    const RoofItem* findMemoryRoof(MemoryLevel level) const;

    sptr_t<RowNode> m_row;
    sptr_t<IDataset> m_dataset;
    RooflinePoint m_point;
    std::vector<RooflinePoint> m_memLevelPoints;
    std::vector<RoofItem> m_memoryRoofs;
    std::vector<RoofItem> m_computeRoofs;
    LimitingRoof m_limitingRoof;
    LimitingRoof m_memLimitingRoof;
    std::map<RooflineMemoryValuesType, std::vector<MemoryValue>> m_memoryValues;
    std::shared_ptr<IRowRooflineHelper> m_helper;
    std::map<DataType, Data> m_data;
    std::map<MemoryLevel, std::map<DataType, Data>> m_memLevelData;
    double m_maxTraffic = 0.0;
    bool m_totalMetricsAvailable = false;
    std::vector<RooflineConclusion> m_conclusions;
};

}  // namespace data_models2
