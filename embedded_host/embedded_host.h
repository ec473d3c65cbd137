// The embedded host's public face: results and machines from files, importers, and the set-up of a process.
#pragma once

#include "host_interfaces/export.h"
#include "host_interfaces/model.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace embedded_host {

// A file that can't be read, or says what it must not. The text names the file, the place in it (a JSON
// pointer, or line and column) and what was expected.
class OMBRIX_API FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class ResultKind { Cpu, Gpu, Offload };

struct OpenOptions {
    std::string machineFile;  // replaces the result's own machine when not empty
};

// A result in memory. Reading it is safe from several threads; `load` belongs to the thread that calls the
// library.
class OMBRIX_API Result {
public:
    virtual ~Result() = default;
    virtual ResultKind kind() const = 0;
    // The name and version of the machine whose roofs are used; empty when none is known.
    virtual std::string machineName() const = 0;
    // The file of that machine; empty when the machine stands in the result or none is known. The user's own
    // values of roofs are kept there.
    virtual std::string machineFile() const = 0;
    // Why the last change of own values of roofs failed, which the library answers by false alone; empty when
    // it succeeded or nothing was changed yet.
    virtual std::string ownRoofsFault() const = 0;
    // The device that an offload result is about; empty for other kinds and when no file names it.
    virtual std::string targetName() const = 0;
    // Its times come from a model of the target, as the file says.
    virtual bool isProjected() const = 0;
    // What the library is given: the view of a CPU or GPU result, null for an offload result. A view model
    // shares the result's data and outlives this object.
    virtual std::shared_ptr<data_models2::ISurveyingViewModel> viewModel() const = 0;
    // The same of an offload result, null for other kinds.
    virtual std::shared_ptr<data_models2::IPerfProjectionViewModel> projection() const = 0;
    // Tells the subscribers of the view model that a result is there.
    virtual void load(data_models2::IViewModelBase::LoadType type) = 0;
};

// Reads a result file whole, checks it, derives what it leaves out. Throws FileError; nothing is half loaded.
OMBRIX_API std::shared_ptr<Result> openResult(const std::string& path, const OpenOptions& options = {});
// The same from a text; `path` is named in errors and is where a relative machine path starts.
OMBRIX_API std::shared_ptr<Result> parseResult(const std::string& text, const std::string& path,
                                               const OpenOptions& options = {});

// One column of a table as one field: the cell times the factor (text fields have factor 1).
struct ColumnMapping {
    std::string field;
    std::string column;
    double factor = 1.0;
};

struct CsvImport {
    std::string file;
    std::vector<ColumnMapping> map;
    std::vector<std::pair<std::string, std::string>> set;  // field and value, for every row
    ResultKind kind = ResultKind::Cpu;
    std::string joinFile;     // a second table whose columns are appended; empty: none
    std::string joinColumn;   // the column that both tables have
    std::string machineFile;  // written into the result as it stands
    std::string programName;  // default: the file's name
};

// Makes the text of a result file of a table with a header. Throws FileError.
// `progress` may be empty; it is given done and all rows from time to time and returns false to cancel, which
// throws FileError("cancelled").
using Progress = std::function<bool(std::size_t done, std::size_t all)>;
OMBRIX_API std::string importCsv(const CsvImport& import, const Progress& progress = {});

// Makes the text of a machine file of a table with the columns threads, roof, unit, value and, if there, how.
OMBRIX_API std::string importRoofs(const std::string& csvFile, const std::string& machineName);

// What the kernel profiler of AMD's devices has written.
struct RocprofImport {
    std::string folder;         // holds pmc_perf.csv and, if there, roofline.csv and sysinfo.csv
    bool mergeKernels = false;  // one row a kernel: the sums over its dispatches
    std::string machineFile;    // named in the result as it stands; empty: the machine stands in the result
    std::string programName;    // default: that of sysinfo.csv, else the folder's name
};
struct RocprofTexts {
    std::string result;
    std::string machine;
    std::vector<std::string> warnings;  // what is missing and what lacks for it, each once
};

