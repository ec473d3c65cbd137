// What each subcommand was asked for, and the functions that answer. Each stands in a file of its own.
#pragma once

#include "cli/console.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cli {

// Where answers go: a file's path, "-" for stdout, empty for nowhere.
struct Outputs {
    std::string json;
    std::string csv;
    std::string svg;
    bool table = false;  // readable, on stdout
};

struct ResultSource {
    std::string file;
    std::string machine;   // replaces the result's machine; empty: its own
    std::string language;  // of the library's texts; empty: the default
};

// Of a RoofChoice that a user may ask for.
inline constexpr int kMostThreads = 1 << 20, kMostPackages = 1 << 10;

struct RoofChoice {
    int threads = 0;      // 0: as many as the program used
    int packages = 0;     // 0: as many as the threads need
    int perspective = 3;  // of IRooflineInfo
    bool single = false;
};

struct FieldsRequest {
    Outputs outputs;
};
struct OptionsRequest {
    ResultSource source;
    Outputs outputs;
};
struct ThreadsRequest {
    ResultSource source;
    Outputs outputs;
};
struct RoofsRequest {
    ResultSource source;
    Outputs outputs;
    std::optional<std::string> configuration;
    RoofChoice roofs;
    // At most one of these; with none, the roofs of one thread set-up.
    bool all = false;              // for each thread set-up that a chart can offer
    bool selected = false;         // which ones a chart shows
    std::vector<std::string> set;  // NAME=VALUE[UNIT]
    bool clear = false;            // the own values of the thread set-up
};
struct ChartRequest {
    ResultSource source;
    Outputs outputs;
    std::optional<std::string> configuration;
    RoofChoice roofs;
    std::string with;  // an offload result to show beside; empty: none
};
struct SummaryRequest {
    ResultSource source;
    Outputs outputs;
};
struct RowsRequest {
    ResultSource source;
    Outputs outputs;
    std::optional<std::string> configuration;
    RoofChoice roofs;
    std::string level = "total";  // or "all"
    std::string sort = "time";    // or "distance", "performance"
    int top = 0;                  // 0: all
};
struct RowRequest {
    ResultSource source;
    std::uint64_t id = 0;
    std::optional<std::string> configuration;
    RoofChoice roofs;
    bool bags = false;
};
struct LoopRequest {
    ResultSource source;
    std::optional<std::string> configuration;
    std::string request;  // JSON, or "-" for stdin
    std::vector<std::uint64_t> ids;
};
struct OperationsRequest {
    ResultSource source;
    Outputs outputs;
};
struct TemplateRequest {
    ResultSource source;
};
struct CompareRequest {
    ResultSource base;  // its machine and language count for the new result too
    std::string newFile;
    Outputs outputs;
    double threshold = 50.0;               // percent that a pair has to match by
    double noise = 5.0;                    // percent; smaller changes of time count as none
    bool roofline = false;                 // only rows with a point take part
    std::string sort = "delta";            // or "score", "time"
    std::string failIf;                    // "slower=PERCENT"; empty: never
    std::optional<std::uint64_t> details;  // a row of the base, in place of the list
    std::optional<std::string> configuration;
};
struct ReportRequest {
    ResultSource source;  // its machine and language count for the new result too
    std::string compare;  // the new result; empty: none
    std::string output;   // the page
    std::string json;     // its data alone; one of the two is empty
    bool force = false;
};
struct ServeRequest {
    ResultSource source;  // its machine and language count for the new result too
    std::string compare;  // the new result; empty: none
    int port = 0;         // 0: a free one
};
struct ImportCsvRequest {
    std::string file;
    std::vector<std::string> map;  // FIELD=COLUMN[*FACTOR]
    std::vector<std::string> set;  // FIELD=VALUE
    std::string kind = "cpu";
    std::string join;
    std::string on;
    std::string machine;
    std::string program;
    std::string output;  // empty or "-": stdout
    bool force = false;
};
struct ImportRoofsRequest {
    std::string file;
    std::string name;
    std::string output;
    bool force = false;
};

struct ImportRocprofRequest {
    std::string folder;
    std::string merge;  // "kernel", or empty: one row a dispatch
    std::string machine;
    std::string program;
    std::string output;
    bool force = false;
};

struct ProjectRequest {
    std::string file;
    std::string target;  // machine file
    bool fillLevels = false;
    std::string output;  // empty or "-": stdout
    bool force = false;
};

int runFields(const FieldsRequest&, Console&);
int runOptions(const OptionsRequest&, Console&);
int runThreads(const ThreadsRequest&, Console&);
int runRoofs(const RoofsRequest&, Console&);
int runChart(const ChartRequest&, Console&);
int runProjectedChart(const ChartRequest&, Console&);
int runSummary(const SummaryRequest&, Console&);
int runRows(const RowsRequest&, Console&);
int runRow(const RowRequest&, Console&);
int runLoop(const LoopRequest&, Console&);
int runOperations(const OperationsRequest&, Console&);
int runTemplate(const TemplateRequest&, Console&);
int runCompare(const CompareRequest&, Console&);
int runReport(const ReportRequest&, Console&);
int runServe(const ServeRequest&, Console&);
int runImportCsv(const ImportCsvRequest&, Console&);
int runImportRoofs(const ImportRoofsRequest&, Console&);
int runImportRocprof(const ImportRocprofRequest&, Console&);
int runProject(const ProjectRequest&, Console&);

}  // namespace cli
