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
    explicit CoordinateReader(const LoopParams& params) : m_params(params) {
        Coordinates all;
        for (const auto& param : params) all[param.getName()] = kMissing;
        m_values.resize(all.size());
        for (const auto& param : params) m_index.push_back(indexOf(all, param.getName()));
        for (const auto& x : all) {
            if (!isValidAiCoord(x, all)) continue;
            const std::string partner = "y" + std::string(x.first.substr(1));
            m_points.emplace_back(indexOf(all, x.first), indexOf(all, partner));
        }
    }

    void addRow(RowReader& reader, std::size_t set, RooflineViewRect& rect) {
        std::fill(m_values.begin(), m_values.end(), kMissing);
        read(reader, set);
        for (const auto& [x, y] : m_points)
            if (!std::isnan(m_values[x]) && !std::isnan(m_values[y]))
                updateViewRect(rect, m_values[x], m_values[y]);
    }

private:
    static constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

    static std::size_t indexOf(const Coordinates& all, std::string_view name) {
        return static_cast<std::size_t>(all.find(name) - all.begin());
    }

    // A necessary parameter without a value ends the list.
    void read(RowReader& reader, std::size_t set) {
        for (std::size_t i = 0; i < m_params.size(); ++i) {
            const variant_t* value = reader.isValid(set, i) ? &reader.getValue(set, i) : nullptr;
            if (value && value->isNumber())
                m_values[m_index[i]] = value->toDouble();
            else if (m_params[i].isNecessary())
                return;
        }
    }

    const LoopParams& m_params;
    std::vector<double> m_values;                               // by name
    std::vector<std::size_t> m_index;                           // name by parameter
    std::vector<std::pair<std::size_t, std::size_t>> m_points;  // names of x and y
};

}  // namespace

void calcViewRectImp(RooflineViewRect& rect, const sptr_t<IDataset>& dataset, const LoopParams& params,
                     const std::shared_ptr<const CRooflineOptions>& options, bool withTotals) {
    const LoopParamSets sets = makeSets(params, options, withTotals);
    RowReader reader(sets, dataset);
    std::vector<CoordinateReader> readers;
    for (const auto& set : sets) readers.emplace_back(set.first);
    const auto addRow = [&](const sptr_t<IDataset>&, const sptr_t<RowNode>& row, int) {
        reader.setRow(row);
        for (std::size_t set = 0; set < sets.size(); ++set) readers[set].addRow(reader, set, rect);
        return 0;
    };
    forEachDatasetRows4Loops(dataset, addRow, {});
}

}  // namespace data_models2
