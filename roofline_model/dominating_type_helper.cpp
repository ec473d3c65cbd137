#include "roofline_model/dominating_type_helper.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/row_data_access.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/property_tree/ptree.hpp>

#include <algorithm>
#include <array>
#include <locale>
#include <optional>

namespace data_models2 {

namespace {

constexpr auto kUnit = "roofline_model/dominating_type_helper";

struct Code {
    std::int64_t code;
    int type;
};

// The compiler's code of a main data type.
constexpr std::array<Code, 4> kIntCodes{{{1, 1}, {2, 2}, {4, 3}, {8, 4}}};
constexpr std::array<Code, 2> kFloatCodes{{{16, 0}, {32, 1}}};
// Widths in bits.
constexpr std::array<Code, 7> kIntWidths{{{4, 0}, {8, 1}, {16, 2}, {32, 3}, {64, 4}, {128, 5}, {256, 6}}};
constexpr std::array<Code, 2> kFloatWidths{{{32, 0}, {64, 1}}};

// Instruction classes: fused multiply-adds count twice as float work, the others against it.
constexpr int kFmaInstructions = 74;
constexpr std::array<int, 3> kOtherInstructions{63, 64, 65};

template <std::size_t N>
int typeOf(const std::array<Code, N>& codes, std::optional<std::int64_t> code, int unknown) {
    for (const auto& entry : codes)
        if (code == entry.code) return entry.type;
    return unknown;
}

std::optional<std::int64_t> readMainType(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) {
    variant_t cell;
    if (!dataset || !dataset->getValue(row, dataset->getColumn(FieldId::MainDataType), 0, cell) ||
        !cell.isInteger())
        return {};
    return toInteger<long long>(cell);
}

// A row of less than this share of the program's time isn't asked for its operations.
constexpr double kSignificantShare = 0.01;
constexpr double kVectorizedShare = 0.05;
constexpr double kFloatShare = 0.3;

}  // namespace

bool DominatingTypeHelper::getDominatingOperationType(const sptr_t<RowNode>& row) const {
    const InstructionMix mix = getInstructionMixMap(row, m_dataset);
    // Unsigned, so that hostile counts wrap instead of being undefined.
    const auto count = [&mix](int column) -> std::uint64_t {
        const auto found = mix.find(column);
        if (found == mix.end() || !found->second.isInteger()) return 0;
        return static_cast<std::uint64_t>(toInteger<long long>(found->second));
    };
    std::uint64_t balance = 2 * count(kFmaInstructions);
    for (const int column : kOtherInstructions) balance -= count(column);
    return static_cast<std::int64_t>(balance) > 0;
}

// The compiler's main type stands before what the text of data types says.
DominatingTypeHelper::RowTypes DominatingTypeHelper::readTypes(const sptr_t<RowNode>& row) const {
    const auto code = readMainType(row, m_dataset);
    RowTypes types{.floatType = typeOf(kFloatCodes, code, kUnknownFloatType),
                   .intType = typeOf(kIntCodes, code, kUnknownIntType)};
    std::string text;
    if (!requireData<std::string>(FieldId::DataTypes, text, row, m_dataset)) return types;
    boost::to_lower(text, std::locale::classic());
    const auto widest = [&text](const char* base) { return isa_helpers::getTypeMaxWidth(text, base); };
    if (types.floatType == kUnknownFloatType)
        types.floatType = typeOf(kFloatWidths, widest("float"), kUnknownFloatType);
    if (types.intType == kUnknownIntType) types.intType = typeOf(kIntWidths, widest("int"), kUnknownIntType);
    return types;
}

variant_bag_t DominatingTypeHelper::handlePreVisit(const sptr_t<RowNode>& row, const variant_bag_t&,
                                                   bool& skipChildren) {
    if (!row) reportAssertion("row", kUnit, __LINE__);
    const auto specification = row ? row->getSpecification() : nullptr;
    skipChildren = specification && (specification->getRowType() & row_type::kHidden);
    if (!specification || skipChildren) return {};

    const double selfTime = checkData<double>(FieldId::SelfTime, 0.0, row, m_dataset);
    const bool isSignificant = m_totalTime > 0.0 && selfTime > kSignificantShare * m_totalTime;
    const bool isFloatRow = isSignificant && getDominatingOperationType(row);
    const bool isVector = (specification->getRowType() & row_type::kVectorized) && selfTime > 0.0;
    if (isVector)
        addVectorRow(selfTime, readTypes(row), isFloatRow);
    else
        addScalarRow(selfTime, readTypes(row), isFloatRow);
    return {};
}

variant_bag_t DominatingTypeHelper::handlePostVisit(const sptr_t<RowNode>&, const variant_bag_t&) {
    reportAssertion("false", kUnit, __LINE__);
    return {};
}

void DominatingTypeHelper::addVectorRow(double selfTime, RowTypes types, bool isFloatRow) {
    if (types.floatType == 0)
        (isFloatRow ? m_vectorFloat32Time : m_vectorOther32Time) += selfTime;
    else if (types.floatType == 1)
        (isFloatRow ? m_vectorFloat64Time : m_vectorOther64Time) += selfTime;
    else
        m_vectorUnknownTime += selfTime;
    if (types.intType < kUnknownIntType) m_vectorIntTime[types.intType] += selfTime;
}

void DominatingTypeHelper::addScalarRow(double selfTime, RowTypes types, bool isFloatRow) {
    if (isFloatRow && types.floatType == 0) m_scalarFloat32Time += selfTime;
    if (isFloatRow && types.floatType == 1) m_scalarFloat64Time += selfTime;
    if (types.intType < kUnknownIntType) m_scalarIntTime[types.intType] += selfTime;
}

DominatingTypesInfo DominatingTypeHelper::getProgramDominatingTypes() const {
    DominatingTypesInfo info;
    const double vectorTime = m_vectorFloat32Time + m_vectorFloat64Time + m_vectorOther32Time +
                              m_vectorOther64Time + m_vectorUnknownTime;
    info.vectorized = m_totalTime > 0.0 && vectorTime >= kVectorizedShare * m_totalTime;
    const double floatTime =
        m_scalarFloat32Time + m_scalarFloat64Time + m_vectorFloat32Time + m_vectorFloat64Time;
    // Deliberate: without vector code the answer is single precision, whatever the scalar rows work on.
    if (floatTime > kFloatShare * m_totalTime) {
        info.operationsType = 1;
        info.floatType = info.vectorized && m_vectorFloat32Time <= m_vectorFloat64Time;
    } else {
        info.operationsType = 0;
        info.floatType = info.vectorized && m_vectorOther32Time <= m_vectorOther64Time;
    }
    const IntTimes& intTimes = info.vectorized ? m_vectorIntTime : m_scalarIntTime;
    info.intType =
        static_cast<std::uint32_t>(std::max_element(intTimes.begin(), intTimes.end()) - intTimes.begin());
    return info;
}

}  // namespace data_models2
