// Expressions over the columns of a row: trees that are built once, bound to a dataset and read for many
// rows.
#pragma once

#include "host_interfaces/model.h"

#include <memory>
#include <string>
#include <vector>

namespace data_models2 {

// A tree is bound to one dataset by `init`, read with the same dataset by `get`, and unbound by `deInit`.
// Binding writes into the tree: one thread, one pass at a time. Subtrees may be shared, so both may come more
// than once.
//
// `get` never fails on bad data: a missing column or cell, or a text where a number is needed, yields an
// empty variant. A computed number is of kind double, a computed text of kind text.
class IValueGetter {
public:
    virtual ~IValueGetter() = default;
    virtual void init(const sptr_t<IDataset>& dataset) = 0;
    // Whether all columns were found.
    virtual bool isValid() const = 0;
    virtual void deInit() = 0;
    virtual variant_t get(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) const = 0;
    // The expression in postfix form, its items separated by the character 0x07; empty when an operand is
    // missing.
    virtual std::string getExpr() const = 0;
};

using ValueGetter = std::shared_ptr<IValueGetter>;

// The cell as it stands.
ValueGetter defGetter(FieldId field);
// a + b; empty when either cell is.
ValueGetter sumGetter(FieldId a, FieldId b);
// a / b; 0 when b is not above 1e-12, empty when either is empty.
ValueGetter divGetter(FieldId a, FieldId b);
ValueGetter divGetter(const ValueGetter& a, FieldId b);
ValueGetter divGetter(FieldId a, const ValueGetter& b);
ValueGetter divGetter(const ValueGetter& a, const ValueGetter& b);
// The base-10 logarithm of a positive number, empty for any other value: so a row without operations or
// traffic falls off a logarithmic chart.
ValueGetter log10Getter(const ValueGetter& a);
// A constant.
ValueGetter fakeGetter(const variant_t& value);
// The message `key` with the text of `a` as its argument; empty for what is no text.
ValueGetter translateGetter(const std::string& key, const ValueGetter& a);
// The texts of all that aren't empty, joined; no separator stands before ".", ":", ";" or ",".
ValueGetter joinGetter(const std::vector<ValueGetter>& getters, char separator);

}  // namespace data_models2
