// The command line: what each subcommand takes, and how failures end. The only file that includes CLI11.
#include "cli/program.h"

#include "embedded_host/embedded_host.h"

#include "cli/answer.h"
#include "cli/help_texts.h"
#include "cli/progress.h"
#include "cli/requests.h"
#include "cli/text.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace cli {
namespace {

struct Commands {
    CLI::App app{"Charts measured loops against the roofs of their machine.", "roofline"};
    bool debug = false;
    std::vector<std::pair<CLI::App*, std::function<int(Console&)>>> runs;

    // The request lives as long as the command's function.
    template <class Request>
    std::pair<CLI::App*, std::shared_ptr<Request>> add(CLI::App& parent, const char* name, const char* what,
                                                       const char* example,
                                                       int (*run)(const Request&, Console&)) {
        auto* command = parent.add_subcommand(name, what);
        command->footer(std::string("Example:\n  ") + example);
        auto request = std::make_shared<Request>();
        runs.emplace_back(command, [request, run](Console& console) {
            if constexpr (requires { request->outputs; }) checkOutputs(request->outputs);
            return run(*request, console);
        });
        return {command, request};
    }
};

void addOutputs(CLI::App& command, Outputs& outputs, const char* bare) {
    command.add_option("--json", outputs.json, "write the JSON answer to FILE, or to stdout for -")
        ->type_name("FILE");
    command.add_option("--csv", outputs.csv, "write a CSV table to FILE, or to stdout for -")
        ->type_name("FILE");
    command.add_flag("--table", outputs.table,
                     std::string("print a readable table; without any output: ") + bare);
}

void addMachineAndLanguage(CLI::App& command, ResultSource& source) {
    command.add_option("--machine", source.machine, "machine file in place of the result's own")
        ->type_name("FILE");
    command.add_option("--language", source.language, "language of the library's texts: en or de")
        ->type_name("LANGUAGE");
}

void addSource(CLI::App& command, ResultSource& source) {
    command.add_option("RESULT", source.file, "result file")->required()->type_name("");
    addMachineAndLanguage(command, source);
}

void addPicture(CLI::App& command, Outputs& outputs) {
    command.add_option("--svg", outputs.svg, "write a picture to FILE, or to stdout for -")
        ->type_name("FILE");
}

void addChoice(CLI::App& command, const char* name, std::string& value, const char* what,
               const std::vector<std::string>& values) {
    command.add_option(name, value, what)
        ->check(CLI::IsMember(values).description(""))
        ->type_name(CLI::detail::join(values, "|"))
        ->capture_default_str();
}

void addThreads(CLI::App& command, RoofChoice& roofs) {
    command
        .add_option("--threads", roofs.threads, "threads that the roofs assume; 0: those the program used")
        ->check(CLI::Range(0, kMostThreads).description(""))
        ->type_name("N");
    command
        .add_option("--packages", roofs.packages,
                    "packages that the roofs assume; 0: as the threads need; of a GPU 1: one "
                    "sub-device, 2: all, the default")
        ->check(CLI::Range(0, kMostPackages).description(""))
        ->type_name("N");
    command.add_flag("--single", roofs.single, "roofs of one thread instead of all together");
}

void addRoofChoice(CLI::App& command, RoofChoice& roofs) {
    addThreads(command, roofs);
    command
        .add_option("--perspective", roofs.perspective,
                    "roofs for 1 vectorised, 2 not vectorised code, 3 the whole program")
        ->check(CLI::Range(1, 3).description(""))
        ->type_name("1|2|3");
}

void addConfiguration(CLI::App& command, std::optional<std::string>& configuration) {
    command
        .add_option("--config", configuration,
                    "option values joined with '-', such as f-L1-all; default: the options' defaults")
        ->type_name("CONFIG");
}

void addRoofModes(CLI::App& command, RoofsRequest& request) {
    const std::vector<CLI::Option*> modes{
        command.add_flag("--all", request.all, "for each thread set-up that a chart can offer"),
        command.add_flag("--selected", request.selected,
                         "tell which roofs a chart shows at first and which it hides"),
        command
            .add_option("--set", request.set,
                        "a roof's value of your own, in units such as GB/s, GiB/s, GFLOP/s; may be repeated")
            ->allow_extra_args(false)
            ->type_name("NAME=VALUE[UNIT]"),
        command.add_flag("--clear", request.clear, "take all values of your own away")};
    for (auto mode = modes.begin(); mode != modes.end(); ++mode)
        for (auto other = std::next(mode); other != modes.end(); ++other) (*mode)->excludes(*other);
    // Which roofs are selected doesn't depend on threads.
    for (const auto* const name : {"--threads", "--packages", "--single"})
        modes[1]->excludes(command.get_option(name));
}

void addReaders(Commands& commands) {
    auto [fields, fieldsRequest] =
        commands.add<FieldsRequest>(commands.app, "fields", "List the columns that a result can have",
                                    "roofline fields --csv fields.csv", runFields);
    addOutputs(*fields, fieldsRequest->outputs, "the table");

    auto [options, optionsRequest] =
        commands.add<OptionsRequest>(commands.app, "options", "Tell what can be chosen for a chart",
                                     "roofline options result.json --table", runOptions);
    addSource(*options, optionsRequest->source);
    addOutputs(*options, optionsRequest->outputs, "the JSON");

    auto [threads, threadsRequest] = commands.add<ThreadsRequest>(
        commands.app, "threads", "Tell cores, packages and used threads, or the sub-devices of a GPU",
        "roofline threads result.json --table", runThreads);
    addSource(*threads, threadsRequest->source);
    addOutputs(*threads, threadsRequest->outputs, "the JSON");

    auto [roofs, roofsRequest] =
        commands.add<RoofsRequest>(commands.app, "roofs", "List the machine's roofs for a thread set-up",
                                   "roofline roofs result.json --threads 4 --table", runRoofs);
    addSource(*roofs, roofsRequest->source);
    addConfiguration(*roofs, roofsRequest->configuration);
    addRoofChoice(*roofs, roofsRequest->roofs);
    addRoofModes(*roofs, *roofsRequest);
    addOutputs(*roofs, roofsRequest->outputs, "the JSON");
    roofs->footer(std::string(kRoofsFooter) + "\n\n" + roofs->get_footer());

    auto [chart, chartRequest] = commands.add<ChartRequest>(
        commands.app, "chart", "Make the roofline chart of a result",
        "roofline chart result.json --svg chart.svg --json chart.json --table", runChart);
    addSource(*chart, chartRequest->source);
    addConfiguration(*chart, chartRequest->configuration);
    addRoofChoice(*chart, chartRequest->roofs);
    chart
        ->add_option("--with", chartRequest->with,
                     "an offload result of the same rows, shown beside under the roofs of its target")
        ->type_name("OFFLOAD_RESULT");
    addOutputs(*chart, chartRequest->outputs, "the table");
    addPicture(*chart, chartRequest->outputs);
    chart->footer(std::string(kChartFooter) + "\n\n" + chart->get_footer());

    auto [summary, summaryRequest] = commands.add<SummaryRequest>(
        commands.app, "summary", "Tell how much of its roofs the program reaches",
        "roofline summary result.json", runSummary);
    summary->footer(std::string(kSummaryFooter) + "\n\n" + summary->get_footer());
    addSource(*summary, summaryRequest->source);
    addOutputs(*summary, summaryRequest->outputs, "the table");
}

std::string checkId(const std::string& text) {
    if (text.find_first_not_of("0123456789") == std::string::npos) return {};
    return "expected an id, a whole number that isn't negative, found " + text;
}

void addRowReaders(Commands& commands) {
    auto [rows, rowsRequest] =
        commands.add<RowsRequest>(commands.app, "rows", "Tell which roof limits each loop",
                                  "roofline rows result.json --sort distance --top 10", runRows);
    rows->footer(std::string(kRowsFooter) + "\n\n" + rows->get_footer());
    addSource(*rows, rowsRequest->source);
    addConfiguration(*rows, rowsRequest->configuration);
    addThreads(*rows, rowsRequest->roofs);
    addChoice(*rows, "--level", rowsRequest->level, "a line for each loop, or for each of its memory levels",
              {"total", "all"});
    addChoice(*rows, "--sort", rowsRequest->sort, "largest first", {"time", "distance", "performance"});
    rows->add_option("--top", rowsRequest->top, "show the first N loops only; 0: all")
        ->check(CLI::Range(0, 1 << 30).description(""))
        ->type_name("N");
    addOutputs(*rows, rowsRequest->outputs, "the table");

    auto [row, rowRequest] = commands.add<RowRequest>(commands.app, "row", "Print all details of one loop",
                                                      "roofline row result.json 3", runRow);
    addSource(*row, rowRequest->source);
    row->add_option("ID", rowRequest->id, "the row's id")->required()->check(checkId)->type_name("");
    addConfiguration(*row, rowRequest->configuration);
    addThreads(*row, rowRequest->roofs);
    row->add_flag("--bags", rowRequest->bags, "print its property bags: roofline, memoryMetrics, bottleneck");

    auto [loop, loopRequest] =
        commands.add<LoopRequest>(commands.app, "loop", "Print the details of the loops that a request names",
                                  "roofline loop result.json --request '{\"item\":[\"3\"]}'", runLoop);
    addSource(*loop, loopRequest->source);
    addConfiguration(*loop, loopRequest->configuration);
    loop->add_option("--request", loopRequest->request,
                     "a list \"item\" of ids, and threadCount (chooses packages; a row's own threads count), "
                     "packageCount, useSTRoofsStrategy; - for stdin")
        ->type_name("JSON");
    loop->add_option("--id", loopRequest->ids, "a loop's id, in place of a request; may be repeated")
        ->check(checkId)
        ->type_name("ID");
}

void addOperations(Commands& commands) {
    auto [operations, request] = commands.add<OperationsRequest>(
        commands.app, "operations", "Tell what each kernel of a GPU result executed, by instruction and type",
        "roofline operations result.json --csv operations.csv", runOperations);
    addSource(*operations, request->source);
    addOutputs(*operations, request->outputs, "the table");
}

void addTemplate(Commands& commands) {
    auto [command, request] = commands.add<TemplateRequest>(
        commands.app, "template", "Print what a report tells of a program, but its loops, as JSON",
        "roofline template result.json > template.json", runTemplate);
    addSource(*command, request->source);
}

// Also refuses what is no number, which a comparison with bounds lets pass.
CLI::Validator percentUpTo(double most) {
    return {[most](std::string& text) {
                double percent = 0.0;
                if (CLI::detail::lexical_cast(text, percent) && percent >= 0.0 && percent <= most)
                    return std::string();
                return "expected a percentage, found " + text;
            },
            ""};
}

void addComparison(Commands& commands) {
    auto [compare, request] = commands.add<CompareRequest>(
        commands.app, "compare", "Tell what a change did to each loop",
        "roofline compare before.json after.json --svg change.svg --table --fail-if slower=10", runCompare);
    compare->footer(std::string(kCompareFooter) + "\n\n" + compare->get_footer());
    compare->add_option("BASE", request->base.file, "result file from before")->required()->type_name("");
    compare->add_option("NEW", request->newFile, "result file from after")->required()->type_name("");
    addMachineAndLanguage(*compare, request->base);
    const auto addPercent = [compare = compare](const char* name, double& value, const char* what,
                                                double most) {
        compare->add_option(name, value, what)
            ->check(percentUpTo(most))
            ->type_name("PERCENT")
            ->capture_default_str();
    };
    addPercent("--threshold", request->threshold, "how well rows have to match", 100.0);
    addPercent("--noise", request->noise, "smaller changes of time count as none", 1e9);
    compare->add_flag("--roofline", request->roofline, "match only rows that have a point on a roofline");
    addChoice(*compare, "--sort", request->sort, "largest first: change of time, match, or time in BASE",
              {"delta", "score", "time"});
    auto* gate =
        compare->add_option("--fail-if", request->failIf, "exit code 3 when a row got slower by more")
            ->type_name("slower=PERCENT");
    auto* details = compare
                        ->add_option("--details", request->details,
                                     "print the library's details of the pair of BASE's row ID instead")
                        ->check(checkId)
                        ->excludes(gate)
                        ->type_name("ID");
    compare
        ->add_option("--config", request->configuration,
                     "option values for --details, such as f-L1-all; default: the options' defaults")
        ->needs(details)
        ->type_name("CONFIG");
    addOutputs(*compare, request->outputs, "the table");
    addPicture(*compare, request->outputs);
}

void addTarget(CLI::App& command, std::string& output, bool& force) {
    command.add_option("-o,--output", output, "file to write; default: stdout")->type_name("FILE");
    command.add_flag("--force", force, "replace an existing file");
}

void addReport(Commands& commands) {
    auto [report, request] = commands.add<ReportRequest>(
        commands.app, "report", "Make a page in one file that a browser opens",
        "roofline report before.json --compare after.json -o report.html", runReport);
    addSource(*report, request->source);
    report->add_option("--compare", request->compare, "result file from after a change")->type_name("NEW");
    report->add_option("-o,--output", request->output, "file to write, or - for stdout")->type_name("FILE");
    auto* const json =
        report->add_option("--json", request->json, "write the page's data alone, or to stdout for -")
            ->type_name("FILE");
    report->add_flag("--force", request->force, "replace an existing file")->excludes(json);
}

void addServe(Commands& commands) {
    auto [serve, request] =
        commands.add<ServeRequest>(commands.app, "serve", "Show the page of a result while it changes",
                                   "roofline serve result.json --port 8080", runServe);
    serve->footer(std::string(kServeFooter) + "\n\n" + serve->get_footer());
    addSource(*serve, request->source);
    serve->add_option("--compare", request->compare, "result file from after a change")->type_name("NEW");
    serve->add_option("--port", request->port, "port of 127.0.0.1; 0: a free one")
        ->check(CLI::Range(0, 65535).description(""))
        ->type_name("N")
        ->capture_default_str();
}

void addImports(Commands& commands) {
    auto* import = commands.app.add_subcommand("import", "Make result and machine files of tables");
    import->require_subcommand(1);

    auto [csv, csvRequest] = commands.add<ImportCsvRequest>(
        *import, "csv", "Make a result of a table with a header",
        "roofline import csv runs.csv --map FunctionName=kernel SelfElapsedTime=time_ms*1e-3 \\\n"
        "      SelfFloatOps=gflop SelfMemL1=gbyte --set ThreadCount=1 --machine machine.json -o result.json",
        runImportCsv);
    csv->add_option("FILE", csvRequest->file, "the table")->required()->type_name("");
    csv->add_option("--map", csvRequest->map, "a field's column and factor (see `roofline fields`)")
        ->type_name("FIELD=COLUMN[*FACTOR]");
    csv->add_option("--set", csvRequest->set, "a field's value for every row")->type_name("FIELD=VALUE");
    csv->add_option("--kind", csvRequest->kind, "kind of result")
        ->check(CLI::IsMember({"cpu", "gpu", "offload"}).description(""))
        ->type_name("cpu|gpu|offload")
        ->capture_default_str();
    csv->add_option("--join", csvRequest->join, "a second table whose columns are appended")
        ->type_name("FILE");
    csv->add_option("--on", csvRequest->on, "the column by which the tables are joined")->type_name("COLUMN");
    csv->add_option("--machine", csvRequest->machine, "the machine file to name in the result")
        ->type_name("FILE");
    csv->add_option("--program", csvRequest->program, "name of the program; default: the table's file name")
        ->type_name("NAME");
    addTarget(*csv, csvRequest->output, csvRequest->force);

    auto [roofs, roofsRequest] = commands.add<ImportRoofsRequest>(
        *import, "roofs", "Make a machine file of a table with the columns threads, roof, unit, value",
        "roofline import roofs roofs.csv --name 'my machine' -o machine.json", runImportRoofs);
    roofs->add_option("FILE", roofsRequest->file, "the table")->required()->type_name("");
    roofs->add_option("--name", roofsRequest->name, "name of the machine; default: the table's file name")
        ->type_name("NAME");
    addTarget(*roofs, roofsRequest->output, roofsRequest->force);

    auto [rocprof, rocprofRequest] = commands.add<ImportRocprofRequest>(
        *import, "rocprof", "Make a result of a folder with pmc_perf.csv, roofline.csv and sysinfo.csv",
        "roofline import rocprof workloads/mixbench --machine machine.json -o result.json", runImportRocprof);
    rocprof->add_option("DIR", rocprofRequest->folder, "the folder")->required()->type_name("");
    rocprof->add_option("--merge", rocprofRequest->merge, "one row a kernel, the sum of its dispatches")
        ->check(CLI::IsMember({"kernel"}).description(""))
        ->type_name("kernel");
    rocprof
        ->add_option("--machine", rocprofRequest->machine,
                     "write the machine to a file of its own; default: it stands in the result")
        ->type_name("FILE");
    rocprof->add_option("--program", rocprofRequest->program, "name of the program; default: as profiled")
        ->type_name("NAME");
    addTarget(*rocprof, rocprofRequest->output, rocprofRequest->force);
}

void addProjection(Commands& commands) {
    auto [project, request] = commands.add<ProjectRequest>(
        commands.app, "project", "Put a CPU result on a target machine, by a simple model",
        "roofline project result.json --target card.json -o on_card.json", runProject);
    project->footer(
        "A row takes the longest of operations / peak and traffic / bandwidth of each level of the target,\n"
        "plus the taxes of the target's machine file for each call. What that assumes, and the rows that\n"
        "can't be projected, are told on stderr.\n\n" +
        project->get_footer());
    project->add_option("RESULT", request->file, "result file of kind cpu")->required()->type_name("");
    project->add_option("--target", request->target, "machine file of the target, with a device")
        ->required()
        ->type_name("MACHINE");
    project->add_flag("--fill-levels", request->fillLevels,
                      "levels that weren't counted carry the traffic of the nearest one inside them");
    addTarget(*project, request->output, request->force);
}

void addAll(Commands& commands) {
    auto& app = commands.app;
    app.set_version_flag("--version", std::string("roofline ") + OMBRIX_VERSION);
    app.set_help_all_flag("--help-all", "print the help of every subcommand");
    app.add_flag("--debug", commands.debug, "print the library's debug messages on stderr");
    app.require_subcommand(1);
    app.footer(
        "Exit codes: 0 done, 1 bad data or no answer, 2 wrong usage, 3 --fail-if tripped, 130 cancelled.\n"
        "Example:\n  roofline chart result.json --svg chart.svg --table");
    addReaders(commands);
    addRowReaders(commands);
    addOperations(commands);
    addTemplate(commands);
    addComparison(commands);
    addReport(commands);
    addServe(commands);
    addImports(commands);
    addProjection(commands);
}

int runParsed(Commands& commands, Console& console) {
    embedded_host::setUpLogging(commands.debug);
    for (const auto& [command, run] : commands.runs)
        if (command->parsed()) return run(console);
    return kUsage;
}

int explain(const std::string& reason, ExitCode code, Console& console) {
    console.err << "roofline: " << cleanText(reason) << '\n';
    return code;
}

int parseAndRun(int argc, const char* const* argv, Console& console) {
    Commands commands;
    addAll(commands);
    try {
        commands.app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version come as "errors" with the exit code 0.
        if (error.get_exit_code() == 0) return commands.app.exit(error, console.out, console.err);
        // A misspelt subcommand is told as such, not as a missing one.
        const auto unknown = commands.app.remaining(true);
        const auto reason =
            unknown.empty() ? std::string(error.what()) : "can't make sense of '" + unknown.front() + "'";
        return explain(reason + " (see roofline --help)", kUsage, console);
    }
    return runParsed(commands, console);
}

}  // namespace

int runRoofline(int argc, const char* const* argv, Console& console) {
    try {
        return parseAndRun(argc, argv, console);
    } catch (const UsageError& error) {
        return explain(error.what(), kUsage, console);
    } catch (const Cancelled& error) {
        return explain(error.what(), kCancelled, console);
    } catch (const std::exception& error) {
        return explain(error.what(), kNoAnswer, console);
    }
}

}  // namespace cli
