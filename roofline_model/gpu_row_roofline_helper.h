// The row strategy of a GPU result: a row is a kernel that ran on the device.
#pragma once

#include "roofline_model/operation_map.h"
#include "roofline_model/row_roofline_helper.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace data_models2 {

class GpuRowRooflineHelper final : public RowRooflineHelper {
public:
    // `operationMap`: what the row's instructions counted; without it no compute roof fits. `roofs` are those
    // of the device's configuration; of its outer memories only the device's own limits a row.
    GpuRowRooflineHelper(std::shared_ptr<const OperationMap> operationMap,
                         const generic_iterator_t<RoofItem>& roofs, const GpuDeviceProperties& device);

    static bool isKernel(const sptr_t<RowNode>& row);

    // Only kernels are, whatever metrics they have.
    bool isValid(bool totalMetricsAvailable) const override;
    bool areMemLevelMetricsCollected() const override { return true; }
    void findRoofs(std::vector<RoofItem>& memoryRoofs, std::vector<RoofItem>& computeRoofs) const override;
    unsigned getMemoryLevelNumber(MemoryLevel level) const override;
    ValueGetter getTrafficGetter(MemoryLevel level, bool useTotal) const override;
    void dumpInstructionMixSummary(rabbit::object& object) const override;
    std::vector<RooflineConclusion> findRooflineConclusions(const LimitingRoof& limitingRoof) const override;
    // The first bound that the row's issues name decides, where some roof limits the row at all: a roof of
    // the device, with its height at the row's intensity, or a bound without an id and a value, which carries
    // the text as its name and stands at the old height. A row of several children keeps its roof.
    void updateLimitingRoof(LimitingRoof& limitingRoof) override;
    // Appends the memories that don't limit the row, each id once.
    void extendMemoryRoofs(std::vector<RoofItem>& roofs) const override;

private:
    struct Bound;
    // Giga operations of the row.
    double countOf(OperationsType type) const;
    // The type of which the row has more.
    OperationsType operationsType() const;
    // Whether a memory roof belongs to a memory beyond the device's own.
    bool isForeignMemory(const RoofItem& roof) const;
    template <class Predicate>
    std::optional<RoofItem> findRoof(Predicate&& matches) const;
    const Bound* findBound() const;
    std::optional<RoofItem> findLimit(const Bound& bound) const;
    // At the roof's level, operations per byte; nothing when it isn't known.
    std::optional<double> findIntensity(MemoryLevel level) const;
    // What is lost of each cache line that moves.
    std::optional<RooflineConclusion> findCacheLineConclusion() const;

    generic_iterator_t<RoofItem> m_roofs;
    std::string m_deviceMemory;  // name of the device's last memory level
    std::shared_ptr<const OperationMap> m_operationMap;
};

}  // namespace data_models2
