// What differs for the program between the kinds of results: one record each.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "embedded_host/embedded_host.h"

#include "cli/requests.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// Where the traffic of one memory level stands; None: there is no such field.
struct TrafficFields {
    std::string_view option;  // the level as a configuration has it; empty: none is chosen
    data_models2::MemoryLevel level;
    data_models2::FieldId selfLoad, selfStore, totalLoad, totalStore;
};

// Where the operations of one kind stand, and the row's own point for them.
struct OperationFields {
    std::string_view option;  // as a configuration has it
    data_models2::FieldId self, total;
    data_models2::FieldId performance, intensity;  // of self data
    const char* missing;
};

// What the library is given of a result.
struct Models {
    std::shared_ptr<data_models2::IViewModelBase> all;  // never null
    // The same where the result was measured, null where it is a projection.
    std::shared_ptr<data_models2::ISurveyingViewModel> survey;
};
struct OpenedResult {
    Models models;
    std::shared_ptr<data_models2::IRooflineInfo> engine;
};

// A part of a sentence: the page says it in its own language, the program in English.
struct Phrase {
    const char* message;  // of the page's texts
    const char* english;
    std::vector<std::string> arguments;  // for "%1" to "%3"
};

// What the roofline of one row is worked out of.
struct RowQuestion {
    const data_models2::sptr_t<data_models2::RowNode>& row;
    const data_models2::sptr_t<data_models2::IDataset>& dataset;  // shows the chosen threads
    const Models& models;
    const data_models2::RoofThreadingFeatures& threading;
};

struct ResultTraits {
    embedded_host::ResultKind kind;
    std::string_view name, aResult;  // "GPU", "a GPU result"
    data_models2::DataType rows;
    data_models2::DataType tree;
    data_models2::DataType compared;  // None: the library doesn't match its rows
    OpenedResult (*open)(const embedded_host::Result&);
    // Null when the library has no answer.
    std::shared_ptr<data_models2::IRowRooflineInfo> (*createRow)(const RowQuestion&);

    data_models2::FieldId selfTime, totalTime, location;
    std::span<const OperationFields> operations;      // float, integer, both
    std::span<const TrafficFields> traffic;           // the one without a level last
    std::span<const std::string_view> allOperations;  // options whose roofs together are all roofs

    // What --threads, --packages and --single stand for; throws UsageError where they mean nothing.
    data_models2::RoofThreadingFeatures (*threading)(const data_models2::IRooflineInfo&, const RoofChoice&);
    // The same in words, such as "8 threads", "on 1 package".
    std::vector<Phrase> (*place)(const data_models2::RoofThreadingFeatures&, const Models&);
    // Memory levels that the rows know.
    std::size_t (*levelCount)(const Models&);
    // What its roofs are for when nothing is chosen; null where they don't depend on a number of threads.
    int (*usedThreads)(const Models&);
    bool countsInstructions;  // `report_helpers::getGpuOperationsMapsJson` tells of its rows

    const char* levelNeeds;  // what a row with a point needs to have levels
    const char* invalidRow;  // why the library may doubt a row with a point and a limit
    const char* rowConfig;   // what of --config counts for single rows
};

std::span<const ResultTraits> allKinds();
const ResultTraits& kindOf(const embedded_host::Result& result);
// By the name that a result file has, in any case; null for an unknown one.
const ResultTraits* findKind(const std::string& name);

// The phrases one after another.
std::string inEnglish(const std::vector<Phrase>& phrases);

}  // namespace cli