// Makes the texts of a result file and of its machine file. Throws FileError; `progress` as with `importCsv`.
OMBRIX_API RocprofTexts importRocprof(const RocprofImport& import, const Progress& progress = {});

// A CPU result that is to be put on a target machine.
struct ProjectionRequest {
    std::string resultFile;
    std::string machineFile;  // of the target; it must have a device
    std::string machineName;  // how the new result names that file; empty: as `machineFile`
    // A level of the target whose traffic wasn't counted carries that of the nearest level inside it. Without
    // this it takes no time.
    bool fillLevels = false;
};
struct UnprojectedRow {
    std::uint64_t id = 0;
    std::string name;
    std::string cause;
};
struct Projection {
    std::string result;                // the text of an offload result
    std::size_t rowCount = 0;          // rows in it
    std::size_t gapCount = 0;          // of these: rows whose traffic isn't known at some level of the target
    std::vector<UnprojectedRow> left;  // rows that aren't in it, in the order of the CPU result
    std::vector<std::string> assumptions;  // sentences for people
    std::vector<std::string> warnings;     // what was left out of the times, each once
};

// The time of a row on the target is the longest of
//   its float operations / the highest peak of their type, its integer operations / that of theirs,
//   its traffic at each level / the bandwidth of the target's level,
// plus the launch and transfer taxes of the machine file for each of its calls (one when they aren't
// counted). What weighs most is the row's `boundedBy`: Compute, L1_BW, L3_BW, HBM_BW, ..., Launch_Tax or
// Transfer_Tax. Types are those of the row's DataTypes: up to 32 bits or 64, and 64 when nothing is known.
// Throws FileError.
OMBRIX_API Projection projectResult(const ProjectionRequest& request);

// The value of a roof in bytes or operations per second of a text such as "40GB/s", "40 GiB/s", "1.5TFLOP/s";
// a bare number counts GB/s or GFLOP/s. Throws std::invalid_argument with the reason.
OMBRIX_API std::uint64_t parseRoofValue(const std::string& text, bool isMemory);

// Reads a file whole; throws FileError.
OMBRIX_API std::string readFile(const std::string& path);
// Writes to a temporary beside `path` and renames it. An existing file is replaced only with `overwrite`;
// throws FileError.
OMBRIX_API void writeFile(const std::string& path, const std::string& text, bool overwrite);

// The set-up of a process. Call before anything else of the library.
// Without it log4cplus prints a complaint; debug messages go to stderr when `debug` is set, else nowhere.
OMBRIX_API void setUpLogging(bool debug);
// The language of all messages ("en" by default); refused (false) when there is no such catalogue or a
// message was already looked up.
OMBRIX_API bool setLanguage(const std::string& language);
// The languages that can be set, ascending: those compiled in and those of the message folder.
OMBRIX_API std::vector<std::string> availableLanguages();
// Where a file "messages/<language>.json" overrides the built-in texts; default: beside the program.
OMBRIX_API void setMessageFolder(const std::string& folder);
// Replaces what an assertion does (default: one line on stderr); an empty handler restores the default.
using AssertionHandler =
    std::function<void(const std::string& expression, const std::string& unit, int line)>;
OMBRIX_API void setAssertionHandler(AssertionHandler handler);

// Background tasks of the library run on threads of this host's, two unless told otherwise; 0 turns them off.
OMBRIX_API void setTaskThreads(unsigned count);
// Tells what the tasks have found, on the calling thread, the one on which the engines live. Waits
// for tasks that are queued or running until none is left (true) or the limit has passed (false).
OMBRIX_API bool pumpTasks(std::chrono::milliseconds limit);
// Cancels all tasks, waits for the threads and tells nothing. Call it before the process ends, so that no
// task runs while static objects are destroyed.
OMBRIX_API void stopTasks();

// A number for people: `precision` digits, thousands are not grouped; "N/A" for a value that isn't finite.
OMBRIX_API std::string formatNumber(double value, int significantDigits);

}  // namespace embedded_host
