#include "roofline_model/row_data_access.h"

#include <cmath>
#include <limits>
#include <type_traits>

namespace data_models2 {

namespace {

template <class T>
T convert(const variant_t& value) {
    if constexpr (std::is_same_v<T, std::string>)
        return std::string(value.text());
    else if constexpr (std::is_same_v<T, double>)
        return value.toDouble();
    else
        return toInteger<T>(value);
}

bool readCell(FieldId field, variant_t& cell, const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) {
    return dataset && dataset->getValue(row, dataset->getColumn(field), 0, cell);
}

}  // namespace

template <class T>
T toInteger(const variant_t& value) {
    if (value.isInteger()) {
        return value.kind() % 2 ? static_cast<T>(value.unsignedValue()) : static_cast<T>(value.signedValue());
    }
    const double number = value.toDouble();
    if (std::isnan(number)) return T{0};
    // The largest T rounds up to a double that is one above it.
    if (number >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
    if (number <= static_cast<double>(std::numeric_limits<T>::lowest()))
        return std::numeric_limits<T>::lowest();
    return static_cast<T>(number);
}

template <class T>
bool requireData(FieldId field, T& out, const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) {
    variant_t cell;
    if (!readCell(field, cell, row, dataset)) return false;
    out = convert<T>(cell);
    return true;
}

template <class T>
T checkData(FieldId field, const T& defaultValue, const sptr_t<RowNode>& row,
            const sptr_t<IDataset>& dataset) {
    variant_t cell;
    if (!readCell(field, cell, row, dataset)) return defaultValue;
    const bool fits = std::is_same_v<T, std::string> ? cell.isText() : cell.isNumber();
    return fits ? convert<T>(cell) : defaultValue;
}

#define OMBRIX_INSTANTIATE(T)                                                                   \
    template bool requireData<T>(FieldId, T&, const sptr_t<RowNode>&, const sptr_t<IDataset>&); \
    template T checkData<T>(FieldId, const T&, const sptr_t<RowNode>&, const sptr_t<IDataset>&);
OMBRIX_INSTANTIATE(double)
OMBRIX_INSTANTIATE(unsigned long long)
OMBRIX_INSTANTIATE(long long)
OMBRIX_INSTANTIATE(std::string)
#undef OMBRIX_INSTANTIATE

template unsigned long long toInteger<unsigned long long>(const variant_t&);
template long long toInteger<long long>(const variant_t&);

}  // namespace data_models2
