// What indicators and checks read of a row.
#pragma once

#include "roofline_model/row_data_access.h"

#include "results_comparer/property_ids.h"

#include <optional>

namespace data_models2::results_comparer_algs {

// The bits of a row's type; none for a null row or one without a specification.
inline std::optional<std::uint64_t> typeOf(const sptr_t<RowNode>& row) {
    const auto specification = row ? row->getSpecification() : nullptr;
    if (!specification) return std::nullopt;
    return specification->getRowType();
}
inline bool isLoop(std::uint64_t type) { return (type & row_type::kLoop) != 0; }

// Why a row has no type.
inline PropertyId missingType(const sptr_t<RowNode>& row) {
    return PropertyIds::missing(row ? Lack::Specification : Lack::Row);
}

// A cell as a T, long long or unsigned long long.
template <class T>
PropertyId readNumber(FieldId field, const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset,
                      PropertyIds& ids) {
    T number = 0;
    if (!requireData(field, number, row, dataset)) return PropertyIds::missing(Lack::Value);
    return ids.of(static_cast<std::int64_t>(number));
}

}  // namespace data_models2::results_comparer_algs
