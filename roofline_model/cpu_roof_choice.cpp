#include "roofline_model/cpu_roof_choice.h"

#include "host_interfaces/host_functions.h"

#include <algorithm>
#include <array>

namespace data_models2::roofline {

namespace {

using Perspective = RoofPerspective;

void fillVectorizedDominatingRoofs(const DominatingTypesInfo& info, RoofIds& roofs) {
    constexpr std::uint32_t kInt64 = 4;
    const bool isFloat = info.operationsType != 0 && info.operationsType != 2;
    const bool isSingle = info.floatType == 0 || info.floatType == 2;
    if (isFloat)
        roofs.insert(isSingle ? RoofId::SpVectorFmaPeak : RoofId::DpVectorFmaPeak);
    else
        roofs.insert(isSingle ? RoofId::SpVectorAddPeak : RoofId::DpVectorAddPeak);
    roofs.insert(info.intType == kInt64 ? RoofId::Int64VectorAddPeak : RoofId::Int32VectorAddPeak);
}

void fillDominatingRoofs(const DominatingTypesInfo& info, Perspective perspective, RoofIds& roofs) {
    const bool isVectorized =
        perspective == Perspective::Vectorized || (perspective == Perspective::Program && info.vectorized);
    if (isVectorized) return fillVectorizedDominatingRoofs(info, roofs);
    roofs.insert({RoofId::ScalarAddPeak, RoofId::IntScalarAddPeak});
}

struct LevelRoof {
    const char* level;
    RoofId roof;
};
constexpr std::array<LevelRoof, 5> kLevelRoofs{{{"L1", RoofId::L1Bandwidth},
                                                {"L2", RoofId::L2Bandwidth},
                                                {"L3", RoofId::L3Bandwidth},
                                                {"L4", RoofId::L4Bandwidth},
                                                {"DRAM", RoofId::DramBandwidth}}};

}  // namespace

DominatingRoofs getCpuDominatingRoofs(const DominatingTypesInfo& info) {
    DominatingRoofs result;
    for (const auto perspective : kRoofPerspectives)
        fillDominatingRoofs(info, perspective, result[perspective]);
    return result;
}

void fillSelectedMemoryRoofs(RoofIds& selected, const std::string& configuration,
                             const RooflineConfigurations::Options& options, int memoryLevels,
                             RoofPerspective perspective) {
    if (memoryLevels == 1) return fillSelectedMemoryRoofsForCARM(selected, perspective);
    RooflineConfigurations configurations;
    if (!configurations.init(configuration, options)) return;
    for (const auto& [level, roof] : kLevelRoofs) {
        const bool isShown = std::any_of(configurations.begin(), configurations.end(),
                                         [name = level](const auto& each) { return each.hasType(name); });
        if (!isShown) continue;
        selected.insert(roof);
        // Deliberate: a lone chart of the first level shows the default pair, whatever the perspective.
        if (roof == RoofId::L1Bandwidth && configurations.size() == 1) {
            selected.clear();
            fillSelectedMemoryRoofsForCARM(selected, Perspective::Program);
        }
        return;
    }
}

void fillSelectedMemoryRoofsForCARM(RoofIds& selected, RoofPerspective perspective) {
    selected.insert(perspective == Perspective::NotVectorized ? RoofId::ScalarL1Bandwidth
                                                              : RoofId::L1Bandwidth);
    selected.insert(RoofId::DramBandwidth);
}

RoofIds getCpuHiddenRoofs(generic_iterator_t<RoofItem> roofs, RoofPerspective perspective) {
    RoofIds hidden;
    if (perspective == Perspective::NotVectorized) return hidden;
    for (; !roofs.isEnd(); ++roofs) {
        const RoofItem roof = *roofs;
        if (roof::hasType(roof, RoofItem::OnlyNotVectorized) && roof::hasType(roof, RoofItem::Memory))
            hidden.insert(roof.id);
    }
    return hidden;
}

}  // namespace data_models2::roofline
