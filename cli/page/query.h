// The address of a request, taken apart.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cli::page {

struct Address {
    std::string path;  // as it was written
    std::vector<std::pair<std::string, std::string>> values;

    // Null unless there is exactly one.
    const std::string* find(std::string_view name) const;
};

// "/a/b?name=value&other" has percent signs only as the start of two hexadecimal digits, which then stand for
// a byte; throws UsageError for others.
Address parseAddress(std::string_view target);

}  // namespace cli::page
