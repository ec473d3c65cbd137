// The trip counts of a row: a text of one or more counts, such as "100" or "15; 16; 100".
#include "host_interfaces/host_functions.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace data_models2::tripcounts_helpers {
namespace {

// A count with its fraction cut off; none unless all of the text is one.
std::optional<std::int64_t> countOf(std::string_view text) {
    std::int64_t count = 0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, count);
    if (error != std::errc() || text.front() == '-') return std::nullopt;
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (end != last && (*end != '.' || !std::all_of(end + 1, last, isDigit))) return std::nullopt;
    return count;
}

// The counts of a list; what is none is left out.
std::vector<std::int64_t> countsOf(std::string_view text) {
    constexpr std::string_view kSeparators = "; ,";
    std::vector<std::int64_t> counts;
    for (std::size_t begin = 0; begin < text.size();) {
        const auto end = std::min(text.find_first_of(kSeparators, begin), text.size());
        if (const auto count = countOf(text.substr(begin, end - begin))) counts.push_back(*count);
        begin = end + 1;
    }
    return counts;
}

}  // namespace

bool getSourceTripCounts(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, FieldId field,
                         SourceTripCountsData& data) {
    std::string text;
    if (!row || !dataset || !dataset->getString(row, dataset->getColumn(field), 0, text)) return false;
    auto counts = countsOf(text);
    if (counts.empty()) return false;
    // Of an even number of counts the lower one of the two in the middle.
    const auto middle = counts.begin() + static_cast<std::ptrdiff_t>((counts.size() - 1) / 2);
    std::nth_element(counts.begin(), middle, counts.end());
    data.median = *middle;
    return true;
}

}  // namespace data_models2::tripcounts_helpers
