// `roofline import roofs`: a table of measured roofs becomes a machine file.
#include "embedded_host/embedded_host.h"

#include "cli/progress.h"
#include "cli/requests.h"

#include <filesystem>

namespace cli {

int runImportRoofs(const ImportRoofsRequest& request, Console& console) {
    const auto name =
        request.name.empty() ? std::filesystem::path(request.file).stem().string() : request.name;
    return writeImported(embedded_host::importRoofs(request.file, name), request.output, request.force,
                         console);
}

}  // namespace cli
