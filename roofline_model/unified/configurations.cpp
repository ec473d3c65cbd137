#include "roofline_model/unified/configurations.h"

#include <algorithm>

namespace data_models2 {

bool RooflineConfiguration::hasType(const std::string& type) const {
    return type.empty() || std::find(m_types.begin(), m_types.end(), type) != m_types.end();
}

bool RooflineConfiguration::hasTypes(const RooflineTypes& types) const {
    return std::all_of(types.begin(), types.end(), [this](const auto& type) { return hasType(type); });
}

bool RooflineConfiguration::hasNoTypes(const RooflineTypes& types) const {
    return std::none_of(types.begin(), types.end(), [this](const auto& type) { return hasType(type); });
}

std::vector<std::string> RooflineConfiguration::getCaptions(
    const std::shared_ptr<const CRooflineOptions>& options) const {
    return options ? options->getCaptions(m_types) : std::vector<std::string>();
}

bool RooflineConfigurations::init(const std::string& configuration, const Options& options) {
    m_options = options;
    m_axes = options ? options->getRooflineTypesSet(configuration) : std::vector<RooflineTypes>();
    fillItems(m_axes);
    return options != nullptr;
}

bool RooflineConfigurations::init(const std::vector<RooflineTypes>& whole, const Options& options) {
    m_options = options;
    m_axes = options ? options->getWholeRooflineTypesSet(whole) : std::vector<RooflineTypes>();
    fillItems(m_axes);
    return options != nullptr;
}

void RooflineConfigurations::fillItems(const std::vector<RooflineTypes>& axes) {
    m_items.clear();
    if (axes.empty()) return;
    RooflineTypes work(axes.size());
    addRooflineType(axes, work, 0);
}

void RooflineConfigurations::addRooflineType(const std::vector<RooflineTypes>& axes, RooflineTypes& work,
                                             std::size_t index) {
    for (const auto& type : axes[index]) {
        work[index] = type;
        if (index + 1 == axes.size())
            m_items.emplace_back(work);
        else
            addRooflineType(axes, work, index + 1);
    }
}

}  // namespace data_models2
