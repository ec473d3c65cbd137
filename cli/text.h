// Texts of unknown origin made fit for terminals and pictures.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// Valid UTF-8 without control characters and direction overrides: invalid bytes become U+FFFD, white space
// becomes a blank, the rest is dropped.
std::string cleanText(std::string_view text);
// Escapes the five characters that mean something in XML; clean the text first.
std::string escapeXml(std::string_view text);
// The number of code points of a clean text.
std::size_t length(std::string_view text);
// At most `most` code points of a clean text, the last one an ellipsis where something was cut.
std::string shorten(std::string_view text, std::size_t most);
// The width of a clean text in a sans-serif font, in the unit of `fontSize`; rather too wide than too narrow.
double textWidth(std::string_view text, double fontSize);
// The form in which roofs are compared: lower case, without white space and "(single-threaded)".
std::string roofKey(std::string_view name);
// `value` with four significant digits; "N/A" when it isn't finite.
std::string shortNumber(double value);

// "%1", "%2", ... become the arguments.
std::string fillIn(std::string_view text, const std::vector<std::string>& arguments);

}  // namespace cli
