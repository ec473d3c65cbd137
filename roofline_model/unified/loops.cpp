#include "roofline_model/unified/loops.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/roof_names.h"
#include "roofline_model/unified/row_reader.h"

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace data_models2 {

namespace {

using Captions = std::vector<std::string>;

// Strictly between the largest doubles of either sign.
bool isPlaceable(double value) { return std::abs(value) < std::numeric_limits<double>::max(); }

void addOnce(Captions& list, const Captions& captions) {
    for (const auto& caption : captions)
        if (std::find(list.begin(), list.end(), caption) == list.end()) list.push_back(caption);
}

bool containsAll(std::string_view text, const Captions& captions) {
    return std::all_of(captions.begin(), captions.end(),
                       [text](const auto& caption) { return text.find(caption) != std::string_view::npos; });
}

// The first configuration carries no captions of its own: its records are the chart's default.
LoopParamSets makeSets(const LoopParams& params, const RooflineConfigurations& configurations,
                       const std::shared_ptr<const CRooflineOptions>& options) {
    LoopParamSets sets;
    for (const auto& configuration : configurations)
        sets.emplace_back(getLoopParams4RooflineConfiguration(params, configuration),
                          sets.empty() ? Captions() : configuration.getCaptions(options));
    return sets;
}

// How many keys most records have beside their parameters: both ids and the type.
constexpr std::size_t kOwnKeys = 3;

// The parameters by key; of those with one key the later stays behind the earlier and overwrites it.
std::vector<std::size_t> keyOrder(const LoopParams& params) {
    std::vector<std::size_t> order(params.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](auto a, auto b) { return params[a].getName() < params[b].getName(); });
    return order;
}

// What a walk fills.
struct Chart {
    std::vector<CLoopInfo>& loops;
    LoopTypes& loopTypes;
    Captions& captions;
    RooflineViewRect& viewRect;
};

// Makes the records of one row after the other.
class RecordMaker {
public:
    RecordMaker(const LoopParamSets& sets, Captions defaultCaptions, const sptr_t<IDataset>& dataset,
                bool selfData, Chart chart, const std::function<void(CLoopInfo&)>& onLoop)
        : m_sets(sets),
          m_defaultCaptions(std::move(defaultCaptions)),
          m_dataset(dataset),
          m_childState(selfData ? "+" : "-"),
          m_chart(chart),
          m_onLoop(onLoop),
          m_reader(sets, dataset) {
        for (const auto& set : sets) {
            m_levelPrefixes.push_back(roofline::getMemoryLevelCaption(set.second));
            m_keyOrders.push_back(keyOrder(set.first));
        }
    }

    // The index of the row's first record, or -1 when it has none.
    int addRow(const sptr_t<RowNode>& row, int parent) {
        m_reader.setRow(row);
        const std::string loopId = roofline::helpers::getLoopId(row);
        const std::string objId = roofline::getObjectId(row, m_dataset);
        m_loopId = loopId;
        m_objId = objId == loopId ? m_loopId : variant_t(objId);
        m_typeId = {};
        m_rowCaptions.clear();
        m_previous.clear();
        const auto first = m_chart.loops.size();
        for (std::size_t set = 0; set < m_sets.size(); ++set) {
            CLoopInfo record;
            m_coordinates.clear();
            if (!read(set, record)) continue;
            if (m_chart.loops.size() > first && m_coordinates == m_previous)
                mergeIntoLast(set);
            else
                add(set, std::move(record), parent);
            std::swap(m_previous, m_coordinates);
        }
        return m_chart.loops.size() > first ? static_cast<int>(first) : -1;
    }

private:
    // Whether the row has all that the set needs.
    bool read(std::size_t set, CLoopInfo& record) {
        const LoopParams& params = m_sets[set].first;
        m_values.assign(params.size(), {});
        for (std::size_t i = 0; i < params.size(); ++i) {
            const LoopParam& param = params[i];
            const auto slot = m_reader.slotOf(set, i);
            if (!m_reader.isValid(slot)) {
                if (param.isNecessary()) return false;
                continue;
            }
            const variant_t& value = m_reader.getValue(slot);
            if (param.getName() == "type") {
                readType(value);
                continue;
            }
            m_values[i] = CLoopInfo::toProperty(value, param.getType());
            if (param.isNecessary() && CLoopInfo::isMissing(value, m_values[i])) return false;
            if (m_values[i].kind() == variant_t::kDouble && param.isCoordinate())
                m_coordinates[param.getName()] = m_values[i].toDouble();
        }
        const auto present =
            params.size() - static_cast<std::size_t>(std::count_if(
                                m_values.begin(), m_values.end(), [](const auto& v) { return v.isEmpty(); }));
        record.reserve(present + kOwnKeys);
        for (const auto i : m_keyOrders[set])
            if (!m_values[i].isEmpty()) record.append(params[i].getName(), std::move(m_values[i]));
        return record.isValid();
    }

    void readType(const variant_t& type) {
        if (!m_typeId.isEmpty() || !type.isText()) return;
        auto& types = m_chart.loopTypes;
        auto known = types.find(type.text());
        if (known == types.end()) known = types.emplace(type.text(), std::to_string(types.size())).first;
        m_typeId = known->second;
    }

    void mergeIntoLast(std::size_t set) {
        addOnce(m_rowCaptions, m_sets[set].second);
        addOnce(m_chart.captions, m_sets[set].second);
        if (!m_rowCaptions.empty())
            m_chart.loops.back().set("memoryLevelPref", roofline::getMemoryLevelCaption(m_rowCaptions));
    }

    void add(std::size_t set, CLoopInfo record, int parent) {
        const Captions& captions = m_sets[set].second;
        addOnce(m_rowCaptions, captions.empty() ? m_defaultCaptions : captions);
        addOnce(m_chart.captions, captions.empty() ? m_defaultCaptions : captions);
        record.set("id", m_loopId, 0);
        record.set("objId", m_objId, 0);
        if (!m_levelPrefixes[set].empty()) record.set("memoryLevelPref", m_levelPrefixes[set]);
        record.set("type", m_typeId, 0);
        if (parent >= 0) attach(record, parentOf(captions, parent));
        updateViewRect(m_chart.viewRect, m_coordinates);
        if (m_onLoop) m_onLoop(record);
        m_chart.loops.push_back(std::move(record));
    }

    void attach(CLoopInfo& record, int parent) {
        record.set("parent", parent);
        const auto index = m_chart.loops.size();
        if (static_cast<std::size_t>(parent) >= index) return;
        CLoopInfo& parentRecord = m_chart.loops[static_cast<std::size_t>(parent)];
        parentRecord.addChild(static_cast<int>(index));
        if (parentRecord.getChildren().size() == 1) parentRecord.set("state", m_childState);
    }

    // A row with several records takes its children at the record of the same memory level.
    int parentOf(const Captions& captions, int parent) const {
        const auto& loops = m_chart.loops;
        const auto first = static_cast<std::size_t>(parent);
        if (captions.empty() || first >= loops.size()) return parent;
        const auto source = loops[first].getStringProperty("objId");
        for (auto i = first; i < loops.size() && loops[i].getStringProperty("objId") == source; ++i)
            if (containsAll(loops[i].getStringProperty("memoryLevelPref"), captions))
                return static_cast<int>(i);
        return parent;
    }

    const LoopParamSets& m_sets;
    std::vector<std::string> m_levelPrefixes;           // by set
    std::vector<std::vector<std::size_t>> m_keyOrders;  // by set
    Captions m_defaultCaptions;
    sptr_t<IDataset> m_dataset;
    std::string m_childState;
    Chart m_chart;
    const std::function<void(CLoopInfo&)>& m_onLoop;
    RowReader m_reader;

    // Of the current row.
    variant_t m_loopId;  // texts, shared by the row's records
    variant_t m_objId;
    variant_t m_typeId;
    std::vector<variant_t> m_values;  // by parameter
    // Captions of its records so far: another row's would label it with levels that it never had.
    Captions m_rowCaptions;
    Coordinates m_coordinates;
    Coordinates m_previous;  // of the last set that had a point
};

}  // namespace

