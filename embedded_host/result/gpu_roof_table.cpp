// Chooses a device's roofs and scales them by sub-devices.
#include "embedded_host/result/gpu_roof_table.h"

#include "host_interfaces/host_functions.h"

#include "embedded_host/result/own_roofs.h"
#include "embedded_host/services/roof_configuration.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

// Whether `a` is the better base for a roof of `subDevices`: up to the number the larger is better, else the
// smaller.
bool isNearer(const MeasuredRoof& a, const MeasuredRoof& b, int subDevices) {
    const int first = a.features.packageCount;
    const int second = b.features.packageCount;
    const bool fits = first <= subDevices;
    if (fits != (second <= subDevices)) return fits;
    return fits ? first > second : first < second;
}

class GpuRoofTable final : public IOwnRoofsTable {
public:
    GpuRoofTable(std::shared_ptr<const Machine> machine, int subDevices)
        : m_machine(std::move(machine)), m_subDevices(subDevices), m_own(m_machine) {}

    generic_iterator_t<RoofItem> getRoofs(const std::string& configuration) const override {
        GpuRoofConfiguration wanted;  // for an empty text: everything
        if (!configuration.empty()) {
            const auto parsed = parseGpuRoofConfiguration(configuration);
            if (!parsed) return {};
            wanted = *parsed;
        }
        const auto key = keyOf(wanted.usage);
        auto roofs = selectGpuRoofs(*m_machine, key.packageCount);
        m_own.apply(roofs, key);
        if (wanted.operations == OperationsType::Float || wanted.operations == OperationsType::Int) {
            std::erase_if(roofs, [&](const RoofItem& roof) {
                return !(roof.typeBits & RoofItem::Memory) &&
                       roof::getOperationsType(roof) != wanted.operations;
            });
        }
        return makeIterator(std::move(roofs));
    }

    bool setCustomRoofValues(const std::map<RoofId, std::uint64_t>& values,
                             const std::string& configuration) override {
        const auto parsed = parseGpuRoofConfiguration(configuration);
        return parsed && m_own.set(values, keyOf(parsed->usage));
    }
    bool clearCustomRoofValues(const std::string& configuration) override {
        const auto parsed = parseGpuRoofConfiguration(configuration);
        return parsed && m_own.clear(keyOf(parsed->usage));
    }
    std::string fault() const override { return m_own.fault(); }

private:
    // Own values are told apart by the number of sub-devices alone.
    RoofThreadingFeatures keyOf(TileUsage usage) const {
        return {.threadCount = 1, .packageCount = usage == TileUsage::Single ? 1 : m_subDevices};
    }

    const std::shared_ptr<const Machine> m_machine;
    const int m_subDevices;
    OwnRoofs m_own;
};

}  // namespace

std::vector<RoofItem> selectGpuRoofs(const Machine& machine, int subDevices) {
    std::map<RoofId, const MeasuredRoof*> bases;
    for (const auto& roof : machine.roofs) {
        auto& base = bases[roof.item.id];
        if (!base || isNearer(roof, *base, subDevices)) base = &roof;
    }
    std::vector<RoofItem> result;
    for (const auto& [id, base] : bases) {
        auto item = base->item;
        const int measured = base->features.packageCount;
        if (measured != subDevices && item.memoryLevel != MemoryLevel::Xli) {
            const double value = std::round(static_cast<double>(item.value) * subDevices / measured);
            item.value = static_cast<std::uint64_t>(std::clamp(value, 1.0, 1e19));
        }
        result.push_back(std::move(item));
    }
    return result;
}

std::shared_ptr<IRoofManager> makeGpuRoofTable(std::shared_ptr<const Machine> machine, int subDevices) {
    return std::make_shared<GpuRoofTable>(std::move(machine), subDevices);
}

}  // namespace embedded_host
