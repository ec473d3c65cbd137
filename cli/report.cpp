// `roofline report`: one or two results as a page in one file, or the page's bare data.
#include "cli/answer.h"
#include "cli/page/opening.h"
#include "cli/page/page_file.h"
#include "cli/progress.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace cli {
namespace {

constexpr double kMegabyte = 1e6;

// Told before the long work; `writeFile` looks again.
void checkTarget(const std::string& path, bool force) {
    if (path != "-" && !force && std::filesystem::is_regular_file(path))
        throw embedded_host::FileError(path +
                                       ": the file exists and is not overwritten; --force replaces it");
}

page::Model makeModel(const ReportRequest& request, const std::vector<page::Result>& results,
                      ProgressBar& bar) {
    BarProgress progress(bar);
    auto wanted = page::requestOf(results, progress);
    bar.clear();
    throwIfCancelled(bar);
    wanted.language = request.source.language;
    std::size_t done = 0;
    const auto all = page::Model::steps(wanted);
    return {wanted, [&] {
                bar.show(done++, all);
                throwIfCancelled(bar);
            }};
}

// What a file may take: more for rows with several memory levels, and for more rows than 10,000.
double bytesAllowed(const std::vector<page::Result>& results) {
    constexpr double kRows = 10'000.0, kFlat = 2.0 * kMegabyte, kWithLevels = 6.0 * kMegabyte;
    double bytes = 0.0;
    for (const auto& result : results) {
        const bool hasLevels = result.session().kind->levelCount(result.session().models) > 1;
        bytes += (hasLevels ? kWithLevels : kFlat) *
                 std::max(1.0, static_cast<double>(result.rows().size()) / kRows);
    }
    return bytes;
}

int writeReport(const ReportRequest& request, const page::Resources& resources, Console& console) {
    checkTarget(request.output, request.force);
    const auto results = page::openResults(request.source, request.compare);
    // Lives until the file is written: an interrupt leaves no half of it.
    ProgressBar bar(console, "making the report");
    const auto model = makeModel(request, results, bar);
    const page::PageFrame frame{page::titleOf(results), request.source.language, false};

    const auto allowed = bytesAllowed(results);
    const auto [text, detailed] = page::fitPage(allowed, [&](std::size_t most) {
        throwIfCancelled(bar);
        return page::makePage(resources, frame, model.text(most));
    });
    bar.clear();
    throwIfCancelled(bar);
    if (request.output == "-")
        console.out << text;
    else
        embedded_host::writeFile(request.output, text, request.force);
    console.err << fmt::format("wrote {} ({} rows, {} charts, details of {} rows)\n",
                               request.output == "-" ? "the report" : request.output, model.rowCount(),
                               model.chartCount(), model.detailCount(detailed));
    if (detailed != page::kMostDetails)
        console.err << fmt::format("note: details of {} rows were left out to keep the file small\n",
                                   model.detailCount(page::kMostDetails) - model.detailCount(detailed));
    if (results.front().session().result->machineName().empty())
        console.err
            << "hint: this result knows no machine, so there are no roofs: give one with --machine FILE\n";
    if (static_cast<double>(text.size()) > allowed)
        console.err << fmt::format("note: the file is large all the same: {} MB\n",
                                   shortNumber(static_cast<double>(text.size()) / kMegabyte));
    return kDone;
}

int writeData(const ReportRequest& request, Console& console) {
    const auto results = page::openResults(request.source, request.compare);
    ProgressBar bar(console, "making the report");
    const auto text = makeModel(request, results, bar).text(page::kMostDetails);
    throwIfCancelled(bar);
    Answer answer;
    answer.json = [&] { return text; };
    Outputs outputs;
    outputs.json = request.json;
    bar.clear();
    deliver(answer, outputs, console);
    return kDone;
}

}  // namespace

int runReport(const ReportRequest& request, Console& console) {
    if (request.output.empty() == request.json.empty())
        throw UsageError("a report goes to -o FILE, its data alone to --json FILE: give one of the two");
    if (!request.json.empty()) return writeData(request, console);
    return writeReport(request, page::requireResources(page::resources()), console);
}

}  // namespace cli
