// The texts of one language: the built-in ones, overridden by those of a file.
#include "embedded_host/services/message_catalogue.h"

#include "embedded_host/services/builtin_messages.h"

#include <fmt/format.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <system_error>

namespace embedded_host {
namespace {

using Texts = MessageCatalogue::Texts;

constexpr const char* kFallbackLanguage = "en";

std::string toString(const rapidjson::Value& text) { return {text.GetString(), text.GetStringLength()}; }

// Nothing when the text isn't a flat JSON object of texts.
std::optional<Texts> parseTexts(const std::string& json) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag>(json.data(),
                                                                                           json.size());
    if (document.HasParseError() || !document.IsObject()) return std::nullopt;
    Texts texts(document.MemberCount());
    for (const auto& member : std::as_const(document).GetObject()) {
        if (!member.value.IsString()) return std::nullopt;
        texts[toString(member.name)] = toString(member.value);
    }
    return texts;
}

std::optional<Texts> builtinTexts(const std::string& language) {
    const auto& all = builtinMessages();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.language == language; });
    if (found == all.end()) return std::nullopt;
    std::string json;
    for (const auto piece : found->pieces) json += piece;
    return parseTexts(json);
}

// A language names a file, so it must not lead elsewhere.
bool isLanguageName(const std::string& language) {
    return !language.empty() && std::all_of(language.begin(), language.end(), [](unsigned char c) {
        return std::isalnum(c) || c == '-' || c == '_';
    });
}

std::optional<Texts> textsOfFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    std::error_code error;
    if (!stream || !std::filesystem::is_regular_file(path, error)) return std::nullopt;
    auto texts = parseTexts({std::istreambuf_iterator<char>(stream), {}});
    if (!texts) {
        const auto what = fmt::format("{} is a JSON object of texts", path.string());
        data_models2::reportAssertion(what.c_str(), "embedded_host/services/message_catalogue", __LINE__);
    }
    return texts;
}

}  // namespace

std::string formatMessage(const std::string& text, const std::vector<data_models2::variant_t>& arguments) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        const auto isPlaceholder =
            next > '0' && static_cast<std::size_t>(next - '0') <= data_models2::kMaxMessageArguments;
        if (text[i] != '%' || (next != '%' && !isPlaceholder)) {
            result += text[i];
            continue;
        }
        ++i;
        const auto index = static_cast<std::size_t>(next - '1');
        if (next == '%')
            result += '%';
        else if (index < arguments.size())
            result += data_models2::toText(arguments[index]);
    }
    return result;
}

std::shared_ptr<const MessageCatalogue> MessageCatalogue::load(const std::string& language,
                                                               const std::string& folder) {
    if (!isLanguageName(language)) return nullptr;
    auto texts = textsOfFile(std::filesystem::path(folder) / "messages" / (language + ".json"));
    auto builtin = builtinTexts(language);
    if (!texts && !builtin) return nullptr;
    if (!texts) texts.emplace();
    // `merge` keeps what is there, so the order below is the order of precedence.
    if (builtin) texts->merge(*builtin);
    if (auto english = builtinTexts(kFallbackLanguage)) texts->merge(*english);
    return std::make_shared<const MessageCatalogue>(std::move(*texts));
}

std::vector<std::string> MessageCatalogue::languages(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& one : builtinMessages()) names.emplace(one.language);
    std::error_code error;
    for (auto file = std::filesystem::directory_iterator(std::filesystem::path(folder) / "messages", error);
         file != std::filesystem::directory_iterator(); file.increment(error)) {
        const auto name = file->path().stem().string();
        if (file->path().extension() == ".json" && isLanguageName(name) && textsOfFile(file->path()))
            names.insert(name);
    }
    return {names.begin(), names.end()};
}

std::string MessageCatalogue::format(const std::string& id,
                                     const std::vector<data_models2::variant_t>& arguments) const {
    const auto found = m_texts.find(id);
    return found == m_texts.end() ? std::string() : formatMessage(found->second, arguments);
}

}  // namespace embedded_host
