#include "roofline_model/unified/roofline_options.h"

#include "roofline_model/translation.h"

#include <algorithm>

namespace data_models2 {

namespace {

bool contains(const RooflineTypes& types, const std::string& type) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

bool namesToken(const std::string& configuration, const std::string& token) {
    const auto at = configuration.find(token);
    return at != std::string::npos && (at == 0 || configuration[at - 1] == '-');
}

// The tokens of the values that `isSelected`, in the group's order.
template <class Predicate>
RooflineTypes select(const std::vector<COptionValue>& values, bool onlyFirst, Predicate isSelected) {
    RooflineTypes result;
    for (const auto& value : values) {
        if (!isSelected(value.getValue())) continue;
        result.push_back(value.getValue());
        if (onlyFirst) break;
    }
    return result;
}

void translateInPlace(std::string& text) {
    if (!text.empty()) text = roofline::translate(text, variant_t(), variant_t(), variant_t());
}

}  // namespace

void COptionValue::translate() const {
    if (std::exchange(m_translated, true)) return;
    translateInPlace(m_caption);
    translateInPlace(m_expl);
}

void COptionValue::toJSON(rabbit::object& object) const {
    translate();
    object.set("caption", m_caption);
    object.set("value", m_value);
    if (!m_expl.empty()) object.set("expl", m_expl);
}

void COptionsStrategy::updateJSON(rabbit::object&) const {}
void CRadioOptionsStrategy::updateJSON(rabbit::object& object) const { object.set("isRadio", true); }
void CTwoStatesOptionsStrategy::updateJSON(rabbit::object& object) const { object.set("isTwoStates", true); }
void CCertainValueOptionsStrategy::updateJSON(rabbit::object& object) const {
    object.set("isCertainValue", true);
}

RooflineTypes COptionsStrategy::getRooflineTypes(const std::string& configuration,
                                                 const std::vector<COptionValue>& values) const {
    return select(values, stopAfterFound(),
                  [&](const std::string& token) { return namesToken(configuration, token); });
}

RooflineTypes COptionsStrategy::getRooflineTypes(const RooflineTypes& types,
                                                 const std::vector<COptionValue>& values) const {
    return select(values, stopAfterFound(), [&](const std::string& token) { return contains(types, token); });
}

RooflineTypes COptionsStrategy::getAllRooflineTypes(const std::vector<RooflineTypes>& whole,
                                                    const std::vector<COptionValue>& values) const {
    return select(values, false, [&](const std::string& token) {
        return std::any_of(whole.begin(), whole.end(),
                           [&](const auto& types) { return contains(types, token); });
    });
}

rabbit::array COptionsStrategy::toJSON(rabbit::Allocator& allocator,
                                       const std::vector<COptionValue>& values) const {
    rabbit::array result(allocator);
    for (const auto& value : values) {
        rabbit::object item(allocator);
        value.toJSON(item);
        result.push(std::move(item));
    }
    return result;
}

COptionGroup::COptionGroup(const COptionsStrategy& strategy, const std::string& caption, bool provideCaption)
    : m_caption(caption), m_strategy(&strategy), m_provideCaption(provideCaption) {}

RooflineTypes COptionGroup::getRooflineTypes(const std::string& configuration) const {
    auto result = m_strategy->getRooflineTypes(configuration, m_values);
    addDefaultTypes(result);
    return result;
}

RooflineTypes COptionGroup::getRooflineTypes(const RooflineTypes& types) const {
    auto result = m_strategy->getRooflineTypes(types, m_values);
    addDefaultTypes(result);
    return result;
}

RooflineTypes COptionGroup::getAllRooflineTypes(const std::vector<RooflineTypes>& whole) const {
    return m_strategy->getAllRooflineTypes(whole, m_values);
}

void COptionGroup::addDefaultTypes(RooflineTypes& result) const {
    if (!result.empty() || m_values.empty()) return;
    if (m_defRooflineTypes.empty())
        result.push_back(m_values.front().getValue());
    else
        result = m_defRooflineTypes;
}

std::string COptionGroup::getCaption(const RooflineTypes& types) const {
    for (const auto& type : types)
        for (const auto& value : m_values)
            if (value.getValue() == type && !value.getCaption().empty()) return value.getCaption();
    return {};
}

void COptionGroup::translate() const {
    if (std::exchange(m_translated, true)) return;
    translateInPlace(m_caption);
    for (const auto& value : m_values) value.translate();
}

void COptionGroup::toJSON(rabbit::object& object) const {
    translate();
    object.set("caption", m_caption);
    if (m_provideCaption) object.set("provideCaption", true);
    rabbit::array defaults(object.allocator());
    for (const auto& type : m_defRooflineTypes) defaults.push(type);
    object.set("defRooflineTypes", std::move(defaults));
    object.set("options", m_strategy->toJSON(object.allocator(), m_values));
    m_strategy->updateJSON(object);
}

void CRooflineOptions::insertOptionGroup(int index, const COptionGroup& group) {
    const auto at = std::clamp<std::ptrdiff_t>(index, 0, std::ssize(m_groups));
    m_groups.insert(m_groups.begin() + at, group);
}

std::vector<RooflineTypes> CRooflineOptions::getRooflineTypesSet(const std::string& configuration) const {
    return getRooflineTypesSetImp(
        [&](const COptionGroup& group) { return group.getRooflineTypes(configuration); });
}

std::vector<RooflineTypes> CRooflineOptions::getWholeRooflineTypesSet(
    const std::vector<RooflineTypes>& whole) const {
    return getRooflineTypesSetImp(
        [&](const COptionGroup& group) { return group.getAllRooflineTypes(whole); });
}

std::vector<RooflineTypes> CRooflineOptions::getRooflineTypesSetImp(
    const std::function<RooflineTypes(const COptionGroup&)>& select) const {
    std::vector<RooflineTypes> result;
    std::transform(m_groups.begin(), m_groups.end(), std::back_inserter(result), select);
    return result;
}

std::vector<std::string> CRooflineOptions::getCaptions(const RooflineTypes& types) const {
    translate();
    std::vector<std::string> result;
    for (const auto& group : m_groups)
        if (group.providesCaption()) result.push_back(group.getCaption(types));
    if (result.empty()) result.emplace_back("L1");
    return result;
}

std::string CRooflineOptions::getRooflineConfigurationStr(const RooflineTypes& types) const {
    std::string result;
    for (const auto& group : m_groups)
        for (const auto& type : group.getRooflineTypes(types)) result += (result.empty() ? "" : "-") + type;
    return result;
}

std::string CRooflineOptions::getDefaultLevel() const {
    const auto group = std::find_if(m_groups.begin(), m_groups.end(),
                                    [](const COptionGroup& each) { return each.providesCaption(); });
    if (group == m_groups.end()) return "L1";
    const auto levels = group->getRooflineTypes(RooflineTypes());
    return levels.empty() ? std::string() : levels.front();
}

std::string CRooflineOptions::getOptionCaption(const std::string& value) const {
    translate();
    for (const auto& group : m_groups)
        if (auto caption = group.getCaption({value}); !caption.empty()) return caption;
    return {};
}

std::string CRooflineOptions::toString() const {
    return rabbit::writeObject([this](rabbit::object& root) { toJSON(root); });
}

void CRooflineOptions::translate() const {
    if (std::exchange(m_translated, true)) return;
    for (const auto& group : m_groups) group.translate();
}

void CRooflineOptions::toJSON(rabbit::object& object) const {
    translate();
    rabbit::array groups(object.allocator());
    for (const auto& group : m_groups) {
        rabbit::object item(object.allocator());
        group.toJSON(item);
        groups.push(std::move(item));
    }
    object.set("groups", std::move(groups));
    if (!m_defConfigurationCaption.empty()) object.set("defConfigurationCaption", m_defConfigurationCaption);
}

}  // namespace data_models2
