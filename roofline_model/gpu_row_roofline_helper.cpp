#include "roofline_model/gpu_row_roofline_helper.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/chart_widgets.h"
#include "roofline_model/compute_roofs.h"
#include "roofline_model/instruction_mix_summary.h"
#include "roofline_model/logging.h"
#include "roofline_model/roof_names.h"
#include "roofline_model/row_data_access.h"
#include "roofline_model/translation.h"
#include "roofline_model/unified/gpu_levels.h"

#include <boost/property_tree/ptree.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>

namespace data_models2 {

namespace {

constinit const roofline::LogChannel kLog{"gpu_row_roofline_helper"};
constexpr auto kUnit = "roofline_model/gpu_row_roofline_helper";
constexpr double kGiga = 1e9;

// The levels at which a kernel has a point, and their positions from the core.
struct Level {
    MemoryLevel level;
    unsigned number;
};

constexpr auto kLevels = std::to_array<Level>({
    {MemoryLevel::L3, 1},
    {MemoryLevel::Slm, 2},
    // Deliberate: equal. A device has one path to its last memory, whichever that is.
    {MemoryLevel::Dram, 3},
    {MemoryLevel::Xli, 3},
    {MemoryLevel::Hbm, 3},
});

// What a bound means for the kernel.
struct Verdict {
    BoundCategory category;
    const char* key;
    const char* attribute;  // holds the bound's name
    const char* advice = nullptr;
    bool asksForCacheLines = false;
};

constexpr auto kVerdicts = std::to_array<Verdict>({
    {BoundCategory::Compute, "rec_compute_bound", "limitingRoof"},
    {BoundCategory::NearMemory, "rec_memory_bound", "limitingRoof", "rec_increase_ai"},
    {BoundCategory::FarCache, "rec_memory_bound", "limitingRoof", "rec_increase_ai", true},
    {BoundCategory::MainMemory, "rec_memory_bound", "limitingRoof", "rec_cache_locality"},
    {BoundCategory::Other, "rec_other_bound", "offloadBoundedBy"},
});

const Level* findLevel(MemoryLevel level) {
    const auto found = std::find_if(kLevels.begin(), kLevels.end(),
                                    [level](const Level& entry) { return entry.level == level; });
    return found == kLevels.end() ? nullptr : &*found;
}

// None for a level that devices lack.
FieldId trafficField(MemoryLevel level) {
    const GpuLevel* found =
        findGpuLevel(roofline::helpers::getTrafficLevelName(level, TargetDeviceType::Gpu));
    return found ? found->traffic : FieldId::None;
}

template <class Predicate>
void appendRoofs(std::vector<RoofItem>& to, generic_iterator_t<RoofItem> roofs, Predicate&& matches) {
    for (; !roofs.isEnd(); ++roofs)
        if (RoofItem roof = *roofs; matches(roof)) to.push_back(std::move(roof));
}

bool isMemory(const RoofItem& roof) { return roof::hasType(roof, RoofItem::Memory); }

bool isCompute(const RoofItem& roof, OperationsType type) {
    return !isMemory(roof) && roof::hasType(roof, RoofItem::Compute) && roof::getOperationsType(roof) == type;
}

}  // namespace

// What an analysis may name as a row's bound.
struct GpuRowRooflineHelper::Bound {
    enum class Kind { Compute, Memory, NoRoof };

