// Reading of the message catalogue.
#include "cli/page/texts.h"

#include "host_interfaces/host_functions.h"

#include "cli/text.h"

#include <boost/algorithm/string/join.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace cli::page {
namespace {

using namespace data_models2;

constexpr std::string_view kMessages[] = {
#define OMBRIX_MESSAGE(id) std::string_view(id),
#include "cli/page/message_ids.inc"
#undef OMBRIX_MESSAGE
};

// Null when the host has none.
const IMessageCatalogue* catalogue() {
    static const auto kCatalogue = loadMessageCatalogue("data_models.roofline");
    return kCatalogue.get();
}

}  // namespace

void writeTexts(Writer& writer) {
    const std::vector<variant_t> arguments{std::string("%1"), std::string("%2"), std::string("%3")};
    writer.object([&] {
        if (!catalogue()) return;
        for (const auto id : kMessages) writer.member(id, catalogue()->format(std::string(id), arguments));
    });
}

std::string messageOf(std::string_view kind, const std::string& words) {
    auto id = fmt::format("page_{}_{}", kind, words);
    std::transform(id.begin(), id.end(), id.begin(), [](unsigned char c) {
        return std::isalnum(c) ? static_cast<char>(std::tolower(c)) : '_';
    });
    return id;
}

std::string translateWords(std::string_view kind, const std::string& words) {
    return say(messageOf(kind, words), words, {});
}

std::string say(const std::string& id, std::string_view fallback, const std::vector<std::string>& arguments) {
    if (catalogue() && catalogue()->has(id))
        return catalogue()->format(id, {arguments.begin(), arguments.end()});
    return fillIn(fallback, arguments);
}

std::string say(const std::vector<Phrase>& phrases) {
    std::vector<std::string> texts;
    for (const auto& phrase : phrases) texts.push_back(say(phrase.message, phrase.english, phrase.arguments));
    return boost::algorithm::join(texts, " ");
}

}  // namespace cli::page
