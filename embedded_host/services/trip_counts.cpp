// The trip counts of a row: a text of one or more counts, such as "100" or "15; 16; 100".
#include "host_interfaces/host_functions.h"

#include <algorithm>
#include <charconv>

namespace data_models2::tripcounts_helpers {
namespace {

// The whole numbers of a list; a fraction is cut off, what is no number is left out.
std::vector<std::int64_t> numbersOf(const std::string& text) {
    constexpr std::string_view kSeparators = "; ,";
    std::vector<std::int64_t> numbers;
    for (std::size_t begin = 0; begin < text.size();) {
        const auto end = std::min(text.find_first_of(kSeparators, begin), text.size());
        std::int64_t number = 0;
        if (std::from_chars(text.data() + begin, text.data() + end, number).ec == std::errc())
            numbers.push_back(number);
        begin = end + 1;
    }
    return numbers;
}

}  // namespace

bool getSourceTripCounts(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, FieldId field,
                         SourceTripCountsData& data) {
    std::string text;
    if (!row || !dataset || !dataset->getString(row, dataset->getColumn(field), 0, text)) return false;
    auto counts = numbersOf(text);
    if (counts.empty()) return false;
    // Of an even number of counts the lower one of the two in the middle.
    const auto middle = counts.begin() + static_cast<std::ptrdiff_t>((counts.size() - 1) / 2);
    std::nth_element(counts.begin(), middle, counts.end());
    data.median = *middle;
    return true;
}

}  // namespace data_models2::tripcounts_helpers
