#include "cli/page/query.h"

#include "cli/console.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace cli::page {
namespace {

constexpr std::size_t kMostValue = 256;

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

Query::Query(std::string_view target) {
    takeUntil(target, '?');
    while (!target.empty()) {
        auto value = takeUntil(target, '&');
        const auto name = takeUntil(value, '=');
        m_values.emplace_back(unescaped(name), unescaped(value));
    }
}

bool Query::has(std::string_view name) const {
    return std::any_of(m_values.begin(), m_values.end(),
                       [&](const auto& each) { return each.first == name; });
}

const std::string& Query::value(std::string_view name) const {
    const auto isNamed = [&](const auto& each) { return each.first == name; };
    const auto found = std::find_if(m_values.begin(), m_values.end(), isNamed);
    if (found == m_values.end() || std::any_of(found + 1, m_values.end(), isNamed))
        throw UsageError(fmt::format("{}: expected one value", name));
    if (found->second.size() > kMostValue) throw UsageError(fmt::format("{}: the value is too long", name));
    return found->second;
}

}  // namespace cli::page