    std::string_view issue;
    Kind kind = Kind::NoRoof;
    MemoryLevel level = MemoryLevel::None;  // of a memory
};

GpuRowRooflineHelper::GpuRowRooflineHelper(std::shared_ptr<const OperationMap> operationMap,
                                           const generic_iterator_t<RoofItem>& roofs,
                                           const GpuDeviceProperties& device)
    : m_roofs(roofs),
      m_deviceMemory(roofline_helpers::getGpuMemoryRooflineType(device.memoryType)),
      m_operationMap(std::move(operationMap)) {}

bool GpuRowRooflineHelper::isValid(bool /*totalMetricsAvailable*/) const {
    if (!m_row) reportAssertion("m_row", kUnit, __LINE__);
    if (!m_dataset) reportAssertion("m_dataset", kUnit, __LINE__);
    return isKernel(m_row);
}

bool GpuRowRooflineHelper::isKernel(const sptr_t<RowNode>& row) {
    const auto specification = row ? row->getSpecification() : nullptr;
    return specification && (specification->getRowType() & row_type::kGpuTask);
}

double GpuRowRooflineHelper::countOf(OperationsType type) const {
    const FieldId field = type == OperationsType::Int ? FieldId::SelfIntOps : FieldId::SelfFloatOps;
    return checkData<double>(field, 0.0, m_row, m_dataset);
}

OperationsType GpuRowRooflineHelper::operationsType() const {
    return countOf(OperationsType::Float) < countOf(OperationsType::Int) ? OperationsType::Int
                                                                         : OperationsType::Float;
}

bool GpuRowRooflineHelper::isForeignMemory(const RoofItem& roof) const {
    constexpr std::array kOuterMemories{RoofId::DramBandwidth, RoofId::DeviceHbmBandwidth,
                                        RoofId::XliBandwidth};
    if (std::find(kOuterMemories.begin(), kOuterMemories.end(), roof.id) == kOuterMemories.end())
        return false;
    return roofline_helpers::getMemoryRooflineType(roof.memoryLevel, TargetDeviceType::Gpu) != m_deviceMemory;
}

void GpuRowRooflineHelper::findRoofs(std::vector<RoofItem>& memoryRoofs,
                                     std::vector<RoofItem>& computeRoofs) const {
    appendRoofs(memoryRoofs, m_roofs,
                [this](const RoofItem& roof) { return isMemory(roof) && !isForeignMemory(roof); });
    std::stable_sort(memoryRoofs.begin(), memoryRoofs.end());
    for (const OperationsType type : {OperationsType::Float, OperationsType::Int}) {
        std::vector<RoofItem> roofs;
        appendRoofs(roofs, m_roofs, [type](const RoofItem& roof) { return isCompute(roof, type); });
        RoofItem roof = roofline::findComputeRoof(m_operationMap, std::move(roofs), countOf(type));
        if (isCompute(roof, type)) computeRoofs.push_back(std::move(roof));
    }
}

unsigned GpuRowRooflineHelper::getMemoryLevelNumber(MemoryLevel level) const {
    const Level* found = findLevel(level);
    return found ? found->number : std::numeric_limits<unsigned>::max();
}

ValueGetter GpuRowRooflineHelper::getTrafficGetter(MemoryLevel level, bool /*useTotal*/) const {
    return findLevel(level) ? defGetter(trafficField(level)) : nullptr;
}

void GpuRowRooflineHelper::dumpInstructionMixSummary(rabbit::object& object) const {
    roofline::summary::dumpInstructionMixSummary(object, m_operationMap);
}

void GpuRowRooflineHelper::extendMemoryRoofs(std::vector<RoofItem>& roofs) const {
    appendRoofs(roofs, m_roofs, [&](const RoofItem& roof) {
        return isMemory(roof) && isForeignMemory(roof) &&
               std::none_of(roofs.begin(), roofs.end(),
                            [&roof](const RoofItem& present) { return present.id == roof.id; });
    });
}

template <class Predicate>
std::optional<RoofItem> GpuRowRooflineHelper::findRoof(Predicate&& matches) const {
    for (auto roofs = m_roofs; !roofs.isEnd(); ++roofs)
        if (const RoofItem roof = *roofs; matches(roof)) return roof;
    return {};
}

const GpuRowRooflineHelper::Bound* GpuRowRooflineHelper::findBound() const {
    using enum Bound::Kind;
    static constexpr auto kBounds = std::to_array<Bound>({
        {"Compute", Compute},
        {"L1_BW", Memory, MemoryLevel::L1},
        {"SLM_BW", Memory, MemoryLevel::Slm},
        {"L2_BW", Memory, MemoryLevel::L2},
        {"L3_BW", Memory, MemoryLevel::L3},
        {"XLI_BW", Memory, MemoryLevel::Xli},
        {"DRAM_BW", Memory, MemoryLevel::Dram},
        {"HBM_BW", Memory, MemoryLevel::Hbm},
        {"Trip_Count"},
        {"Dependency"},
        {"Kernel_Decomposition"},
        {"Data_Transfer"},
        {"Invoke_Tax"},
        {"Transfer_Tax"},
        {"Launch_Tax"},
        {"Global_Atomic"},
        {"Local_Atomic"},
        {"Latencies"},
        // Deliberate: these levels have no roof on a device.
        {"L4_BW"},
        {"LLC_BW"},
        {"EDRAM_BW"},
    });
    const variant_bag_t issues = issue_helpers::getRowIssues(m_row);
    const auto boundedBy = issues.find("bounded_by");
    if (boundedBy == issues.not_found()) return nullptr;
    for (const auto& [name, item] : boundedBy->second) {
        const variant_t& issue = item.data();
        const auto found = std::find_if(kBounds.begin(), kBounds.end(),
                                        [&](const Bound& bound) { return bound.issue == issue.text(); });
        if (found != kBounds.end()) return &*found;
    }
    return nullptr;
}

// Of the compute roofs the one that fits the row goes before the first one of the device.
std::optional<RoofItem> GpuRowRooflineHelper::findLimit(const Bound& bound) const {
    if (bound.kind == Bound::Kind::Memory)
        return findRoof(
            [&bound](const RoofItem& roof) { return isMemory(roof) && roof.memoryLevel == bound.level; });
    std::vector<RoofItem> memoryRoofs, computeRoofs;
    findRoofs(memoryRoofs, computeRoofs);
    const auto own =
        std::find_if(computeRoofs.begin(), computeRoofs.end(),
                     [type = operationsType()](const RoofItem& roof) { return isCompute(roof, type); });
    if (own != computeRoofs.end()) return *own;
    return findRoof([](const RoofItem& roof) { return roof::hasType(roof, RoofItem::Compute); });
}

std::optional<double> GpuRowRooflineHelper::findIntensity(MemoryLevel level) const {
    constexpr double kMeasurable = 1e-12;
    const double traffic = checkData<double>(trafficField(level), 0.0, m_row, m_dataset);
    const double intensity = countOf(operationsType()) / traffic;
    if (!(traffic > kMeasurable && intensity > kMeasurable) || !std::isfinite(intensity)) return {};
    return intensity;
}

void GpuRowRooflineHelper::updateLimitingRoof(LimitingRoof& limitingRoof) {
    if (limitingRoof.boundCategory == BoundCategory::None) return;
    auto children = dataset_helpers::getChildren(m_row);
    if (!(++children).isEnd()) return;
    const Bound* bound = findBound();
    if (!bound) return;
    kLog.debug([&](std::ostream& out) { out << limitingRoof.name << " gives way to " << bound->issue; });
    const double height = limitingRoof.limitValue;
    if (bound->kind == Bound::Kind::NoRoof) {
        limitingRoof = {};
        limitingRoof.name = bound->issue;
        limitingRoof.limitValue = height;
        limitingRoof.boundCategory = BoundCategory::Other;
        return;
    }
    const auto roof = findLimit(*bound);
    if (!roof) return;
    const double peak = static_cast<double>(roof->value) / kGiga;
    if (bound->kind == Bound::Kind::Compute) {
        limitingRoof = LimitingRoof(*roof, peak);
        return;
    }
    const auto intensity = findIntensity(roof->memoryLevel);
    limitingRoof = LimitingRoof(*roof, intensity ? peak * *intensity : height);
}

std::optional<RooflineConclusion> GpuRowRooflineHelper::findCacheLineConclusion() const {
    constexpr int kWellUsed = 75;
    const double share = checkData<double>(FieldId::CacheLineUtilization, 0.0, m_row, m_dataset);
    const int percent = roofline::helpers::wholePercent(share, 1.0);
    if (percent < 1 || percent >= kWellUsed) return {};
    // Deliberate: the attribute's spelling is part of the interface.
    return RooflineConclusion(
        "rec_cache_line_utilization",
        {{"cacheLineUtilizaion", int2str(percent) + roofline::translate("roofline_percent_measure")}});
}

std::vector<RooflineConclusion> GpuRowRooflineHelper::findRooflineConclusions(
    const LimitingRoof& limitingRoof) const {
    const auto found = std::find_if(kVerdicts.begin(), kVerdicts.end(), [&](const Verdict& verdict) {
        return verdict.category == limitingRoof.boundCategory;
    });
    if (found == kVerdicts.end()) return {};
    std::vector<RooflineConclusion> result{
        RooflineConclusion(found->key, {{found->attribute, limitingRoof.name}})};
    if (found->advice) result.push_back(RooflineConclusion(found->advice));
    auto cacheLines = found->asksForCacheLines ? findCacheLineConclusion() : std::nullopt;
    if (cacheLines) result.push_back(std::move(*cacheLines));
    return result;
}

}  // namespace data_models2
