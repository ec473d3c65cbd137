#include "cli/page/query.h"

#include "cli/console.h"

#include <algorithm>
#include <charconv>

namespace cli::page {
namespace {

std::string unescaped(std::string_view text) {
    std::string plain;
    for (; !text.empty(); text.remove_prefix(1)) {
        if (text.front() != '%') {
            plain += text.front() == '+' ? ' ' : text.front();
            continue;
        }
        unsigned char byte = 0;
        const auto* const digits = text.data() + 1;
        if (text.size() < 3 || std::from_chars(digits, digits + 2, byte, 16).ptr != digits + 2)
            throw UsageError("the address holds a percent sign without two hexadecimal digits");
        plain += static_cast<char>(byte);
        text.remove_prefix(2);
    }
    return plain;
}

// What stands before the first `separator`, which is taken away with it.
std::string_view takeUntil(std::string_view& text, char separator) {
    const auto part = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(text.size(), part.size() + 1));
    return part;
}

}  // namespace

const std::string* Address::find(std::string_view name) const {
    const auto isNamed = [name](const auto& value) { return value.first == name; };
    const auto found = std::find_if(values.begin(), values.end(), isNamed);
    if (found == values.end() || std::any_of(found + 1, values.end(), isNamed)) return nullptr;
    return &found->second;
}

Address parseAddress(std::string_view target) {
    Address address;
    address.path = takeUntil(target, '?');
    while (!target.empty()) {
        auto value = takeUntil(target, '&');
        const auto name = takeUntil(value, '=');
        address.values.emplace_back(unescaped(name), unescaped(value));
    }
    return address;
}

}  // namespace cli::page
