// The records of a chart: one point of one row under one configuration.
#pragma once

#include "roofline_model/rabbit.h"
#include "roofline_model/unified/configurations.h"
#include "roofline_model/unified/loop_params.h"
#include "roofline_model/unified/row_walk.h"
#include "roofline_model/unified/view_rect.h"

#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace data_models2 {

// Keys aren't copied: they are literals or names of parameter tables, which live for the process.
class CLoopInfo {
public:
    // What `set` returns for a value that is no coordinate.
    static constexpr double kNoCoordinate = -std::numeric_limits<double>::max();

    // Valid, and with at least one property.
    bool isValid() const { return m_valid && !m_properties.empty(); }
    // False once a necessary parameter had no value.
    bool isComplete() const { return m_valid; }

    void set(std::string_view key, const std::string& value) { put(key, variant_t(value)); }
    void set(std::string_view key, int value) { put(key, variant_t(value)); }
    // Stores a parameter's value in the form of `toProperty`. A missing value of a necessary parameter makes
    // the record incomplete. The result is a double's value, else kNoCoordinate.
    double set(std::string_view key, const variant_t& value, int type);
    // The form in which a record holds a value; `type` are bits of param_type. Empty for what a record
    // doesn't hold: a double that isn't finite, a false, kinds that have no place in a chart. A long integer
    // travels as text.
    static variant_t toProperty(const variant_t& value, int type);
    // Whether a value, stored as `property`, leaves a necessary parameter without one.
    static bool isMissing(const variant_t& value, const variant_t& property);

    // The text under the key; empty when there is none. Holds until the key is set again.
    std::string_view getStringProperty(std::string_view key) const;
    const std::vector<int>& getChildren() const { return m_children; }
    void addChild(int index) { m_children.push_back(index); }
    // The properties in key order, then the children.
    void toJSON(rabbit::object& object) const;

    // For whoever sets many properties: room for `count`, and a property whose key isn't below those that are
    // there.
    void reserve(std::size_t count) { m_properties.reserve(count); }
    void append(std::string_view key, variant_t value);

private:
    struct Property {
        std::string_view key;
        variant_t value;
    };

    void put(std::string_view key, variant_t value);

    std::vector<int> m_children;
    std::vector<Property> m_properties;  // ascending by key
    bool m_valid = true;
};

using LoopTypes = std::map<std::string, std::string, std::less<>>;

// Walks the rows and makes a record for each that has a point, one a configuration; configurations that land
// on the same point share one. Children hang under their parent's record of the same memory level. loops: the
// records, linked by index. loopTypes: text of a loop's type to a short id. captions: all level captions of
// the records, each once. viewRect: extended by each record. `onLoop` sees each record before it is added.
void fillLoops(const sptr_t<IDataset>& dataset, const LoopParams& params,
               const RooflineConfigurations& configurations,
               const std::shared_ptr<const CRooflineOptions>& options, bool selfData,
               std::vector<CLoopInfo>& loops, LoopTypes& loopTypes, std::vector<std::string>& captions,
               RooflineViewRect& viewRect, const std::function<void(CLoopInfo&)>& onLoop,
               const RowFilter& rowFilter);

}  // namespace data_models2
