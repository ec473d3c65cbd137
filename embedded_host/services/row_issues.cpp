// What an analysis has found about a row, from rows that know it.
#include "embedded_host/services/row_issues.h"

#include "host_interfaces/host_functions.h"

#include <boost/property_tree/ptree.hpp>

namespace data_models2 {

variant_bag_t issue_helpers::getRowIssues(const sptr_t<RowNode>& row) {
    const auto* const source = dynamic_cast<const embedded_host::IRowIssueSource*>(row.get());
    const auto names = source ? source->boundedBy() : std::vector<std::string>();
    variant_bag_t issues;
    if (names.empty()) return issues;
    auto& bounds = issues.add_child("bounded_by", {});
    bounds.add_child("arrayOf", variant_bag_t(variant_t::literal("item")));
    for (const auto& name : names) bounds.add_child("item", variant_bag_t(name));
    return issues;
}

}  // namespace data_models2
