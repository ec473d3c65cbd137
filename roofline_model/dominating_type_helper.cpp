#include "roofline_model/dominating_type_helper.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/row_data_access.h"

#include <boost/algorithm/string/case_conv.hpp>

#include <array>
#include <locale>
#include <optional>

namespace data_models2 {

namespace {

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

std::optional<std::int64_t> maxWidth(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset,
                                     const char* base) {
    std::string types;
    if (!requireData<std::string>(FieldId::DataTypes, types, row, dataset)) return {};
    return isa_helpers::getTypeMaxWidth(boost::to_lower_copy(types, std::locale::classic()), base);
}

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

int DominatingTypeHelper::getDominatingIntType(const sptr_t<RowNode>& row) const {
    const int type = getMainIntTypeFromCompiler(row);
    return type == kUnknownIntType ? getMaxIntWidthStaticAnalysis(row) : type;
}

int DominatingTypeHelper::getDominatingFloatType(const sptr_t<RowNode>& row) const {
    const int type = getMainFloatTypeFromCompiler(row);
    return type == kUnknownFloatType ? getMaxFloatWidthStaticAnalysis(row) : type;
}

int DominatingTypeHelper::getMainIntTypeFromCompiler(const sptr_t<RowNode>& row) const {
    return typeOf(kIntCodes, readMainType(row, m_dataset), kUnknownIntType);
}

int DominatingTypeHelper::getMainFloatTypeFromCompiler(const sptr_t<RowNode>& row) const {
    return typeOf(kFloatCodes, readMainType(row, m_dataset), kUnknownFloatType);
}

int DominatingTypeHelper::getMaxIntWidthStaticAnalysis(const sptr_t<RowNode>& row) const {
    return typeOf(kIntWidths, maxWidth(row, m_dataset, "int"), kUnknownIntType);
}

int DominatingTypeHelper::getMaxFloatWidthStaticAnalysis(const sptr_t<RowNode>& row) const {
    return typeOf(kFloatWidths, maxWidth(row, m_dataset, "float"), kUnknownFloatType);
}

}  // namespace data_models2