variant_t CLoopInfo::toProperty(const variant_t& value, int type) {
    switch (value.kind()) {
        case variant_t::kDouble:
            return isPlaceable(value.toDouble()) ? value : variant_t();
        case variant_t::kInt64:
            return std::to_string(value.signedValue());
        case variant_t::kUInt32:
            return value;
        case variant_t::kBool:
            return value.unsignedValue() != 0 ? value : variant_t();
        case variant_t::kText:
        case variant_t::kLiteral:
            return type & param_type::kClean && value.text().find('\'') != std::string_view::npos
                       ? boost::replace_all_copy(std::string(value.text()), "'", "`")
                       : value;
        default:
            return {};
    }
}

bool CLoopInfo::isMissing(const variant_t& value, const variant_t& property) {
    return property.isEmpty() && (value.isEmpty() || value.kind() == variant_t::kDouble);
}

double CLoopInfo::set(std::string_view key, const variant_t& value, int type) {
    variant_t property = toProperty(value, type);
    if (type & param_type::kNecessary && isMissing(value, property)) m_valid = false;
    if (property.isEmpty()) return kNoCoordinate;
    const double coordinate = property.kind() == variant_t::kDouble ? property.toDouble() : kNoCoordinate;
    put(key, std::move(property));
    return coordinate;
}

