// The model of a user's choices: groups of option values, and how a selection is read by each group.
#pragma once

#include "roofline_model/rabbit.h"

#include <functional>
#include <string>
#include <vector>

namespace data_models2 {

using RooflineTypes = std::vector<std::string>;

// One value that can be chosen. Captions and explanations are message ids until they are translated.
class COptionValue {
public:
    // `value` is the token of configuration strings; it holds no "-". `expl` may be empty.
    COptionValue(const std::string& caption, const std::string& value, const std::string& expl)
        : m_caption(caption), m_expl(expl), m_value(value) {}
    const std::string& getCaption() const { return m_caption; }
    const std::string& getValue() const { return m_value; }
    void translate() const;
    void toJSON(rabbit::object& object) const;

private:
    mutable std::string m_caption;
    mutable std::string m_expl;
    std::string m_value;
    mutable bool m_translated = false;
};

// How a group picks its values out of a selection. Stateless; one static instance a group.
class COptionsStrategy {
public:
    virtual ~COptionsStrategy() = default;
    // Adds the member that tells a user interface how the group behaves.
    virtual void updateJSON(rabbit::object& object) const;
    virtual bool stopAfterFound() const { return false; }

    // The group's values whose token stands in `configuration`: only its first occurrence counts, at the
    // start or behind a "-"; what follows the token isn't tested. Deliberate: "L1" is found in "L1gpu", but
    // tokens of one group don't stand in that relation.
    RooflineTypes getRooflineTypes(const std::string& configuration,
                                   const std::vector<COptionValue>& values) const;
    // The group's values that are among `types`, in the group's order.
    RooflineTypes getRooflineTypes(const RooflineTypes& types, const std::vector<COptionValue>& values) const;
    // The group's values that occur in any of the lists, whatever `stopAfterFound` says.
    RooflineTypes getAllRooflineTypes(const std::vector<RooflineTypes>& whole,
                                      const std::vector<COptionValue>& values) const;
    rabbit::array toJSON(rabbit::Allocator& allocator, const std::vector<COptionValue>& values) const;
};

// Exactly one value: the first found.
class CRadioOptionsStrategy : public COptionsStrategy {
public:
    void updateJSON(rabbit::object& object) const override;
    bool stopAfterFound() const override { return true; }
};

// A switch of two values.
class CTwoStatesOptionsStrategy : public COptionsStrategy {
public:
    void updateJSON(rabbit::object& object) const override;
};

// A set of named values.
class CCertainValueOptionsStrategy : public COptionsStrategy {
public:
    void updateJSON(rabbit::object& object) const override;
};

class COptionGroup {
public:
    // `strategy` lives for the process. `provideCaption`: the group's values take part in captions.
    COptionGroup(const COptionsStrategy& strategy, const std::string& caption, bool provideCaption);

    void addOptionValue(const COptionValue& value) { m_values.push_back(value); }
    void setDefRooflineTypes(const RooflineTypes& types) { m_defRooflineTypes = types; }
    bool providesCaption() const { return m_provideCaption; }

    // The selection of the group, its defaults when nothing of it is selected.
    RooflineTypes getRooflineTypes(const std::string& configuration) const;
    RooflineTypes getRooflineTypes(const RooflineTypes& types) const;
    // Without defaults.
    RooflineTypes getAllRooflineTypes(const std::vector<RooflineTypes>& whole) const;
    // Fills an empty `result` of a group with values: with the defaults, or with the first value where none
    // are set.
    void addDefaultTypes(RooflineTypes& result) const;
    // The caption of the first of `types` that the group knows by a caption; empty when there is none.
    std::string getCaption(const RooflineTypes& types) const;
    void translate() const;
    void toJSON(rabbit::object& object) const;

private:
    mutable std::string m_caption;
    std::vector<COptionValue> m_values;
    const COptionsStrategy* m_strategy;
    RooflineTypes m_defRooflineTypes;
    mutable bool m_translated = false;
    bool m_provideCaption;
};

// The option tree. It tells what can be chosen, never what is. Translation happens at the first need and
// isn't locked.
class CRooflineOptions {
public:
    void addOptionGroup(const COptionGroup& group) { m_groups.push_back(group); }
    // Before `index`; at the end when that lies behind it.
    void insertOptionGroup(int index, const COptionGroup& group);
    // A translated text.
    void setDefConfigurationCaption(const std::string& caption) { m_defConfigurationCaption = caption; }

    // One list a group, defaults included.
    std::vector<RooflineTypes> getRooflineTypesSet(const std::string& configuration) const;
    // One list a group, of all that occurs anywhere in `whole`, without defaults.
    std::vector<RooflineTypes> getWholeRooflineTypesSet(const std::vector<RooflineTypes>& whole) const;
    // One caption for each group that provides captions; never empty: a tree without such a group stands for
    // "L1".
    std::vector<std::string> getCaptions(const RooflineTypes& types) const;
    // The whole configuration string of a selection, defaults included.
    std::string getRooflineConfigurationStr(const RooflineTypes& types) const;
    // The memory level that a selection of defaults shows: the first value of the first group that provides
    // captions; "L1" without such a group, as in captions.
    std::string getDefaultLevel() const;
    // The caption of a value in the first group that knows it; empty when none does.
    std::string getOptionCaption(const std::string& value) const;
    std::string toString() const;
    void translate() const;
    void toJSON(rabbit::object& object) const;

private:
    std::vector<RooflineTypes> getRooflineTypesSetImp(
        const std::function<RooflineTypes(const COptionGroup&)>& select) const;

    std::vector<COptionGroup> m_groups;
    std::string m_defConfigurationCaption;
    mutable bool m_translated = false;
};

}  // namespace data_models2
