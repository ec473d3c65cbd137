// What the row engine must be told about a kind of analysis.
#pragma once

#include "host_interfaces/model.h"

#include "roofline_model/rabbit.h"
#include "roofline_model/unified/value_getters.h"

#include <memory>
#include <vector>

namespace data_models2 {

// The strategy of one row: where its roofs come from, how its memory levels are ordered, what their traffic
// is, what makes the row acceptable. Not shared between engines.
class IRowRooflineHelper {
public:
    virtual ~IRowRooflineHelper() = default;
    // Comes first.
    virtual void init(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) = 0;
    virtual bool isValid(bool totalMetricsAvailable) const = 0;
    virtual bool areMemLevelMetricsCollected() const = 0;
    // Fills the roofs that apply to the row; the memory roofs ascending by value.
    virtual void findRoofs(std::vector<RoofItem>& memoryRoofs, std::vector<RoofItem>& computeRoofs) const = 0;
    // The level's position, ascending from the core; the largest number for a level that isn't known.
    virtual unsigned getMemoryLevelNumber(MemoryLevel level) const = 0;
    // The level's traffic in gigabytes; null when it has none.
    virtual ValueGetter getTrafficGetter(MemoryLevel level, bool useTotal) const = 0;
    // Adds the row's instruction mix.
    virtual void dumpInstructionMixSummary(rabbit::object& object) const = 0;
    virtual std::vector<RooflineConclusion> findRooflineConclusions(
        const LimitingRoof& limitingRoof) const = 0;
    // May put another bound in the place of the roof that limits the memory-level points.
    virtual void updateLimitingRoof(LimitingRoof& limitingRoof) = 0;
    virtual void extendMemoryRoofs(std::vector<RoofItem>& roofs) const = 0;
};

// Holds the row; what only some kinds have does nothing here.
class RowRooflineHelper : public IRowRooflineHelper {
public:
    void init(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) override {
        m_row = row;
        m_dataset = dataset;
    }
    void dumpInstructionMixSummary(rabbit::object&) const override {}
    std::vector<RooflineConclusion> findRooflineConclusions(const LimitingRoof&) const override { return {}; }
    void updateLimitingRoof(LimitingRoof&) override {}
    void extendMemoryRoofs(std::vector<RoofItem>&) const override {}

protected:
    sptr_t<RowNode> m_row;
    sptr_t<IDataset> m_dataset;
};

}  // namespace data_models2
