#include "results_comparer/name_normaliser.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace data_models2::results_comparer_algs {
namespace {

// Everything from the last occurrence on is the compiler's.
constexpr auto kMarkers = std::to_array<std::string_view>({"_par_loop", "_par_region"});

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
// Deliberate: the comma too, addresses are written with it.
constexpr bool isAddressCharacter(char c) { return isDigit(c) || c == ',' || (c >= 'a' && c <= 'z'); }

// Removes each `prefix` that is followed by one or more characters of a kind and a blank. A scanner: regular
// expressions of the standard library recurse for every character, a long number overflows the stack.
template <class IsOfKind>
std::string withoutRuns(std::string_view text, std::string_view prefix, IsOfKind isOfKind) {
    std::string kept;
    kept.reserve(text.size());
    while (true) {
        const auto found = text.find(prefix);
        if (found == std::string_view::npos) return kept.append(text);
        const auto run = text.begin() + static_cast<std::ptrdiff_t>(found + prefix.size());
        const auto end = std::find_if_not(run, text.end(), isOfKind);
        const bool isMatch = end != run && end != text.end() && *end == ' ';
        // No prefix begins inside a run, so one that fails is passed over whole.
        const auto passed = static_cast<std::size_t>(end - text.begin());
        kept.append(text.substr(0, isMatch ? found : passed));
        text.remove_prefix(isMatch ? passed + 1 : passed);
    }
}

}  // namespace

std::string normaliseName(const std::string& name) {
    auto text = withoutRuns(name, "at line ", isDigit);
    // Before the markers: a name that begins with one keeps it without its underscore.
    text.erase(0, std::min(text.find_first_not_of('_'), text.size()));
    for (const auto marker : kMarkers) text.erase(std::min(text.rfind(marker), text.size()));
    return withoutRuns(text, "Loop@0x", isAddressCharacter);
}

}  // namespace data_models2::results_comparer_algs
