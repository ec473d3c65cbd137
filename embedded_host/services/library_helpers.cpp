// Which rows belong to a library whose work no counter sees.
#include "host_interfaces/host_functions.h"

#include <algorithm>
#include <cctype>

namespace data_models2::library_helpers {
namespace {

// The one library number that is known: computing kernels that are dispatched inside a library.
constexpr int kKernelLibrary = 1;
constexpr std::string_view kMark = "library";

bool hasMark(std::string_view text) {
    const auto same = [](char mark, char c) { return std::tolower(static_cast<unsigned char>(c)) == mark; };
    return std::search(text.begin(), text.end(), kMark.begin(), kMark.end(),
                       [&](char c, char mark) { return same(mark, c); }) != text.end();
}

}  // namespace

// A result says it of a row itself: its vector traits hold the word "library", in any case. Names of
// functions are not guessed from.
bool hasLibrary(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, int library) {
    if (library != kKernelLibrary || !row || !dataset) return false;
    const auto column = dataset->getColumn(FieldId::VectorTraits);
    std::string traits;
    return column && dataset->getString(row, column, 0, traits) && hasMark(traits);
}

}  // namespace data_models2::library_helpers
