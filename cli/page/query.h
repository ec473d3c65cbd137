// The values that the address of a request gives.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cli::page {

class Query {
public:
    // What stands behind the question mark of an address, such as "/path?name=value&other". A percent sign
    // has two hexadecimal digits behind it and stands for that byte; throws UsageError for another one.
    explicit Query(std::string_view target);

    bool has(std::string_view name) const;
    // Throws UsageError unless there is exactly one, of at most 256 bytes.
    const std::string& value(std::string_view name) const;

private:
    std::vector<std::pair<std::string, std::string>> m_values;
};

}  // namespace cli::page
