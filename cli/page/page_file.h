// The page as a file: its resources, which the build makes, filled with data.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace cli::page {

// Texts in pieces, as compilers limit the length of a literal.
using Pieces = std::vector<std::string_view>;
struct Resources {
    Pieces html;    // holds the places that `makePage` fills, such as {{TITLE}}, and style and script
    Pieces policy;  // of scripts and styles: the hashes of those that the page holds
};

// Null when the program was built without Node.js or without the packages of chart_page/. Generated.
const Resources* resources();
// Throws std::runtime_error, which says how to turn reports on, for a null pointer.
const Resources& requireResources(const Resources* resources);

struct PageFrame {
    std::string title;
    std::string language;   // empty: English
    bool isServed = false;  // may ask its own server
};

// The content security policy of a page.
std::string policyOf(const Resources& resources, bool isServed);
// The HTML text, with `model` deflated and in base64. Throws std::runtime_error when that fails.
std::string makePage(const Resources& resources, const PageFrame& frame, const std::string& model);
struct FittedPage {
    std::string text;
    std::size_t detailed;  // the limit of rows with details
};
// The first page of at most so many bytes that `make` makes, its limit of rows with details lowered step by
// step to 0; larger than that where no such page is small enough.
FittedPage fitPage(double bytes, const std::function<std::string(std::size_t)>& make);

// The zlib format.
std::string deflated(const std::string& text);
std::string base64(std::string_view bytes);

}  // namespace cli::page
