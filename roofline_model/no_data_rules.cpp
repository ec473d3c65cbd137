#include "roofline_model/no_data_rules.h"

#include "roofline_model/translation.h"
#include "roofline_model/unified/row_walk.h"

#include <algorithm>
#include <array>
#include <utility>

namespace data_models2 {

namespace {

struct Situation {
    const sptr_t<IDataset>& dataset;
    bool memoryData;
    const RooflineConfiguration& configuration;
    const RowStatistics& rows;
};

struct Keys {
    std::string title;
    std::string descr;
};

// The first entry whose type the configuration has decides.
constexpr std::pair<const char*, const char*> kDescriptionSuffixes[]{{"i", "_int"}};

std::string descriptionSuffix(const RooflineConfiguration& configuration) {
    for (const auto& [type, suffix] : kDescriptionSuffixes)
        if (configuration.hasType(type)) return suffix;
    return {};
}

struct Rule {
    bool (*holds)(const Situation&);
    Keys (*keys)(const Situation&);
};

constexpr Rule kRules[]{
    {[](const Situation& s) {
         return !s.memoryData && !s.configuration.hasNoTypes({"L2", "L3", "L4", "L5", "DRAM"});
     },
     [](const Situation&) {
         return Keys{"roofline_no_data_mem_levels_title", "roofline_no_data_mem_levels_descr"};
     }},
    {[](const Situation& s) {
         return !hasValue(s.dataset, FieldId::SelfGFlops) && !hasValue(s.dataset, FieldId::SelfGIntOps);
     },
     [](const Situation& s) {
         const std::string suffix = s.memoryData ? "" : "_topdown";
         return Keys{"roofline_collect_trc_title" + suffix, "roofline_collect_trc_descr" + suffix};
     }},
    {[](const Situation& s) { return s.rows.programOps == 0.0 || s.rows.rowTime == 0.0; },
     [](const Situation& s) {
         return Keys{"roofline_no_data_title", "roofline_no_data_descr" + descriptionSuffix(s.configuration)};
     }},
    {[](const Situation& s) { return s.rows.chartOps == 0.0 && s.rows.libraryRowSeen; },
     [](const Situation&) {
         return Keys{"roofline_pure_tessel_title", "roofline_pure_tessel_descr"};
     }},
    {[](const Situation& s) { return s.rows.chartOps == 0.0; },
     [](const Situation&) {
         return Keys{"roofline_filtered_out_title", "roofline_filtered_out_descr"};
     }},
};

}  // namespace

void addNoDataMessage(rabbit::object& object, const std::string& titleKey, const std::string& descrKey) {
    rabbit::object message(object.allocator());
    message.set("title", roofline::translate(titleKey));
    message.set("descr", roofline::translate(descrKey));
    object.set("noDataMessage", std::move(message));
}

void addNoDataMessage(rabbit::object& object, const sptr_t<IDataset>& dataset, bool memoryData,
                      const RooflineConfiguration& configuration, const RowStatistics& rows) {
    const Situation situation{dataset, memoryData, configuration, rows};
    const auto rule = std::find_if(std::begin(kRules), std::end(kRules),
                                   [&](const Rule& candidate) { return candidate.holds(situation); });
    const Keys keys = rule == std::end(kRules) ? Keys() : rule->keys(situation);
    addNoDataMessage(object, keys.title, keys.descr);
}

}  // namespace data_models2
