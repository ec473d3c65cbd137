#include "roofline_model/unified/chart_range.h"

#include "roofline_model/unified/row_reader.h"
#include "roofline_model/unified/row_walk.h"

namespace data_models2 {

namespace {

// A tree with memory levels takes its configurations from the second list and finds none in the first; a tree
// without does the reverse, or finds the same ones twice.
const std::vector<std::vector<RooflineTypes>> kTypeLists{
    {{"f", "i", "b"}, {"1"}},
    {{"f", "i", "b"}, {"1"}, {"L1", "L2", "L3", "L4", "DRAM"}, {"load", "store", "all"}},
};

LoopParams coordinatesOf(const LoopParams& params, const RooflineConfiguration& configuration) {
    LoopParams result = getLoopParams4RooflineConfiguration(params, configuration);
    std::erase_if(result, [](const LoopParam& param) { return !param.isCoordinate(); });
    return result;
}

LoopParamSets makeSets(const LoopParams& params, const std::shared_ptr<const CRooflineOptions>& options,
                       bool withTotals) {
    LoopParamSets sets;
    for (auto types : kTypeLists) {
        if (withTotals) types.push_back({"0"});
        RooflineConfigurations configurations;
        configurations.init(types, options);
        for (const auto& configuration : configurations)
            if (auto coordinates = coordinatesOf(params, configuration); !coordinates.empty())
                sets.emplace_back(std::move(coordinates), configuration.getTypes());
        if (!sets.empty()) break;
    }
    return sets;
}

void readCoordinates(RowReader& reader, std::size_t set, const LoopParams& params, Coordinates& coordinates) {
    for (std::size_t i = 0; i < params.size(); ++i) {
        const variant_t value = reader.isValid(set, i) ? reader.getValue(set, i) : variant_t();
        if (value.isNumber())
            coordinates[params[i].getName()] = value.toDouble();
        else if (params[i].isNecessary())
            return;
    }
}

}  // namespace

void calcViewRectImp(RooflineViewRect& rect, const sptr_t<IDataset>& dataset, const LoopParams& params,
                     const std::shared_ptr<const CRooflineOptions>& options, bool withTotals) {
    const LoopParamSets sets = makeSets(params, options, withTotals);
    RowReader reader(sets, dataset);
    Coordinates coordinates;
    const auto addRow = [&](const sptr_t<IDataset>&, const sptr_t<RowNode>& row, int) {
        reader.setRow(row);
        for (std::size_t set = 0; set < sets.size(); ++set) {
            coordinates.clear();
            readCoordinates(reader, set, sets[set].first, coordinates);
            updateViewRect(rect, coordinates);
        }
        return 0;
    };
    forEachDatasetRows4Loops(dataset, addRow, {});
}

}  // namespace data_models2
