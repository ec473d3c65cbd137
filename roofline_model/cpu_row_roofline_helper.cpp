#include "roofline_model/cpu_row_roofline_helper.h"

#include "roofline_model/row_data_access.h"
#include "roofline_model/threading.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace data_models2 {

namespace {

constexpr auto kUnit = "roofline_model/cpu_row_roofline_helper";

// Classes of the instruction mix.
constexpr int kSinglePrecisionOps = 3;
constexpr int kVectorInstructions[]{11, 12, 49};
constexpr int kFmaInstructions = 74;

struct Traffic {
    MemoryLevel level;
    FieldId selfLoad, selfStore, totalLoad, totalStore;
};

constexpr auto kTraffic = std::to_array<Traffic>({
    {MemoryLevel::L1, FieldId::SelfL1Load, FieldId::SelfL1Store, FieldId::TotalL1Load, FieldId::TotalL1Store},
    {MemoryLevel::L2, FieldId::SelfL2Load, FieldId::SelfL2Store, FieldId::TotalL2Load, FieldId::TotalL2Store},
    {MemoryLevel::L3, FieldId::SelfL3Load, FieldId::SelfL3Store, FieldId::TotalL3Load, FieldId::TotalL3Store},
    {MemoryLevel::L4, FieldId::SelfL4Load, FieldId::SelfL4Store, FieldId::TotalL4Load, FieldId::TotalL4Store},
    {MemoryLevel::LastCache, FieldId::SelfL4Load, FieldId::SelfL4Store, FieldId::TotalL4Load,
     FieldId::TotalL4Store},
    {MemoryLevel::Dram, FieldId::SelfDramLoad, FieldId::SelfDramStore, FieldId::TotalDramLoad,
     FieldId::TotalDramStore},
});

// Only an integer counts: a text or a floating number is no flag and no code.
std::optional<std::int64_t> readInteger(FieldId field, const sptr_t<RowNode>& row,
                                        const sptr_t<IDataset>& dataset) {
    variant_t cell;
    if (!dataset || !dataset->getValue(row, dataset->getColumn(field), 0, cell) || !cell.isInteger())
        return {};
    return toInteger<long long>(cell);
}

}  // namespace

CpuRowRooflineHelper::CpuRowRooflineHelper(std::shared_ptr<IRoofManager> roofManager,
                                           InstructionMix instructionMix, unsigned memoryLevelCount,
                                           const std::shared_ptr<RoofThreadingFeatures>& roofParam)
    : m_roofManager(std::move(roofManager)),
      m_instructionMix(std::move(instructionMix)),
      m_memoryLevelCount(memoryLevelCount),
      m_roofParam(std::make_shared<RoofThreadingFeatures>(roofParam ? *roofParam : RoofThreadingFeatures())) {
    if (!m_roofManager) reportAssertion("m_roofManager", kUnit, __LINE__);
    if (!roofParam) reportAssertion("m_roofParam", kUnit, __LINE__);
}

void CpuRowRooflineHelper::init(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) {
    RowRooflineHelper::init(row, dataset);
    if (!m_row) reportAssertion("m_row", kUnit, __LINE__);
    if (!m_dataset) reportAssertion("m_dataset", kUnit, __LINE__);
    m_isInnermost = m_row && m_dataset && findIsInnermost();
}

bool CpuRowRooflineHelper::findIsInnermost() const {
    constexpr std::uint64_t kLoop = 0x4;
    constexpr std::uint64_t kSubRow = 0x8;  // of a loop: counted one level too deep
    const auto level = readInteger(FieldId::NestingLevel, m_row, m_dataset).value_or(0);
    const auto specification = m_row->getSpecification();
    if (!specification || !(specification->getRowType() & kLoop)) return level == 0;
    const auto inner = readInteger(FieldId::InnerNesting, m_row, m_dataset);
    if (!inner || *inner != 0) return false;
    return level < 2 || (level == 2 && specification->getRowType() & kSubRow);
}

std::int64_t CpuRowRooflineHelper::mixCount(int column) const {
    const auto found = m_instructionMix.find(column);
    return found != m_instructionMix.end() && found->second.isInteger() ? toInteger<long long>(found->second)
                                                                        : 0;
}

