// Filling of the page.
#include "cli/page/page_file.h"

#include "cli/page/model.h"
#include "cli/page/texts.h"
#include "cli/text.h"

#include <boost/algorithm/string/replace.hpp>
#include <boost/archive/iterators/base64_from_binary.hpp>
#include <boost/archive/iterators/transform_width.hpp>

#include <array>
#include <stdexcept>
#include <utility>
#include <zlib.h>

namespace cli::page {
namespace {

std::string join(const Pieces& pieces) {
    std::string text;
    for (const auto piece : pieces) text += piece;
    return text;
}

}  // namespace

// Nothing but what the page itself holds may run, and nothing may leave it.
std::string policyOf(const Resources& resources, bool isServed) {
    return "default-src 'none'; " + join(resources.policy) + "; img-src data: blob:; connect-src " +
           (isServed ? "'self'" : "'none'") + "; base-uri 'none'; form-action 'none'";
}

const Resources& requireResources(const Resources* resources) {
    if (resources) return *resources;
    throw std::runtime_error(
        "reports and served pages are off in this build: they need Node.js and the packages of chart_page/; "
        "scripts/setup.sh installs both, scripts/build.sh release looks for them again");
}

std::string deflated(const std::string& text) {
    auto size = compressBound(static_cast<uLong>(text.size()));
    std::string bytes(size, '\0');
    const auto result =
        compress2(reinterpret_cast<Bytef*>(bytes.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
                  static_cast<uLong>(text.size()), Z_BEST_COMPRESSION);
    if (result != Z_OK) throw std::runtime_error("the page's data can't be compressed");
    bytes.resize(size);
    return bytes;
}

std::string base64(std::string_view bytes) {
    using namespace boost::archive::iterators;
    using Encoder = base64_from_binary<transform_width<std::string_view::const_iterator, 6, 8>>;
    std::string text(Encoder(bytes.begin()), Encoder(bytes.end()));
    text.append((3 - bytes.size() % 3) % 3, '=');
    return text;
}

FittedPage fitPage(double bytes, const std::function<std::string(std::size_t)>& make) {
    constexpr std::array<std::size_t, 6> kDetails{kMostDetails, 200, 100, 50, 20, 0};
    FittedPage page;
    for (const auto detailed : kDetails) {
        page = {make(detailed), detailed};
        if (static_cast<double>(page.text.size()) <= bytes) break;
    }
    return page;
}

std::string makePage(const Resources& resources, const PageFrame& frame, const std::string& model) {
    const std::pair<std::string_view, std::string> values[] = {
        {"{{CSP}}", policyOf(resources, frame.isServed)},
        {"{{LANGUAGE}}", escapeXml(cleanText(frame.language.empty() ? "en" : frame.language))},
        {"{{TITLE}}", escapeXml(cleanText(frame.title))},
        {"{{NEEDS}}", escapeXml(say("page_boot_needs", "This page needs JavaScript.", {}))},
        {"{{OLD}}", escapeXml(say("page_boot_old", "This browser is too old for the page.", {}))},
        {"{{FAULT}}", escapeXml(say("page_boot_fault", "The page can't show its data: %1", {"%1"}))},
        {"{{MODEL}}", base64(deflated(model))}};
    // One pass from front to back: no value is looked through for the next place.
    const auto html = join(resources.html);
    std::string page;
    for (std::size_t at = 0;;) {
        std::size_t next = std::string::npos;
        const std::pair<std::string_view, std::string>* found = nullptr;
        for (const auto& value : values)
            if (const auto place = html.find(value.first, at); place < next) next = place, found = &value;
        page.append(html, at, next - at);
        if (!found) return page;
        page += found->second;
        at = next + found->first.size();
    }
}

}  // namespace cli::page
