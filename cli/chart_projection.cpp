// `roofline chart --with`: a measured result and its projection on one chart, under the roofs of the target.
#include "cli/answer.h"
#include "cli/picture/projection_picture.h"
#include "cli/projection_tables.h"
#include "cli/session.h"
#include "cli/text.h"
#include "cli/unplaced_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace cli {
namespace {

struct Operations {
    std::string_view option;
    const char *name, *unit;
};
constexpr std::array<Operations, 3> kOperations{
    {{"f", "float", "FLOP"}, {"i", "int", "INTOP"}, {"b", "all", "OP"}}};

Session openTarget(const ChartRequest& request) {
    ResultSource source;
    source.file = request.with;
    source.language = request.source.language;
    auto target = openSession(source);
    if (target.models.survey)
        throw UsageError(
            fmt::format("--with: {} is {}; expected an offload result, such as `roofline project` makes",
                        request.with, target.kind->aResult));
    return target;
}

std::vector<Roof> roofsOf(const Session& target, const ChartRequest& request, const std::string& operations) {
    const auto configuration = completeConfiguration(target, operations);
    const auto perspective = perspectiveOf(request.roofs);
    const auto roofs =
        target.engine->getRoofs(configuration, threadingOf(target, request.roofs), perspective);
    return chooseRoofs(parseRoofs(roofs), target.engine->getSelectedRoofs(configuration, perspective));
}

std::string draw(const Session& target, const ChartRequest& request, const Operations& operations,
                 const ProjectionTableRequest& table) {
    const auto& device = table.targetDevice.empty() ? table.targetMachine : table.targetDevice;
    PictureOptions options;
    options.title = fmt::format("{}: measured, and projected on {}", table.measuredProgram,
                                device.empty() ? "a target" : device);
    options.subtitle = "Roofs of the target";
    if (!table.targetMachine.empty()) options.subtitle += ", " + table.targetMachine;
    if (!table.measuredMachine.empty()) options.subtitle += "  |  measured on " + table.measuredMachine;
    options.note = timesSentence(table.projection);
    return drawProjection(table.projection, roofsOf(target, request, std::string(operations.option)), options,
                          operations.unit);
}

void tellDoubts(const ChartRequest& request, const Projection& projection, const Session& target,
                Console& console) {
    const auto& given = request.configuration.value_or("");
    if (given.find('-') != std::string::npos)
        console.err
            << "note: of --config only the operations count beside a projection: intensities are over the "
               "traffic of the core\n";
    if (projection.renamed > 0)
        console.err << fmt::format(
            "note: {} of {} rows have another name in {}: is it made of this result?\n", projection.renamed,
            projection.rows.pairs.size(), request.with);
    if (target.result->machineName().empty())
        console.err << "note: the projection knows no machine, so there are no roofs\n";
}

}  // namespace

int runProjectedChart(const ChartRequest& request, Console& console) {
    const auto measured = openSession(request.source);
    const auto target = openTarget(request);
    threadingOf(target, request.roofs);  // throws for what means nothing there, whatever is asked for
    const auto complete =
        completeConfiguration(measured, chooseConfiguration(measured, request.configuration));
    const auto& operations = *std::find_if(
        kOperations.begin(), kOperations.end(),
        [&](const Operations& each) { return each.option == operationsOf(*measured.kind, complete).option; });
    if (!measured.rows || !target.rows) throw std::runtime_error("one of the results has no rows");
    const auto projection = makeProjection(measured, target, std::string(operations.option));
    const ProjectionTableRequest table{projection,
                                       request.source.file,
                                       programOf(measured, request.source.file),
                                       measured.result->machineName(),
                                       request.with,
                                       target.result->targetName(),
                                       target.result->machineName(),
                                       operations.name};
    if (projection.rows.pairs.empty())
        throw std::runtime_error(
            fmt::format("no row of {} has the id of one of {}: is that a projection of it?",
                        request.source.file, request.with));
    Answer answer;
    answer.json = [&] { return projectionJson(table); };
    answer.csv = [&] { return projectionCsv(table); };
    answer.svg = [&] { return draw(target, request, operations, table); };
    answer.table = [&] { return projectionText(table); };
    deliver(answer, request.outputs, console);
    tellDoubts(request, projection, target, console);
    return kDone;
}

}  // namespace cli
