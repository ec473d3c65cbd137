// Splitting texts.
#include "host_interfaces/host_functions.h"

namespace data_models2 {

// Several characters of a delimiter are one string; an empty delimiter occurs nowhere.
std::vector<std::string> split_string(const std::string& text, const std::string& delimiter, int) {
    std::vector<std::string> pieces;
    if (text.empty()) return pieces;
    std::size_t begin = 0;
    for (std::size_t end = 0; !delimiter.empty() && (end = text.find(delimiter, begin)) != std::string::npos;
         begin = end + delimiter.size())
        pieces.push_back(text.substr(begin, end - begin));
    pieces.push_back(text.substr(begin));
    return pieces;
}

}  // namespace data_models2
