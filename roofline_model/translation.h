// Message texts of the catalogue "data_models.roofline".
#pragma once

#include "host_interfaces/host_functions.h"

#include <string>
#include <vector>

namespace data_models2::roofline {

// The text of `id` + `suffix`. The platform's form (id + "_lin") wins over the general one, the form with the
// suffix over the one without; a text found without the suffix gets it appended. Without any text: id +
// suffix.
std::string translateMessage(const std::string& id, const std::string& suffix,
                             const std::vector<variant_t>& arguments);

template <class... Args>
std::string translateEx(const std::string& id, const std::string& suffix, const Args&... arguments) {
    static_assert(sizeof...(Args) <= kMaxMessageArguments, "more arguments than a message takes");
    return translateMessage(id, suffix, {variant_t(arguments)...});
}

template <class... Args>
std::string translate(const std::string& id, const Args&... arguments) {
    return translateEx(id, std::string(), arguments...);
}

}  // namespace data_models2::roofline
