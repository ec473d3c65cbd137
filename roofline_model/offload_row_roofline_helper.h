// The row strategy of a projection: a row is a region of the program on the target device.
#pragma once

#include "roofline_model/row_roofline_helper.h"

#include <memory>
#include <vector>

namespace data_models2 {

class OffloadRowRooflineHelper final : public RowRooflineHelper {
public:
    // `singleSubDevice`: the roofs are those of one sub-device, else of the whole target. Without a roof
    // table there are none.
    OffloadRowRooflineHelper(std::shared_ptr<IRoofManager> roofManager, bool singleSubDevice);

    // A region needs operations of one type, with their performance and intensity, all above 0.
    bool isValid(bool totalMetricsAvailable) const override;
    bool areMemLevelMetricsCollected() const override { return true; }
    // Of the compute roofs those of the width, 32 or 64 bits, in which the row has more operations.
    void findRoofs(std::vector<RoofItem>& memoryRoofs, std::vector<RoofItem>& computeRoofs) const override;
    unsigned getMemoryLevelNumber(MemoryLevel level) const override;
    ValueGetter getTrafficGetter(MemoryLevel level, bool useTotal) const override;
    void dumpInstructionMixSummary(rabbit::object& object) const override;
    std::vector<RooflineConclusion> findRooflineConclusions(const LimitingRoof& limitingRoof) const override;

private:
    double countOf(FieldId field) const;

    std::shared_ptr<IRoofManager> m_roofManager;
    bool m_singleSubDevice;
};

}  // namespace data_models2
