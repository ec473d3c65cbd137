// Parses a JSON file and makes the errors of its checks.
#include "embedded_host/result/json_reader.h"

#include <fmt/format.h>
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <numeric>
#include <optional>
#include <vector>

namespace embedded_host {
namespace {

constexpr std::size_t kMaxPlaceSteps = 64;  // a deeper place is shortened in its middle
constexpr std::size_t kMaxShownText = 40;

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// Bytes of the character at `rest`, 0 when it is no UTF-8 (overlong forms and surrogates included).
std::size_t characterSize(std::string_view rest) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
    const unsigned lead = byte(0);
    const std::size_t size = lead < 0x80   ? 1
                             : lead < 0xC2 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
    if (size < 2) return size;
    if (rest.size() < size || !std::all_of(rest.begin() + 1, rest.begin() + size, isContinuation)) return 0;
    const unsigned second = byte(1);
    const bool wrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                       (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return wrong ? 0 : size;
}

// The offset of the first byte that no JSON text has: broken UTF-8 or a NUL, at which the parser would stop.
std::optional<std::size_t> findBadByte(std::string_view text) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    for (std::size_t i = 0; i < text.size();) {
        std::uint64_t word = highBits;
        if (i + sizeof word <= text.size()) std::memcpy(&word, text.data() + i, sizeof word);
        if (!(word & highBits)) {
            i += sizeof word;
            continue;
        }
        const auto size = characterSize(text.substr(i));
        if (!size) return i;
        i += size;
    }
    const auto nul = text.find('\0');
    return nul == std::string_view::npos ? std::nullopt : std::optional(nul);
}

[[noreturn]] void failAt(const std::string& name, std::string_view text, std::size_t offset,
                         std::string_view what) {
    const auto before = text.substr(0, std::min(offset, text.size()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const auto newline = before.rfind('\n');
    const auto column = newline == std::string_view::npos ? before.size() + 1 : before.size() - newline;
    throw FileError(fmt::format("{}: line {}, column {}: {}", name, line, column, what));
}

std::string shown(std::string_view text) {
    if (text.size() <= kMaxShownText) return fmt::format("\"{}\"", text);
    std::size_t end = kMaxShownText;
    while (end > 0 && isContinuation(text[end])) --end;
    return fmt::format("\"{}...\"", text.substr(0, end));
}

std::string kindOf(const JsonValue& value) {
    switch (value.GetType()) {
        case rapidjson::kNullType:
            return "null";
        case rapidjson::kFalseType:
            return "false";
        case rapidjson::kTrueType:
            return "true";
        case rapidjson::kObjectType:
            return "an object";
        case rapidjson::kArrayType:
            return "an array";
        case rapidjson::kStringType:
            return "the text " + shown(textOf(value));
        default:
            break;
    }
    if (value.IsUint64()) return fmt::format("{}", value.GetUint64());
    if (value.IsInt64()) return fmt::format("{}", value.GetInt64());
    return fmt::format("{}", value.GetDouble());
}

std::string escaped(std::string_view step) {
    std::string result;
    for (const char c : step) result += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
    return result;
}

// One level of the walk: a container and the position of the child that is being looked at.
struct Level {
    const JsonValue* container;
    std::size_t next;
};

std::string stepOf(const Level& level) {
    const auto child = level.next - 1;
    if (level.container->IsArray()) return fmt::format("/{}", child);
    return "/" + escaped(textOf((level.container->MemberBegin() + static_cast<std::ptrdiff_t>(child))->name));
}

std::string pointerOf(const std::vector<Level>& path) {
    std::string result;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (path.size() > kMaxPlaceSteps && i == kMaxPlaceSteps / 2) {
            result += "/...";
            i = path.size() - kMaxPlaceSteps / 2;
        }
        result += stepOf(path[i]);
    }
    return result;
}

// The JSON pointer of a value, or of the member whose name it is, found by its address; empty for the root.
std::string findPlace(const JsonValue& root, const JsonValue& wanted) {
    if (&root == &wanted) return {};
    const auto isContainer = [](const JsonValue& value) { return value.IsObject() || value.IsArray(); };
    std::vector<Level> path;
    if (isContainer(root)) path.push_back({&root, 0});
    while (!path.empty()) {
        auto& [container, next] = path.back();
        const std::size_t size = container->IsArray() ? container->Size() : container->MemberCount();
        if (next == size) {
            path.pop_back();
            continue;
        }
        const auto index = next++;
        const JsonValue* name = nullptr;
        const JsonValue* child = nullptr;
        if (container->IsArray()) {
            child = container->Begin() + index;
        } else {
            const auto member = container->MemberBegin() + static_cast<std::ptrdiff_t>(index);
            name = &member->name;
            child = &member->value;
        }
        if (child == &wanted || name == &wanted) return pointerOf(path);
        if (isContainer(*child)) path.push_back({child, 0});
    }
    return {};
}

bool sameLetter(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

// Single-letter edits between two names; case doesn't count.
std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const auto replaced = diagonal + (sameLetter(a[i], b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

// The power of ten of a number's first digit that isn't 0: tells what is too small from what is too large.
long magnitudeOf(std::string_view number) {
    const auto exponentAt = number.find_first_of("eE");
    const auto digits = number.substr(0, exponentAt);
    const auto first = std::min(digits.find_first_of("123456789"), digits.size());
    const auto point = std::min(digits.find('.'), digits.size());
    long exponent = 0;
    if (exponentAt != std::string_view::npos) {
        const bool isNegative = number[exponentAt + 1] == '-';
        auto rest = number.substr(exponentAt + 1);
        rest.remove_prefix(rest[0] == '-' || rest[0] == '+' ? 1 : 0);
        constexpr long kFarOut = std::numeric_limits<int>::max();
        const auto read = std::from_chars(rest.data(), rest.data() + rest.size(), exponent);
        if (read.ec != std::errc() || exponent > kFarOut) exponent = kFarOut;
        if (isNegative) exponent = -exponent;
    }
    return exponent + static_cast<long>(point) - static_cast<long>(first);
}

// Builds a document; reads its numbers itself. The parser's own exact reading leaves its tables on numbers
// such as "0.000...1" with hundreds of zeros, and there reads whatever lies in memory.
class DocumentBuilder {
public:
    explicit DocumentBuilder(rapidjson::Document& document) : m_document(document) {}

    bool RawNumber(const char* first, rapidjson::SizeType length, bool) {
        const std::string_view number(first, length);
        const auto read = [&](auto& value) {
            const auto result = std::from_chars(first, first + length, value);
            return result.ec == std::errc() && result.ptr == first + length;
        };
        std::uint64_t natural = 0;
        if (read(natural)) return m_document.Uint64(natural);
        std::int64_t integer = 0;
        if (read(integer)) return m_document.Int64(integer);
        double value = 0.0;
        if (read(value) || magnitudeOf(number) < 0) return m_document.Double(value);
        return false;
    }

    bool Null() { return m_document.Null(); }
    bool Bool(bool value) { return m_document.Bool(value); }
    bool String(const char* text, rapidjson::SizeType length, bool copy) {
        return m_document.String(text, length, copy);
    }
    bool StartObject() { return m_document.StartObject(); }
    bool Key(const char* text, rapidjson::SizeType length, bool copy) {
        return m_document.Key(text, length, copy);
    }
    bool EndObject(rapidjson::SizeType members) { return m_document.EndObject(members); }
    bool StartArray() { return m_document.StartArray(); }
    bool EndArray(rapidjson::SizeType items) { return m_document.EndArray(items); }
    // Never called: all numbers come as text.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(std::int64_t) { return false; }
    bool Uint64(std::uint64_t) { return false; }
    bool Double(double) { return false; }

private:
    rapidjson::Document& m_document;
};

std::string_view whyNot(rapidjson::ParseErrorCode error) {
    // The builder refuses nothing else.
    return error == rapidjson::kParseErrorTermination ? "a number too large for a double"
                                                      : rapidjson::GetParseError_En(error);
}

}  // namespace

std::string suggestion(std::string_view name, std::span<const std::string_view> names) {
    if (name.empty() || name.size() > kMaxShownText) return {};
    std::string_view best;
    std::size_t bestDistance = name.size() / 4 + 2;
    for (const auto candidate : names) {
        const auto distance = editDistance(name, candidate);
        if (distance < bestDistance && distance < candidate.size()) {
            best = candidate;
            bestDistance = distance;
        }
    }
    return best.empty() ? std::string() : fmt::format(" (did you mean \"{}\"?)", best);
}

JsonFile::JsonFile(std::string name, const std::string& text) : m_name(std::move(name)) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    const std::size_t start =
        text.compare(0, byteOrderMark.size(), byteOrderMark) == 0 ? byteOrderMark.size() : 0;
    if (const auto bad = findBadByte(text))
        failAt(m_name, text, *bad, "expected UTF-8 text, found other bytes");
    // Iterative: a deep file must not exhaust the stack.
    constexpr auto flags = rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag;
    rapidjson::ParseResult parsed;
    auto build = [&](rapidjson::Document& document) {
        rapidjson::StringStream stream(text.c_str() + start);
        DocumentBuilder builder(document);
        parsed = rapidjson::Reader().Parse<flags>(stream, builder);
        return !parsed.IsError();
    };
    m_document.Populate(build);
    if (parsed.IsError())
        failAt(m_name, text, start + parsed.Offset(), fmt::format("not JSON: {}", whyNot(parsed.Code())));
}

void JsonFile::fail(const JsonValue& at, std::string_view what) const {
    const auto place = findPlace(m_document, at);
    throw FileError(fmt::format("{}: {}: {}", m_name, place.empty() ? "top level" : place, what));
}

void JsonFile::refuse(const JsonValue& at, std::string_view expected) const {
    fail(at, fmt::format("expected {}, found {}", expected, kindOf(at)));
}

void JsonFile::refuseInteger(const JsonValue& value, std::uint64_t min, std::uint64_t max) const {
    refuse(value, fmt::format("an integer from {} to {}", min, max));
}

void JsonFile::need(const JsonValue& object, const JsonValue* member, std::string_view name) const {
    if (!member) fail(object, fmt::format("expected a member \"{}\", found none", name));
}

const JsonValue& JsonFile::array(const JsonValue& value) const {
    if (!value.IsArray()) refuse(value, "an array");
    return value;
}

std::string_view JsonFile::text(const JsonValue& value) const {
    if (!value.IsString()) refuse(value, "a text");
    return textOf(value);
}

bool JsonFile::boolean(const JsonValue& value) const {
    if (!value.IsBool()) refuse(value, "true or false");
    return value.GetBool();
}

std::size_t JsonFile::choice(const JsonValue& value, std::span<const std::string_view> names) const {
    if (value.IsString()) {
        const auto found = std::find(names.begin(), names.end(), textOf(value));
        if (found != names.end()) return static_cast<std::size_t>(found - names.begin());
    }
    refuse(value, fmt::format("one of \"{}\"", fmt::join(names, "\", \"")));
}

void JsonFile::header(const JsonValue& object, const JsonValue* format, const JsonValue* version,
                      std::string_view expectedFormat) const {
    need(object, format, "format");
    if (!format->IsString() || textOf(*format) != expectedFormat) {
        refuse(*format, fmt::format("\"{}\"", expectedFormat));
    }
    need(object, version, "version");
    if (!version->IsUint() || version->GetUint() != 1) refuse(*version, "version 1, the only one known");
}

void JsonFile::readMembers(const JsonValue& object, std::span<const std::string_view> names,
                           std::span<const JsonValue*> found) const {
    if (!object.IsObject()) refuse(object, "an object");
    std::size_t start = 0;  // members mostly come in the order of `names`: look behind the last one first
    for (auto member = object.MemberBegin(); member != object.MemberEnd(); ++member) {
        const auto name = textOf(member->name);
        std::size_t at = start;
        std::size_t left = names.size();
        while (left && names[at] != name) {
            at = at + 1 == names.size() ? 0 : at + 1;
            --left;
        }
        if (!left) {
            fail(member->name, fmt::format("unknown member{}; known are \"{}\"", suggestion(name, names),
                                           fmt::join(names, "\", \"")));
        }
        if (found[at]) fail(member->name, "repeated member");
        found[at] = &member->value;
        start = at + 1 == names.size() ? 0 : at + 1;
    }
}

}  // namespace embedded_host
