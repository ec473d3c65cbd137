// How long the vectors of instruction sets are.
#include "host_interfaces/host_functions.h"

#include <algorithm>
#include <array>

namespace data_models2::isa_helpers {
namespace {

struct Length {
    std::string_view name;
    long long bits;
};

// A longer name stands before the names that it holds.
constexpr auto kLengths =
    std::to_array<Length>({{"AVX512", 512}, {"AVX-512", 512}, {"AVX", 256}, {"SSE", 128}, {"NEON", 128}});
constexpr long long kScalarBits = 64;

}  // namespace

// In bits. A text may name several sets; the first of the table that it names counts.
long long getVectorLength(const std::string& isa) {
    const auto named = std::find_if(kLengths.begin(), kLengths.end(), [&](const Length& length) {
        return isa.find(length.name) != std::string::npos;
    });
    return named == kLengths.end() ? kScalarBits : named->bits;
}

}  // namespace data_models2::isa_helpers
