// Cleaning, cutting and measuring of texts.
#include "cli/text.h"

#include "embedded_host/embedded_host.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/erase.hpp>
#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <locale>

namespace cli {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";     // U+2026

struct CodePoint {
    std::uint32_t value;
    std::size_t bytes;  // 0: the text starts with no valid sequence
};

// Strict: no overlong forms, no surrogates, nothing above U+10FFFF.
CodePoint firstCodePoint(std::string_view text) {
    struct Lead {
        unsigned mask, bits;
        std::size_t bytes;
        std::uint32_t smallest;
    };
    static constexpr std::array<Lead, 4> kLeads{
        {{0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}}};
    const auto first = static_cast<unsigned char>(text.front());
    const auto lead = std::find_if(kLeads.begin(), kLeads.end(),
                                   [first](const Lead& each) { return (first & each.mask) == each.bits; });
    if (lead == kLeads.end() || text.size() < lead->bytes) return {0, 0};
    std::uint32_t value = first & ~lead->mask;
    for (std::size_t i = 1; i < lead->bytes; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80) return {0, 0};
        value = value << 6 | (next & 0x3Fu);
    }
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < lead->smallest || value > 0x10FFFF || isSurrogate) return {0, 0};
    return {value, lead->bytes};
}

bool isSpace(std::uint32_t value) { return value >= 0x09 && value <= 0x0D; }

bool isUnwanted(std::uint32_t value) {
    const bool isControl = value < 0x20 || (value >= 0x7F && value <= 0x9F);
    const bool isDirection = (value >= 0x202A && value <= 0x202E) || (value >= 0x2066 && value <= 0x2069) ||
                             value == 0x200E || value == 0x200F;
    const bool isBreak = value == 0x2028 || value == 0x2029;
    const bool isNoCharacter = (value & 0xFFFE) == 0xFFFE || (value >= 0xFDD0 && value <= 0xFDEF);
    return isControl || isDirection || isBreak || isNoCharacter;
}

bool continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Parts of the font size, from the widest of the usual sans-serif fonts.
double advance(char byte) {
    static constexpr std::string_view kNarrow = "ijl.,;:'|!()[]/fIrt ";
    static constexpr std::string_view kWide = "mwMW%@&+<>=";
    if (static_cast<unsigned char>(byte) >= 0x80) return 1.0;
    if (kNarrow.find(byte) != kNarrow.npos) return 0.42;
    if (kWide.find(byte) != kWide.npos) return 0.98;
    return byte >= 'A' && byte <= 'Z' ? 0.74 : 0.64;
}

}  // namespace

std::string cleanText(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto point = firstCodePoint(text);
        const auto bytes = std::max<std::size_t>(point.bytes, 1);
        if (point.bytes == 0) {
            result += kReplacement;
        } else if (isSpace(point.value)) {
            result += ' ';
        } else if (!isUnwanted(point.value)) {
            result += text.substr(0, bytes);
        }
        text.remove_prefix(bytes);
    }
    return result;
}

std::string escapeXml(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char byte : text) {
        switch (byte) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            case '\'':
                result += "&#39;";
                break;
            default:
                result += byte;
        }
    }
    return result;
}

std::size_t length(std::string_view text) {
    return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), continues));
}

std::string shorten(std::string_view text, std::size_t most) {
    if (length(text) <= most) return std::string(text);
    std::size_t end = 0;
    for (std::size_t points = 0; end < text.size(); ++end)
        if (!continues(text[end]) && points++ + 1 >= std::max<std::size_t>(most, 1)) break;
    return std::string(text.substr(0, end)).append(kEllipsis);
}

double textWidth(std::string_view text, double fontSize) {
    double width = 0.0;
    for (const char byte : text)
        if (!continues(byte)) width += advance(byte);
    return width * fontSize;
}

std::string roofKey(std::string_view name) {
    auto key = boost::to_lower_copy(std::string(name), std::locale::classic());
    boost::erase_all(key, "(single-threaded)");
    std::erase_if(key, [](char c) { return std::isspace(c, std::locale::classic()); });
    return key;
}

std::string shortNumber(double value) { return embedded_host::formatNumber(value, 4); }

std::string fillIn(std::string_view text, const std::vector<std::string>& arguments) {
    std::string filled(text);
    for (std::size_t i = 0; i < arguments.size(); ++i)
        boost::replace_all(filled, "%" + std::to_string(i + 1), arguments[i]);
    return filled;
}

}  // namespace cli
