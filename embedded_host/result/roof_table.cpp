// Chooses and scales roofs.
#include "embedded_host/result/roof_table.h"

#include "host_interfaces/host_functions.h"

#include "embedded_host/result/own_roofs.h"
#include "embedded_host/services/roof_configuration.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;
using Strategy = RoofThreadingFeatures::Strategy;
using Roofs = std::vector<const MeasuredRoof*>;

bool isPrivate(const RoofItem& roof) {
    return (roof.typeBits & RoofItem::Compute) || roof.memoryLevel == MemoryLevel::L1 ||
           roof.memoryLevel == MemoryLevel::L2;
}

// Keeps the roofs that `predicate` holds for; all of them when it holds for none.
template <class Predicate>
Roofs prefer(const Roofs& roofs, Predicate predicate) {
    Roofs kept;
    std::copy_if(roofs.begin(), roofs.end(), std::back_inserter(kept), predicate);
    return kept.empty() ? roofs : kept;
}

// What the roofs are wanted for.
struct Demand {
    int threads;
    int packages;
    int cores;    // physical ones; 0: unknown
    bool scales;  // whether another thread count's value may stand in scaled
};

// `roofs` are the measurements of one roof.
RoofItem chooseRoof(const Roofs& roofs, const Demand& demand) {
    const auto near =
        prefer(roofs, [&](auto* roof) { return roof->features.packageCount <= demand.packages; });
    const auto isLess = [](auto* a, auto* b) {
        return std::pair(a->features.threadCount, a->features.packageCount) <
               std::pair(b->features.threadCount, b->features.packageCount);
    };
    const auto fits = [&](auto* roof) { return roof->features.threadCount <= demand.threads; };
    const bool anyFits = std::any_of(near.begin(), near.end(), fits);
    const auto candidates = prefer(near, fits);
    const auto* const base = anyFits ? *std::max_element(candidates.begin(), candidates.end(), isLess)
                                     : *std::min_element(candidates.begin(), candidates.end(), isLess);
    auto item = base->item;
    const int measured = base->features.threadCount;
    if (!demand.scales || measured == demand.threads) return item;

    int usable = demand.cores > 0 ? std::min(demand.threads, demand.cores) : demand.threads;
    if (anyFits) usable = std::max(usable, measured);
    double value = std::round(static_cast<double>(item.value) * usable / measured);
    if (!isPrivate(item)) {
        if (!anyFits) return item;  // few threads may well fill an outer level
        const auto* const largest = *std::max_element(
            near.begin(), near.end(), [](auto* a, auto* b) { return a->item.value < b->item.value; });
        value = std::min(value, static_cast<double>(largest->item.value));
    }
    item.value = static_cast<std::uint64_t>(std::clamp(value, 1.0, 1e19));
    return item;
}

class RoofTable final : public IOwnRoofsTable {
public:
    RoofTable(std::shared_ptr<const Machine> machine, int usedThreads)
        : m_machine(std::move(machine)), m_usedThreads(usedThreads), m_own(m_machine) {}

    generic_iterator_t<RoofItem> getRoofs(const std::string& configuration) const override {
        RoofConfiguration wanted;  // for an empty text: everything
        wanted.perspective = IRooflineInfo::Perspective::NotVectorized;
        wanted.features = {.threadCount = m_usedThreads, .packageCount = std::max(1, m_machine->packages)};
        if (!configuration.empty()) {
            const auto parsed = parse(configuration);
            if (!parsed) return {};
            wanted = *parsed;
        }
        auto roofs = selectRoofs(*m_machine, wanted.features);
        m_own.apply(roofs, wanted.features);
        std::erase_if(roofs, [&](const RoofItem& roof) { return !isShown(roof, wanted); });
        return makeIterator(std::move(roofs));
    }

    bool setCustomRoofValues(const std::map<RoofId, std::uint64_t>& values,
                             const std::string& configuration) override {
        const auto parsed = parse(configuration);
        return parsed && m_own.set(values, parsed->features);
    }
    bool clearCustomRoofValues(const std::string& configuration) override {
        const auto parsed = parse(configuration);
        return parsed && m_own.clear(parsed->features);
    }
    std::string fault() const override { return m_own.fault(); }

private:
    std::optional<RoofConfiguration> parse(const std::string& configuration) const {
        auto parsed = parseCpuRoofConfiguration(configuration);
        if (parsed && parsed->features.threadCount <= 0) parsed->features.threadCount = m_usedThreads;
        return parsed;
    }
    static bool isShown(const RoofItem& roof, const RoofConfiguration& wanted) {
        if ((roof.typeBits & RoofItem::OnlyNotVectorized) &&
            wanted.perspective != IRooflineInfo::Perspective::NotVectorized) {
            return false;
        }
        const bool isOfOneType =
            wanted.operations == OperationsType::Float || wanted.operations == OperationsType::Int;
        if (!isOfOneType || (roof.typeBits & RoofItem::Memory)) return true;
        return roof::getOperationsType(roof) == wanted.operations;
    }

    const std::shared_ptr<const Machine> m_machine;
    const int m_usedThreads;
    OwnRoofs m_own;
};

}  // namespace

std::vector<RoofItem> selectRoofs(const Machine& machine, const RoofThreadingFeatures& features) {
    const bool isSingle = features.strategy == Strategy::SingleThread;
    const auto isMarked = [](const auto& roof) { return roof.features.strategy == Strategy::SingleThread; };
    const bool useMarked = isSingle && std::any_of(machine.roofs.begin(), machine.roofs.end(), isMarked);

    std::map<std::pair<RoofId, std::uint64_t>, Roofs> measurements;
    for (const auto& roof : machine.roofs) {
        if (isMarked(roof) != useMarked) continue;
        measurements[{roof.item.id, roof.item.typeBits & RoofItem::SingleNode}].push_back(&roof);
    }

    const int threads = std::max(1, features.threadCount);
    const Demand demand{.threads = isSingle && !useMarked ? 1 : threads,
                        .packages = features.packageCount,
                        .cores = machine.physicalCores,
                        .scales = !useMarked};
    std::vector<RoofItem> result;
    for (const auto& [key, roofs] : measurements) {
        result.push_back(chooseRoof(roofs, demand));
    }
    return result;
}

std::shared_ptr<IRoofManager> makeRoofTable(std::shared_ptr<const Machine> machine, int usedThreads) {
    return std::make_shared<RoofTable>(std::move(machine), usedThreads);
}

}  // namespace embedded_host
