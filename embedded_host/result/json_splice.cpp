#include "embedded_host/result/json_splice.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace embedded_host {
namespace {

constexpr auto kNowhere = std::string_view::npos;
constexpr std::string_view kSpace = " \t\r\n";

// A member of an object or an item of an array, in bytes from the start of the text.
struct Element {
    std::size_t begin = kNowhere;  // of the member's name, or of the item
    std::size_t value = kNowhere;
    std::size_t end = kNowhere;
};

std::size_t endOfString(std::string_view text, std::size_t quote) {
    auto i = quote + 1;
    while (text[i] != '"') i += text[i] == '\\' ? 2 : 1;
    return i + 1;
}

// What the bracket at `open` encloses. Relies on the text being JSON: only then do brackets pair up.
std::vector<Element> elementsAt(std::string_view text, std::size_t open) {
    std::vector<Element> elements;
    Element current;
    std::size_t depth = 1;
    for (auto i = open + 1; depth > 0;) {
        const char c = text[i];
        const auto end = c == '"' ? endOfString(text, i) : i + 1;
        if (c == ']' || c == '}') --depth;
        if (depth == 0 || (depth == 1 && c == ',')) {
            if (current.begin != kNowhere) elements.push_back(std::exchange(current, {}));
        } else if (depth == 1 && c == ':') {
            current.value = kNowhere;
        } else if (kSpace.find(c) == kNowhere) {
            if (current.begin == kNowhere) current.begin = i;
            if (current.value == kNowhere) current.value = i;
            current.end = end;
        }
        if (c == '[' || c == '{') ++depth;
        i = end;
    }
    return elements;
}

std::vector<Element> membersOf(std::string_view text) { return elementsAt(text, text.find('{')); }

// Names may be written with escapes, so the parsed document tells which member it is.
std::size_t positionOf(const JsonFile& file, std::string_view name) {
    const auto& root = file.root();
    const auto found = std::find_if(root.MemberBegin(), root.MemberEnd(),
                                    [&](const auto& member) { return textOf(member.name) == name; });
    return static_cast<std::size_t>(found - root.MemberBegin());
}

std::string_view spaceBefore(std::string_view text, std::size_t place) {
    const auto start = text.find_last_not_of(kSpace, place - 1) + 1;
    return text.substr(start, place - start);
}

// Items stand in a line each where the members do, one step further in.
std::string arrayText(std::string_view memberSpace, const std::vector<std::string>& items) {
    const auto newline = memberSpace.rfind('\n');
    if (newline == kNowhere) return fmt::format("[{}]", fmt::join(items, ", "));
    const auto lineEnd = newline > 0 && memberSpace[newline - 1] == '\r' ? "\r\n" : "\n";
    const auto indent = memberSpace.substr(newline + 1);
    const auto start = fmt::format("{}{}{}", lineEnd, indent, indent);
    return fmt::format("[{}{}{}{}]", start, fmt::join(items, "," + start), lineEnd, indent);
}

}  // namespace

std::vector<std::string> arrayItems(const JsonFile& file, const std::string& text, std::string_view name) {
    const auto members = membersOf(text);
    const auto position = positionOf(file, name);
    std::vector<std::string> items;
    if (position == members.size()) return items;
    for (const auto& item : elementsAt(text, members[position].value))
        items.push_back(text.substr(item.begin, item.end - item.begin));
    return items;
}

std::string withArrayItems(const JsonFile& file, std::string text, std::string_view name,
                           const std::vector<std::string>& items) {
    const auto members = membersOf(text);
    const auto position = positionOf(file, name);
    const bool isThere = position < members.size();
    if (items.empty()) {
        if (!isThere) return text;
        auto [begin, value, end] = members[position];
        // One comma goes too: the one before, or behind the first member the one after.
        if (position > 0)
            begin = members[position - 1].end;
        else if (members.size() > 1)
            end = members[1].begin;
        return text.erase(begin, end - begin);
    }
    const auto& neighbour = isThere ? members[position] : members.back();
    const std::string space(spaceBefore(text, neighbour.begin));
    const auto array = arrayText(space, items);
    if (isThere) return text.replace(neighbour.value, neighbour.end - neighbour.value, array);
    return text.insert(neighbour.end, fmt::format(",{}\"{}\": {}", space, name, array));
}

}  // namespace embedded_host
