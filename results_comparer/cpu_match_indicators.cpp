#include "results_comparer/cpu_match_indicators.h"

#include "results_comparer/name_normaliser.h"
#include "results_comparer/prepared_indicator.h"
#include "results_comparer/row_readings.h"

namespace data_models2::results_comparer_algs::cpu_match_indicators {
namespace {

constexpr std::uint64_t kFunctionKind = 0x40000;  // what functions are told apart by

// Loops of which both are of the kind below match although their types differ.
bool isOfLoopKind(const RowNode& row, std::uint64_t type) {
    const auto has = [type](std::uint64_t bits) { return (type & bits) == bits; };
    const bool isTopVectorLoop = has(row_type::kVectorized | 0x80) && !row.getParent();
    const bool isPlain = (type & (row_type::kVectorized | 0x20 | 0x40)) == 0;
    return isTopVectorLoop || has(row_type::kLoopSubRow) || isPlain;
}

// Rows of one group match although their types differ; rows of none don't.
enum class TypeGroup : std::uint32_t { None, LoopOfKind, Function, FunctionOfKind };

TypeGroup groupOf(const RowNode& row, std::uint64_t type) {
    // Deliberate: two loops of which neither is of the kind are no match, unlike functions.
    if (isLoop(type)) return isOfLoopKind(row, type) ? TypeGroup::LoopOfKind : TypeGroup::None;
    return type & kFunctionKind ? TypeGroup::FunctionOfKind : TypeGroup::Function;
}

struct RowType {
    PropertyId type;
    TypeGroup group = TypeGroup::None;
};

struct CallCount {
    PropertyId count;
    bool isLoop;
};

}  // namespace

std::unique_ptr<IPreparedIndicator> NestingLevelsMatch::prepare(const RowLists& rows,
                                                                const IProgress& progress) const {
    return prepareProperty(rows, progress, 1.0,
                           [this](const sptr_t<RowNode>& row, Side side, PropertyIds& ids) {
                               const auto type = typeOf(row);
                               if (!type) return missingType(row);
                               unsigned long long level = 0;
                               if (!requireData(FieldId::NestingLevel, level, row, of(side)))
                                   return ids.missing(Lack::Value);
                               if (*type & row_type::kLoopSubRow && level != 0) --level;
                               return ids.of(static_cast<std::int64_t>(level));
                           });
}

std::unique_ptr<IPreparedIndicator> CallCountsMatch::prepare(const RowLists& rows,
                                                             const IProgress& progress) const {
    PropertyIds ids;
    return prepareIndicator(
        rows, progress, {1.0},
        [&](const sptr_t<RowNode>& row, Side side) -> CallCount {
            const auto type = typeOf(row);
            if (!type) return {missingType(row), false};
            return {readNumber<unsigned long long>(FieldId::CallCount, row, of(side), ids), isLoop(*type)};
        },
        // Deliberate: only two loops are passed over; a loop beside a function is judged.
        [](const CallCount& a, const CallCount& b) {
            return a.isLoop && b.isLoop ? MatchStatus::Invalid : matchProperties(a.count, b.count);
        });
}

std::unique_ptr<IPreparedIndicator> MangledNamesMatch::prepare(const RowLists& rows,
                                                               const IProgress& progress) const {
    return prepareProperty(rows, progress, 3.0,
                           [this](const sptr_t<RowNode>& row, Side side, PropertyIds& ids) {
                               std::string name;
                               if (!requireData(FieldId::MangledName, name, row, of(side)))
                                   return ids.missing(Lack::Value);
                               return ids.of(normaliseName(name));
                           });
}

std::unique_ptr<IPreparedIndicator> RowTypesMatch::prepare(const RowLists& rows,
                                                           const IProgress& progress) const {
    PropertyIds ids;
    return prepareIndicator(
        rows, progress, {1.0},
        [&](const sptr_t<RowNode>& row, Side) -> RowType {
            const auto type = typeOf(row);
            if (!type) return {missingType(row)};
            return {ids.of(static_cast<std::int64_t>(*type)), groupOf(*row, *type)};
        },
        [](const RowType& a, const RowType& b) {
            const bool isOneGroup = (a.group == b.group) & (a.group != TypeGroup::None);
            return isOneGroup ? MatchStatus::Match : matchProperties(a.type, b.type);
        });
}

std::unique_ptr<IPreparedIndicator> BUParentalPresenceMatch::prepare(const RowLists& rows,
                                                                     const IProgress& progress) const {
    return prepareProperty(rows, progress, 1.0, [](const sptr_t<RowNode>& row, Side, PropertyIds& ids) {
        return row ? ids.of(row->getParent() ? 1 : 0) : ids.missing(Lack::Row);
    });
}

}  // namespace data_models2::results_comparer_algs::cpu_match_indicators