void CLoopInfo::append(std::string_view key, variant_t value) {
    if (!m_properties.empty() && m_properties.back().key == key)
        m_properties.back().value = std::move(value);
    else
        m_properties.push_back({key, std::move(value)});
}

void CLoopInfo::put(std::string_view key, variant_t value) {
    const auto at =
        std::lower_bound(m_properties.begin(), m_properties.end(), key,
                         [](const Property& property, std::string_view k) { return property.key < k; });
    if (at != m_properties.end() && at->key == key)
        at->value = std::move(value);
    else
        m_properties.insert(at, {key, std::move(value)});
}

std::string_view CLoopInfo::getStringProperty(std::string_view key) const {
    const auto found = std::find_if(m_properties.begin(), m_properties.end(),
                                    [key](const Property& property) { return property.key == key; });
    return found == m_properties.end() ? std::string_view() : found->value.text();
}

void CLoopInfo::toJSON(rabbit::object& object) const {
    for (const auto& [key, value] : m_properties) {
        if (value.kind() == variant_t::kDouble)
            object.append(key, value.toDouble());
        else if (value.kind() == variant_t::kUInt32)
            object.append(key, static_cast<std::uint32_t>(value.unsignedValue()));
        else if (value.kind() == variant_t::kInt32)
            object.append(key, static_cast<std::int32_t>(value.signedValue()));
        else if (value.isText())
            object.append(key, value.text());
    }
    if (m_children.empty()) return;
    rabbit::array children(object.allocator());
    for (const int child : m_children) children.push(child);
    object.append("children", std::move(children));
}

void fillLoops(const sptr_t<IDataset>& dataset, const LoopParams& params,
               const RooflineConfigurations& configurations,
               const std::shared_ptr<const CRooflineOptions>& options, bool selfData,
               std::vector<CLoopInfo>& loops, LoopTypes& loopTypes, Captions& captions,
               RooflineViewRect& viewRect, const std::function<void(CLoopInfo&)>& onLoop,
               const RowFilter& rowFilter) {
    if (!dataset || configurations.empty()) return;
    const LoopParamSets sets = makeSets(params, configurations, options);
    RecordMaker maker(sets, configurations.begin()->getCaptions(options), dataset, selfData,
                      Chart{loops, loopTypes, captions, viewRect}, onLoop);
    forEachDatasetRows4Loops(
        dataset,
        [&](const sptr_t<IDataset>&, const sptr_t<RowNode>& row, int parent) {
            return maker.addRow(row, parent);
        },
        rowFilter);
}

}  // namespace data_models2
