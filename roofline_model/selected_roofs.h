// Which roofs a chart shows at first, as JSON.
#pragma once

#include "host_interfaces/model.h"
#include "host_interfaces/roofline_services.h"

#include "roofline_model/rabbit.h"

#include <array>
#include <map>
#include <string>
#include <unordered_set>

namespace data_models2::roofline {

using RoofIds = std::unordered_set<RoofId>;
using RoofPerspective = IRooflineInfo::Perspective;
inline constexpr std::array kRoofPerspectives{RoofPerspective::Vectorized, RoofPerspective::NotVectorized,
                                              RoofPerspective::Program};
// The compute roofs that dominate a program, by perspective; empty when they aren't known.
using DominatingRoofs = std::map<RoofPerspective, RoofIds>;

// The roofs of a machine and which of them are selected and hidden.
struct SelectedRoofs {
    RoofIds selected;
    RoofIds hidden;
    generic_iterator_t<RoofItem> roofs;
};

// One member a roof, by its short name: whether it is selected and whether it is hidden.
void fillRoofsState(rabbit::object& state, const RoofIds& selected, const RoofIds& hidden,
                    generic_iterator_t<RoofItem> roofs);
// Writes that state as the member "roofsState"; nothing without roofs.
void addSelectedRoofs(rabbit::object& object, const SelectedRoofs& roofs);
// An object of that one member; an empty text without roofs.
std::string createSelectedRoofsJson(const RoofIds& selected, const RoofIds& hidden,
                                    generic_iterator_t<RoofItem> roofs);

}  // namespace data_models2::roofline
