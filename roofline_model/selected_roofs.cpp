#include "roofline_model/selected_roofs.h"

#include "roofline_model/roof_names.h"

namespace data_models2::roofline {

void fillRoofsState(rabbit::object& state, const RoofIds& selected, const RoofIds& hidden,
                    generic_iterator_t<RoofItem> roofs) {
    for (; !roofs.isEnd(); ++roofs) {
        const RoofItem roof = *roofs;
        rabbit::object item(state.allocator());
        item.set("selected", selected.contains(roof.id));
        item.set("hidden", hidden.contains(roof.id));
        state.set(helpers::getRoofShortName(roof.name), std::move(item));
    }
}

void addSelectedRoofs(rabbit::object& object, const SelectedRoofs& roofs) {
    if (roofs.roofs.isEnd()) return;
    rabbit::object state(object.allocator());
    fillRoofsState(state, roofs.selected, roofs.hidden, roofs.roofs);
    object.set("roofsState", std::move(state));
}

std::string createSelectedRoofsJson(const RoofIds& selected, const RoofIds& hidden,
                                    generic_iterator_t<RoofItem> roofs) {
    if (roofs.isEnd()) return {};
    return rabbit::writeObject([&](rabbit::object& root) {
        addSelectedRoofs(root, {selected, hidden, std::move(roofs)});
    });
}

}  // namespace data_models2::roofline
