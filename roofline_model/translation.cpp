#include "roofline_model/translation.h"

namespace data_models2::roofline {

std::string translateMessage(const std::string& id, const std::string& suffix,
                             const std::vector<variant_t>& arguments) {
    static const auto catalogue = loadMessageCatalogue("data_models.roofline");
    if (!catalogue) return id + suffix;
    const std::string platformId = id + "_lin";
    for (const auto& candidate : {platformId + suffix, id + suffix})
        if (catalogue->has(candidate)) return catalogue->format(candidate, arguments);
    for (const auto& candidate : {platformId, id})
        if (catalogue->has(candidate)) return catalogue->format(candidate, arguments) + suffix;
    return id + suffix;
}

}  // namespace data_models2::roofline
