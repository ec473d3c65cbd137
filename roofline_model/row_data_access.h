// Reading a cell of a row: what counts as present, how a value is converted, what stands in for a missing
// one.
#pragma once

#include "host_interfaces/model.h"

namespace data_models2 {

// T is double, unsigned long long, long long or std::string. A stored 0 counts as present.
//
// False, with `out` left alone, without a dataset or when the cell is missing; else true with the converted
// value. A number is converted to double or by `toInteger`, a text read as a number gives 0, a number read as
// a text gives an empty text.
template <class T>
bool requireData(FieldId field, T& out, const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset);

// The converted value, or `defaultValue` without a dataset, when the cell is missing or holds the other kind
// of value.
template <class T>
T checkData(FieldId field, const T& defaultValue, const sptr_t<RowNode>& row,
            const sptr_t<IDataset>& dataset);

// A number as an integer: an integer keeps its 64 bits, a floating number is truncated and clamped to the
// range, what is no number gives 0. T is long long or unsigned long long.
template <class T>
T toInteger(const variant_t& value);

}  // namespace data_models2
