#include "roofline_model/unified/loops.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/roof_names.h"
#include "roofline_model/unified/row_reader.h"

#include <algorithm>
#include <cmath>

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
        for (const auto& set : sets) m_levelPrefixes.push_back(roofline::getMemoryLevelCaption(set.second));
    }

    // The index of the row's first record, or -1 when it has none.
    int addRow(const sptr_t<RowNode>& row, int parent) {
        m_reader.setRow(row);
        m_loopId = roofline::helpers::getLoopId(row);
        m_objId = roofline::getObjectId(row, m_dataset);
        m_typeId.clear();
        m_rowCaptions.clear();
        m_previous.clear();
        const auto first = m_chart.loops.size();
        for (std::size_t set = 0; set < m_sets.size(); ++set) {
            CLoopInfo record;
            m_coordinates.clear();
            if (!read(set, record) || !record.isValid()) continue;
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
        for (std::size_t i = 0; i < params.size(); ++i) {
            const LoopParam& param = params[i];
            if (!m_reader.isValid(set, i)) {
                if (param.isNecessary()) return false;
            } else if (param.getName() == "type") {
                readType(m_reader.getValue(set, i));
            } else {
                const double value = record.set(param.getName(), m_reader.getValue(set, i), param.getType());
                if (!record.isComplete()) return false;
                if (param.isCoordinate() && isPlaceable(value)) m_coordinates[param.getName()] = value;
            }
        }
        return true;
    }

    void readType(const variant_t& type) {
        if (!m_typeId.empty() || !type.isText()) return;
        auto& types = m_chart.loopTypes;
        m_typeId = types.try_emplace(std::string(type.text()), std::to_string(types.size())).first->second;
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
        record.set("id", m_loopId);
        record.set("objId", m_objId);
        if (!m_levelPrefixes[set].empty()) record.set("memoryLevelPref", m_levelPrefixes[set]);
        if (!m_typeId.empty()) record.set("type", m_typeId);
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
    std::vector<std::string> m_levelPrefixes;  // by set
    Captions m_defaultCaptions;
    sptr_t<IDataset> m_dataset;
    std::string m_childState;
    Chart m_chart;
    const std::function<void(CLoopInfo&)>& m_onLoop;
    RowReader m_reader;

    // Of the current row.
    std::string m_loopId;
    std::string m_objId;
    std::string m_typeId;
    Captions
        m_rowCaptions;  // of its records so far: another row's would label it with levels that it never had
    Coordinates m_coordinates;
    Coordinates m_previous;  // of the last set that had a point
};

}  // namespace

void CLoopInfo::set(const std::string& key, const std::string& value) {
    m_properties.insert_or_assign(key, variant_t(value));
}
void CLoopInfo::set(const std::string& key, int value) {
    m_properties.insert_or_assign(key, variant_t(value));
}

double CLoopInfo::set(const std::string& key, const variant_t& value, int type) {
    switch (value.kind()) {
        case variant_t::kDouble:
            if (!isPlaceable(value.toDouble())) break;
            m_properties.insert_or_assign(key, value);
            return value.toDouble();
        case variant_t::kInt64:  // long integers travel as text
            set(key, std::to_string(value.signedValue()));
            return kNoCoordinate;
        case variant_t::kUInt32:
            m_properties.insert_or_assign(key, value);
            return kNoCoordinate;
        case variant_t::kBool:
            if (value.unsignedValue() != 0) m_properties.insert_or_assign(key, value);
            return kNoCoordinate;
        case variant_t::kText:
        case variant_t::kLiteral:
            if (type & param_type::kClean && value.text().find('\'') != std::string_view::npos) {
                std::string text(value.text());
                std::replace(text.begin(), text.end(), '\'', '`');
                set(key, text);
            } else {
                m_properties.insert_or_assign(key, value);
            }
            return kNoCoordinate;
        case variant_t::kEmpty:
            break;
        default:
            return kNoCoordinate;
    }
    if (type & param_type::kNecessary) m_valid = false;
    return kNoCoordinate;
}

std::string_view CLoopInfo::getStringProperty(const std::string& key) const {
    const auto found = m_properties.find(key);
    return found == m_properties.end() ? std::string_view() : found->second.text();
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