bool CpuRowRooflineHelper::isVectorized() const {
    return readInteger(FieldId::Vectorized, m_row, m_dataset).value_or(0) != 0 ||
           std::any_of(std::begin(kVectorInstructions), std::end(kVectorInstructions),
                       [this](int column) { return mixCount(column) > 0; });
}

RoofId CpuRowRooflineHelper::findFloatRoof(bool vectorized) const {
    if (!vectorized) return RoofId::ScalarAddPeak;
    const auto traits = checkData<std::string>(FieldId::VectorTraits, {}, m_row, m_dataset);
    const bool fma = mixCount(kFmaInstructions) >= 1 || traits.find("FMA") != std::string::npos;
    const bool isDouble = mixCount(kSinglePrecisionOps) < 1;
    if (fma) return isDouble ? RoofId::DpVectorFmaPeak : RoofId::SpVectorFmaPeak;
    return isDouble ? RoofId::DpVectorAddPeak : RoofId::SpVectorAddPeak;
}

RoofId CpuRowRooflineHelper::findIntRoof(bool vectorized) const {
    constexpr std::int64_t kInt64Code = 8;
    if (!vectorized) return RoofId::IntScalarAddPeak;
    if (readInteger(FieldId::MainDataType, m_row, m_dataset) == kInt64Code) return RoofId::Int64VectorAddPeak;
    const auto types = checkData<std::string>(FieldId::DataTypes, {}, m_row, m_dataset);
    const auto names = {"Int32", "Int16", "Int8"};
    const bool isNarrow = std::any_of(
        names.begin(), names.end(), [&](const char* name) { return types.find(name) != std::string::npos; });
    return isNarrow ? RoofId::Int32VectorAddPeak : RoofId::Int64VectorAddPeak;
}

void CpuRowRooflineHelper::findRoofs(std::vector<RoofItem>& memoryRoofs,
                                     std::vector<RoofItem>& computeRoofs) const {
    if (!m_roofManager) return;
    const bool vectorized = isVectorized();
    const RoofId floatRoof = findFloatRoof(vectorized);
    const RoofId intRoof = findIntRoof(vectorized);

    constexpr unsigned long long kMostThreads = std::numeric_limits<int>::max() - 1;
    const auto threads =
        std::min(checkData<unsigned long long>(FieldId::ThreadCount, 0, m_row, m_dataset), kMostThreads);
    m_roofParam->threadCount = roofline::raiseOddThreads(static_cast<int>(threads));
    const auto perspective =
        vectorized ? IRooflineInfo::Perspective::Vectorized : IRooflineInfo::Perspective::NotVectorized;
    const auto configuration =
        roof::getCpuRoofConfiguration(*m_roofParam, OperationsType::Mixed, perspective);
    for (auto roofs = m_roofManager->getRoofs(configuration); !roofs.isEnd(); ++roofs) {
        RoofItem roof = *roofs;
        if (roof::hasType(roof, RoofItem::Memory))
            memoryRoofs.push_back(std::move(roof));
        else if (roof::hasType(roof, RoofItem::Compute) && (roof.id == floatRoof || roof.id == intRoof))
            computeRoofs.push_back(std::move(roof));
    }
    std::stable_sort(memoryRoofs.begin(), memoryRoofs.end());
}

unsigned CpuRowRooflineHelper::getMemoryLevelNumber(MemoryLevel level) const {
    switch (level) {
        case MemoryLevel::L1:
        case MemoryLevel::L2:
        case MemoryLevel::L3:
        case MemoryLevel::L4:
        case MemoryLevel::PkgRam:
            return static_cast<unsigned>(level);
        case MemoryLevel::Dram:
            return m_memoryLevelCount;
        case MemoryLevel::LastCache:
            return m_memoryLevelCount - 1;
        default:
            return std::numeric_limits<unsigned>::max();
    }
}

ValueGetter CpuRowRooflineHelper::getTrafficGetter(MemoryLevel level, bool useTotal) const {
    const auto found = std::find_if(kTraffic.begin(), kTraffic.end(),
                                    [level](const Traffic& traffic) { return traffic.level == level; });
    if (found == kTraffic.end()) return nullptr;
    return useTotal ? sumGetter(found->totalLoad, found->totalStore)
                    : sumGetter(found->selfLoad, found->selfStore);
}

}  // namespace data_models2
