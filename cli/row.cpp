// `roofline row`: all that the library tells of one row, as JSON or as its property bags.
#include "host_interfaces/host_functions.h"

#include "cli/answer.h"
#include "cli/row_rooflines.h"
#include "cli/unplaced_rows.h"

#include <boost/property_tree/ptree.hpp>
#include <fmt/format.h>

namespace cli {
namespace {

RowRooflines::Row findRow(const RowRooflines& rooflines, const RowRequest& request) {
    RowRooflines::Row found;
    forEachRow(rooflines.dataset(), [&](const auto& row) {
        if (row->getId() == request.id) found = row;
    });
    if (!found)
        throw std::runtime_error(fmt::format("{}: there is no row {}", request.source.file, request.id));
    return found;
}

std::string bagsOf(const data_models2::IRowRooflineInfo& info) {
    using data_models2::saveBag;
    return fmt::format(R"({{"roofline":{},"memoryMetrics":{},"bottleneck":{}}})",
                       saveBag(info.getRooflineVariantBag()), saveBag(info.getMemoryMetricsVariantBag()),
                       saveBag(info.getBotteleneckVariantBag({})));
}

}  // namespace

int runRow(const RowRequest& request, Console& console) {
    const auto session = openSession(request.source);
    const auto configuration =
        completeConfiguration(session, chooseConfiguration(session, request.configuration));
    const RowRooflines rooflines(session, configuration, request.roofs);
    const auto info = rooflines.of(findRow(rooflines, request));
    const auto text = request.bags ? bagsOf(*info) : info->getRooflineData();
    Answer answer;
    answer.json = [&] { return text; };
    answer.jsonByDefault = true;
    deliver(answer, {}, console);
    warnOfOddThreads(session, request.roofs, console);
    return text.empty() ? kNoAnswer : kDone;
}

}  // namespace cli
