// `roofline project`: a CPU result put on a target machine becomes an offload result.
#include "embedded_host/embedded_host.h"

#include "cli/progress.h"
#include "cli/requests.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <filesystem>

namespace cli {
namespace {
namespace fs = std::filesystem;

bool isFile(const ProjectRequest& request) { return !request.output.empty() && request.output != "-"; }

// From the new result's folder, from which a result looks for its machine.
std::string machineName(const ProjectRequest& request) {
    if (!isFile(request)) return request.target;
    const auto folder = fs::absolute(request.output).parent_path();
    return fs::absolute(request.target).lexically_proximate(folder).generic_string();
}

}  // namespace

int runProject(const ProjectRequest& request, Console& console) {
    embedded_host::ProjectionRequest wanted;
    wanted.resultFile = request.file;
    wanted.machineFile = request.target;
    wanted.machineName = machineName(request);
    wanted.fillLevels = request.fillLevels;
    const auto projection = embedded_host::projectResult(wanted);

    for (const auto& text : projection.assumptions) console.err << "assumed: " << cleanText(text) << '\n';
    for (const auto& text : projection.warnings) console.err << "warning: " << cleanText(text) << '\n';
    for (const auto& [id, name, cause] : projection.left)
        console.err << fmt::format("not projected: {} {}: {}\n", id, cleanText(name), cause);
    console.err << fmt::format("{} of {} rows projected\n", projection.rowCount,
                               projection.rowCount + projection.left.size());
    if (projection.gapCount > 0)
        console.err << fmt::format(
            "{} rows lack traffic at some level of the target, which then takes no time{}\n",
            projection.gapCount, request.fillLevels ? "" : ": see --fill-levels");
    if (projection.rowCount == 0) return kNoAnswer;
    const auto code = writeImported(projection.result, request.output, request.force, console);
    if (code == kDone && isFile(request))
        console.err << fmt::format("both together: roofline chart {} --with {}\n", request.file,
                                   request.output);
    return code;
}

}  // namespace cli
