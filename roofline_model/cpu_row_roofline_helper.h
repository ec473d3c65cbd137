// The row strategy of a CPU result.
#pragma once

#include "host_interfaces/host_functions.h"

#include "roofline_model/row_roofline_helper.h"

#include <memory>
#include <vector>

namespace data_models2 {

class CpuRowRooflineHelper final : public RowRooflineHelper {
public:
    // `memoryLevelCount`: caches and main memory that were measured, 1 when only the core's traffic was. The
    // threading record is copied: what a row changes in it stays with the row.
    CpuRowRooflineHelper(std::shared_ptr<IRoofManager> roofManager, InstructionMix instructionMix,
                         unsigned memoryLevelCount, const std::shared_ptr<RoofThreadingFeatures>& roofParam);

    void init(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) override;
    // A row that isn't innermost needs total metrics.
    bool isValid(bool totalMetricsAvailable) const override { return m_isInnermost || totalMetricsAvailable; }
    bool areMemLevelMetricsCollected() const override { return m_memoryLevelCount > 1; }
    void findRoofs(std::vector<RoofItem>& memoryRoofs, std::vector<RoofItem>& computeRoofs) const override;
    unsigned getMemoryLevelNumber(MemoryLevel level) const override;
    ValueGetter getTrafficGetter(MemoryLevel level, bool useTotal) const override;

    bool isInnermost() const { return m_isInnermost; }
    RoofThreadingFeatures getRoofParam() const { return *m_roofParam; }

private:
    bool findIsInnermost() const;
    bool isVectorized() const;
    RoofId findFloatRoof(bool vectorized) const;
    RoofId findIntRoof(bool vectorized) const;
    // The count of an instruction class; 0 when it is missing or no integer.
    std::int64_t mixCount(int column) const;

    bool m_isInnermost = false;
    std::shared_ptr<IRoofManager> m_roofManager;
    InstructionMix m_instructionMix;
    unsigned m_memoryLevelCount;
    std::shared_ptr<RoofThreadingFeatures> m_roofParam;
};

}  // namespace data_models2
