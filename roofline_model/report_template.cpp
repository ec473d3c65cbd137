#include "roofline_model/report_template.h"

#include "roofline_model/roof_names.h"
#include "roofline_model/roofline_document.h"

#include <boost/property_tree/ptree.hpp>

#include <algorithm>

namespace data_models2 {

namespace {

using rabbit::Value;

struct Report {
    const ReportRequest& request;
    const EngineCore& core;
    bool hasRoofs;  // asked once: a missing table is asserted each time
    rabbit::Allocator& allocator;
};

constexpr OperationsType kOperations[]{OperationsType::Float, OperationsType::Int, OperationsType::Mixed};

Value memoryLevel(const Report& report) {
    const auto& options = report.core.options();
    return rabbit::makeValue(options ? options->getDefaultLevel() : std::string(), report.allocator);
}

Value dominatingType(const Report& report) {
    return Value(static_cast<int>(roofline::getDominatingType(report.core.metrics())));
}

std::string configurationOf(const Report& report, const std::string& type) {
    const auto& options = report.core.options();
    return options ? options->getRooflineConfigurationStr({type}) : type;
}

Value programTotal(const Report& report, const std::string& type) {
    rabbit::array points(report.allocator);
    const auto& [request, core, hasRoofs, allocator] = report;
    RooflineConfigurations configurations;
    if (!core.viewModel() || !configurations.init(configurationOf(report, type), core.options()))
        return points.take();
    const auto rows = core.viewModel()->getDataset(core.kind().rows);
    for (const auto& total : core.makeTotals(rows, configurations, request.memoryLevels)) {
        if (!(total.elapsedTime > 0.0)) continue;
        rabbit::object point(allocator);
        fillProgramTotal(point, RooflineAttrsTotal(total), core.options(), RooflineTypes{type},
                         core.kind().tables().attributes);
        points.push(std::move(point));
    }
    return points.take();
}

Value allRoofs(const Report& report, const std::string& type) {
    rabbit::array setUps(report.allocator);
    if (report.hasRoofs)
        report.core.fillAllRoofs(setUps, configurationOf(report, type), report.request.threads);
    return setUps.take();
}

// Those of the set-up that a request without a choice stands for.
Value roofs(const Report& report, const std::string& type) {
    rabbit::array result(report.allocator);
    if (report.hasRoofs)
        report.core.fillRoofs(result, configurationOf(report, type),
                              report.core.kind().features(variant_bag_t(), report.request.threads),
                              EngineCore::Perspective::Program);
    return result.take();
}

Value selectedRoofs(const Report& report, const std::string& type) {
    rabbit::object result(report.allocator);
    if (report.hasRoofs)
        roofline::addSelectedRoofs(
            result, report.core.selectRoofs(configurationOf(report, type), EngineCore::Perspective::Program,
                                            report.request.dominating, report.request.memoryLevels));
    return result.take();
}

// Filled in with the loops, later.
Value loopsAdditionalInfo(const Report& report, const std::string&) {
    return rabbit::object(report.allocator).take();
}

void fillRooflineTypeMapItem(const std::string& type, rabbit::object& map, Value data) {
    rabbit::object item(map.allocator());
    item.append("rooflineType", type);
    item.append("data", std::move(data));
    map.append(type, std::move(item));
}

template <Value (*makeData)(const Report&, const std::string&)>
Value byType(const Report& report) {
    rabbit::object map(report.allocator);
    for (const OperationsType operations : kOperations) {
        const std::string type = roofline::getRooflineTypeFromOpsType(operations);
        fillRooflineTypeMapItem(type, map, makeData(report, type));
    }
    return map.take();
}

Value loopParams(const Report& report) {
    return dumpLoopParams(report.core.kind().tables().params, report.allocator).take();
}

Value mainChartProperties(const Report& report) {
    return dumpRooflineProperties(report.core.kind().tables().properties, report.allocator).take();
}

Value attributes(const Report& report) {
    return dumpRooflineAttributes(report.core.kind().tables().attributes, report.allocator).take();
}

struct Member {
    std::string_view key;
    Value (*make)(const Report&);
    bool isOfEachKind = true;
};

constexpr Member kMembers[]{
    {"memoryLevel", memoryLevel},
    {"intDominatingType", dominatingType},
    {"programTotal", byType<programTotal>},
    {"allRoofs", byType<allRoofs>, false},
    {"roofs", byType<roofs>, false},
    {"selectedRoofs", byType<selectedRoofs>, false},
    {"loopsAdditionalInfo", byType<loopsAdditionalInfo>, false},
    {"loopParams", loopParams},
    {"mainChartProperties", mainChartProperties},
    {"attrs", attributes},
};

}  // namespace

std::string makeReportTemplate(const ReportRequest& request) {
    const auto& core = request.core;
    const auto& own = core.kind().reportMembers;
    return rabbit::writeObject([&](rabbit::object& root) {
        const Report report{request, core, core.viewModel() && core.getRoofManager(), root.allocator()};
        for (const auto& [key, make, isOfEachKind] : kMembers)
            if (isOfEachKind || std::find(own.begin(), own.end(), key) != own.end())
                root.append(key, make(report));
    });
}

}  // namespace data_models2
