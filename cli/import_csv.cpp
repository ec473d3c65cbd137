// `roofline import csv`: a table with a header becomes a result.
#include "embedded_host/embedded_host.h"

#include "cli/progress.h"
#include "cli/requests.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace cli {
namespace {

using embedded_host::ColumnMapping;
using embedded_host::ResultKind;

constexpr std::array<std::pair<std::string_view, ResultKind>, 3> kKinds{
    {{"cpu", ResultKind::Cpu}, {"gpu", ResultKind::Gpu}, {"offload", ResultKind::Offload}}};

// Both sides of the first "=".
std::pair<std::string, std::string> assignment(const std::string& text, std::string_view form) {
    const auto sign = text.find('=');
    if (sign == text.npos || sign == 0 || sign + 1 == text.size())
        throw UsageError(
            fmt::format("'{}' isn't of the form {} (the FILE goes before the options)", text, form));
    return {text.substr(0, sign), text.substr(sign + 1)};
}

// A column's name may hold a "*" itself: only a number behind the last one is a factor.
ColumnMapping mapping(const std::string& text) {
    auto [field, column] = assignment(text, "--map FIELD=COLUMN[*FACTOR]");
    ColumnMapping result{std::move(field), std::move(column)};
    const auto star = result.column.rfind('*');
    if (star == result.column.npos || star == 0 || star + 1 == result.column.size()) return result;
    const auto factorText = result.column.substr(star + 1);
    char* end = nullptr;
    const double factor = std::strtod(factorText.c_str(), &end);
    if (*end != '\0') return result;
    if (!std::isfinite(factor)) throw UsageError(fmt::format("'{}': the factor isn't finite", text));
    result.factor = factor;
    result.column.resize(star);
    return result;
}

}  // namespace

int runImportCsv(const ImportCsvRequest& request, Console& console) {
    if (request.join.empty() != request.on.empty()) throw UsageError("--join and --on go together");
    if (request.map.empty()) throw UsageError("nothing to import: give at least one --map FIELD=COLUMN");
    embedded_host::CsvImport import;
    import.file = request.file;
    import.joinFile = request.join;
    import.joinColumn = request.on;
    import.machineFile = request.machine;
    import.programName = request.program;
    std::transform(request.map.begin(), request.map.end(), std::back_inserter(import.map), mapping);
    for (const auto& each : request.set) import.set.push_back(assignment(each, "--set FIELD=VALUE"));
    const auto kind = std::find_if(kKinds.begin(), kKinds.end(),
                                   [&](const auto& each) { return each.first == request.kind; });
    if (kind == kKinds.end()) throw UsageError("--kind: one of cpu, gpu, offload");
    import.kind = kind->second;

    ProgressBar bar(console, "importing");
    std::string text;
    try {
        text = embedded_host::importCsv(
            import, [&](std::size_t done, std::size_t all) { return bar.show(done, all); });
    } catch (const embedded_host::FileError&) {
        if (bar.isCancelled()) throw Cancelled("cancelled");
        throw;
    }
    bar.clear();
    return writeImported(text, request.output, request.force, console);
}

}  // namespace cli
