// `roofline import rocprof`: the counters of kernel dispatches become a result with its machine.
#include "embedded_host/embedded_host.h"

#include "cli/progress.h"
#include "cli/requests.h"
#include "cli/text.h"

#include <filesystem>

namespace cli {
namespace {
namespace fs = std::filesystem;

// As it is named in the result: from the result's folder.
std::string machineName(const ImportRocprofRequest& request) {
    if (request.machine.empty() || request.output.empty() || request.output == "-") return request.machine;
    const auto folder = fs::absolute(request.output).parent_path();
    return fs::absolute(request.machine).lexically_proximate(folder).generic_string();
}

}  // namespace

int runImportRocprof(const ImportRocprofRequest& request, Console& console) {
    if (request.machine == "-") throw UsageError("--machine: expected a file, not stdout");
    embedded_host::RocprofImport import;
    import.folder = request.folder;
    import.mergeKernels = !request.merge.empty();
    import.machineFile = machineName(request);
    import.programName = request.program;

    ProgressBar bar(console, "importing");
    embedded_host::RocprofTexts texts;
    try {
        texts = embedded_host::importRocprof(
            import, [&](std::size_t done, std::size_t all) { return bar.show(done, all); });
    } catch (const embedded_host::FileError&) {
        if (bar.isCancelled()) throw Cancelled("cancelled");
        throw;
    }
    bar.clear();
    for (const auto& warning : texts.warnings) console.err << "warning: " << cleanText(warning) << '\n';
    // The machine first: a result never names a file that couldn't be written.
    if (!request.machine.empty()) writeImported(texts.machine, request.machine, request.force, console);
    return writeImported(texts.result, request.output, request.force, console);
}

}  // namespace cli
