// What a chart shows of a loop: parameters of its record, captions of the axes and of the attributes, each
// bound to the configurations under which it exists.
#pragma once

#include "roofline_model/rabbit.h"
#include "roofline_model/unified/configurations.h"
#include "roofline_model/unified/roofline_totals.h"
#include "roofline_model/unified/value_getters.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace data_models2 {

// Base of what exists under some configurations only: those that have all of its types. The empty type is
// any.
class RooflineItem {
public:
    explicit RooflineItem(RooflineTypes types) : m_types(std::move(types)) {}
    const RooflineTypes& getRooflineTypes() const { return m_types; }
    void dump(rabbit::object& object) const;

private:
    RooflineTypes m_types;
};

// Bits of a parameter's type.
namespace param_type {
inline constexpr int kNumeric = 1;    // says what the value is; nothing tests it
inline constexpr int kLog10 = 2;      // the record holds the logarithm
inline constexpr int kNecessary = 4;  // a record that can't get the value is dropped
inline constexpr int kClean = 8;      // "'" becomes "`" in a text
}  // namespace param_type

// One key of a loop record and how its value is worked out.
class LoopParam : public RooflineItem {
public:
    // `name` is a literal: records refer to it.
    LoopParam(const char* name, const ValueGetter& getter, const RooflineTypes& types, int type);

    // Whether the getter found its columns in the bound dataset.
    bool isValid() const { return m_getter && m_getter->isValid(); }
    // Whether one of the given types is among the parameter's own.
    bool isApplicable(const RooflineTypes& types) const;
    bool isNecessary() const { return m_type & param_type::kNecessary; }
    // Whether the value is one of the point's coordinates: its name starts with "x" or "y".
    bool isCoordinate() const;
    variant_t getValue(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) const;
    std::string_view getName() const { return m_name; }
    int getType() const { return m_type; }
    std::string getExpr() const { return m_getter ? m_getter->getExpr() : std::string(); }
    void init(const sptr_t<IDataset>& dataset) const;
    void deInit() const;
    // The types, the name and the expression; only what is necessary says so.
    void dumpParam(rabbit::object& object) const;

private:
    std::string_view m_name;
    ValueGetter m_getter;
    int m_type;
};

using LoopParams = std::vector<LoopParam>;
// The parameters of one configuration, with its captions.
using LoopParamSets = std::vector<std::pair<LoopParams, std::vector<std::string>>>;

// Binds the getters of a list for as long as it lives. `params` must live longer.
class LoopParamsInitializer {
public:
    LoopParamsInitializer(const LoopParams& params, const sptr_t<IDataset>& dataset);
    ~LoopParamsInitializer();
    LoopParamsInitializer(const LoopParamsInitializer&) = delete;
    LoopParamsInitializer& operator=(const LoopParamsInitializer&) = delete;

private:
    const LoopParams& m_params;
};

// In table order, a copy of each parameter all of whose types the configuration has.
LoopParams getLoopParams4RooflineConfiguration(const LoopParams& all,
                                               const RooflineConfiguration& configuration);
void forEachLoopParamSet(const LoopParamSets& sets, const std::function<void(const LoopParam&)>& fn);

// A caption of the chart as a whole.
class RooflineProperty : public RooflineItem {
public:
    // `value` is a message id.
    RooflineProperty(const std::string& name, const std::string& value, const RooflineTypes& types)
        : RooflineItem(types), m_name(name), m_value(value) {}
    const std::string& getName() const { return m_name; }
    void translate() const;
    void toJSON(rabbit::object& object) const;
    void dump(rabbit::object& object) const;

private:
    std::string m_name;
    mutable std::string m_value;
    mutable bool m_translated = false;
};

// A quantity shown beside the coordinates of a point.
class RooflineAttribute : public RooflineItem {
public:
    // `caption` and `measure` are message ids.
    RooflineAttribute(const std::string& key, const std::string& caption, const std::string& measure,
                      bool isMem, const RooflineTypes& types)
        : RooflineItem(types), m_key(key), m_caption(caption), m_measure(measure), m_isMem(isMem) {}
    const std::string& getKey() const { return m_key; }
    void translate() const;
    void toJSON(rabbit::object& object) const;
    // The value of this attribute for the program, when the total has one.
    void toJSON(rabbit::object& object, const RooflineAttrsTotal& total) const;
    void dump(rabbit::object& object) const;

private:
    std::string m_key;
    mutable std::string m_caption;
    mutable std::string m_measure;
    bool m_isMem;
    mutable bool m_translated = false;
};

using RooflineProperties = std::vector<RooflineProperty>;
using RooflineAttributes = std::vector<RooflineAttribute>;

// Each applicable item writes itself.
void addRooflineProperties(rabbit::object& object, const RooflineProperties& properties,
                           const RooflineConfiguration& configuration);
void addRooflineAttributes(rabbit::object& object, const RooflineAttributes& attributes,
                           const RooflineConfiguration& configuration);
void addProgramTotalRooflineAttributes(rabbit::object& object, const RooflineAttributes& attributes,
                                       const RooflineConfiguration& configuration,
                                       const RooflineAttrsTotal& total);

// A whole table, one object an item, whatever the configuration: a reader chooses by the types.
rabbit::array dumpLoopParams(const LoopParams& params, rabbit::Allocator& allocator);
rabbit::array dumpRooflineProperties(const RooflineProperties& properties, rabbit::Allocator& allocator);
rabbit::array dumpRooflineAttributes(const RooflineAttributes& attributes, rabbit::Allocator& allocator);

}  // namespace data_models2
