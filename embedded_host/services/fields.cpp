// Finding a field's description by its name or its number.
#include "embedded_host/services/fields.h"

#include "host_interfaces/host_functions.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <unordered_map>

namespace embedded_host {
namespace {

using data_models2::FieldId;
using data_models2::FieldInfo;
using data_models2::kFields;

static_assert(std::is_sorted(kFields.begin(), kFields.end(),
                             [](const auto& a, const auto& b) { return a.id < b.id; }));

// Indexed by the field's number.
constexpr auto kFieldsByNumber = [] {
    std::array<const FieldInfo*, static_cast<std::size_t>(kFields.back().id) + 1> table{};
    for (const auto& field : kFields) table[static_cast<std::size_t>(field.id)] = &field;
    return table;
}();

}  // namespace

const FieldInfo* findField(std::string_view name) {
    static const auto fields = [] {
        std::unordered_map<std::string_view, const FieldInfo*> table(kFields.size());
        for (const auto& field : kFields) table.emplace(field.name, &field);
        return table;
    }();
    const auto found = fields.find(name);
    return found == fields.end() ? nullptr : found->second;
}

const FieldInfo* findField(FieldId id) {
    const auto number = static_cast<std::size_t>(id);  // a negative number becomes a huge one
    return number < kFieldsByNumber.size() ? kFieldsByNumber[number] : nullptr;
}

}  // namespace embedded_host

namespace data_models2 {

std::string getFieldStringId(FieldId field) {
    if (const auto* const info = embedded_host::findField(field)) return std::string(info->name);
    return fmt::format("field{}", static_cast<int>(field));
}

}  // namespace data_models2
