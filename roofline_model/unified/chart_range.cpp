#include "roofline_model/unified/chart_range.h"

#include "roofline_model/unified/row_reader.h"
#include "roofline_model/unified/row_walk.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace data_models2 {

namespace {

// A tree with memory levels finds no configuration in the first list, a tree without finds the same ones in
// both.
std::vector<std::vector<RooflineTypes>> typeLists() {
    return {
        {{"f", "i", "b"}, {"1"}},
        {{"f", "i", "b"}, {"1"}, {"L1", "L2", "L3", "L4", "DRAM"}, {"load", "store", "all"}},
    };
}

LoopParams coordinatesOf(const LoopParams& params, const RooflineConfiguration& configuration) {
    LoopParams result = getLoopParams4RooflineConfiguration(params, configuration);
    std::erase_if(result, [](const LoopParam& param) { return !param.isCoordinate(); });
    return result;
}

LoopParamSets makeSets(const LoopParams& params, const std::shared_ptr<const CRooflineOptions>& options,
                       bool withTotals) {
    LoopParamSets sets;
    for (auto& types : typeLists()) {
        if (withTotals) types.push_back({"0"});
        RooflineConfigurations configurations;
        configurations.init(types, options);
        for (const auto& configuration : configurations)
            if (auto coordinates = coordinatesOf(params, configuration); !coordinates.empty())
                sets.emplace_back(std::move(coordinates), configuration.getTypes());
        if (!sets.empty()) break;  // the second list would only repeat them
    }
    return sets;
}

// The coordinates of one set, read row by row: the rules of `updateViewRect` for a record's coordinates, with
// the names compared once a walk.
class CoordinateReader {
public:
    CoordinateReader(const RowReader& reader, std::size_t set, const LoopParams& params) {
        Coordinates all;
        for (const auto& param : params) all[param.getName()] = kMissing;
        m_values.resize(all.size());
        for (std::size_t i = 0; i < params.size(); ++i)
            m_steps.push_back(
                {reader.slotOf(set, i), indexOf(all, params[i].getName()), params[i].isNecessary()});
        for (const auto& x : all) {
            if (!isValidAiCoord(x, all)) continue;
            const std::string partner = "y" + std::string(x.first.substr(1));
            m_points.emplace_back(indexOf(all, x.first), indexOf(all, partner));
        }
    }

    void addRow(RowReader& reader, RooflineViewRect& rect) {
        std::fill(m_values.begin(), m_values.end(), kMissing);
        read(reader);
        for (const auto& [x, y] : m_points)
            if (!std::isnan(m_values[x]) && !std::isnan(m_values[y]))
                updateViewRect(rect, m_values[x], m_values[y]);
    }

private:
    static constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

    struct Step {
        std::size_t slot;
        std::size_t name;
        bool isNecessary;
    };

    static std::size_t indexOf(const Coordinates& all, std::string_view name) {
        return static_cast<std::size_t>(all.find(name) - all.begin());
    }

    // A necessary parameter without a value ends the list.
    void read(RowReader& reader) {
        for (const Step& step : m_steps) {
            if (reader.isValid(step.slot) && reader.getValue(step.slot).isNumber())
                m_values[step.name] = reader.getValue(step.slot).toDouble();
            else if (step.isNecessary)
                return;
        }
    }

    std::vector<Step> m_steps;
    std::vector<double> m_values;                               // by name
    std::vector<std::pair<std::size_t, std::size_t>> m_points;  // names of x and y
};

}  // namespace

void calcViewRectImp(RooflineViewRect& rect, const sptr_t<IDataset>& dataset, const LoopParams& params,
                     const std::shared_ptr<const CRooflineOptions>& options, bool withTotals) {
    const LoopParamSets sets = makeSets(params, options, withTotals);
    RowReader reader(sets, dataset);
    std::vector<CoordinateReader> readers;
    for (std::size_t set = 0; set < sets.size(); ++set) readers.emplace_back(reader, set, sets[set].first);
    const auto addRow = [&](const sptr_t<IDataset>&, const sptr_t<RowNode>& row, int) {
        reader.setRow(row);
        for (auto& coordinates : readers) coordinates.addRow(reader, rect);
        return 0;
    };
    forEachDatasetRows4Loops(dataset, addRow, {});
}

}  // namespace data_models2
