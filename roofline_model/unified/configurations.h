// The single configurations that a selection of options stands for.
#pragma once

#include "roofline_model/unified/roofline_options.h"

#include <memory>
#include <string>
#include <vector>

namespace data_models2 {

// One value of each option group, in group order: one series of points on a chart.
class RooflineConfiguration {
public:
    RooflineConfiguration() = default;
    explicit RooflineConfiguration(RooflineTypes types) : m_types(std::move(types)) {}

    const RooflineTypes& getTypes() const { return m_types; }
    // An empty type means "any" and is always there.
    bool hasType(const std::string& type) const;
    bool hasTypes(const RooflineTypes& types) const;    // all of them
    bool hasNoTypes(const RooflineTypes& types) const;  // none of them
    // Empty without options.
    std::vector<std::string> getCaptions(const std::shared_ptr<const CRooflineOptions>& options) const;

private:
    RooflineTypes m_types;
};

// All combinations of the selected values, the first group varying slowest.
class RooflineConfigurations {
public:
    using Options = std::shared_ptr<const CRooflineOptions>;

    // A configuration string; groups it doesn't mention stand at their defaults. Both forms replace what was
    // there and are false, and empty, without options.
    bool init(const std::string& configuration, const Options& options);
    // Everything that occurs in any of the lists, also several values of a radio group; no defaults.
    bool init(const std::vector<RooflineTypes>& whole, const Options& options);
    // The combinations of one list of values a group; a group without values makes none.
    void fillItems(const std::vector<RooflineTypes>& axes);

    // The selected values of each group.
    const std::vector<RooflineTypes>& getAxes() const { return m_axes; }
    const Options& getOptions() const { return m_options; }
    bool empty() const { return m_items.empty(); }
    std::size_t size() const { return m_items.size(); }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }
    auto begin() { return m_items.begin(); }
    auto end() { return m_items.end(); }

private:
    void addRooflineType(const std::vector<RooflineTypes>& axes, RooflineTypes& work, std::size_t index);

    std::vector<RooflineConfiguration> m_items;
    std::vector<RooflineTypes> m_axes;
    Options m_options;
};

}  // namespace data_models2
