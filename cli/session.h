// A result and the library's engine on it: the beginning of every subcommand that reads a result.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "embedded_host/embedded_host.h"

#include "cli/kinds.h"
#include "cli/requests.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace cli {

struct Session {
    const ResultTraits* kind = nullptr;  // never null in a session that was opened
    std::shared_ptr<embedded_host::Result> result;
    Models models;
    std::shared_ptr<data_models2::IRooflineInfo> engine;
    // What a chart is made of: every row with its self data, and the call tree, null where there is none.
    data_models2::sptr_t<data_models2::IDataset> rows;
    data_models2::sptr_t<data_models2::IDataset> tree;
};

// Throws embedded_host::FileError for a bad file, UsageError for an unknown language.
Session openSession(const ResultSource& source);
// The same for two results of one kind that can be compared, with one machine and language for both; throws
// UsageError for others.
std::pair<Session, Session> openSessions(const ResultSource& base, const std::string& newFile);

// Throws std::runtime_error where no survey of the program is behind the result, and so no such thing
// ("summary").
void needSurvey(const Session& session, const std::string& file, const char* thing);

// The program's name, or its file's without folder and ending where the result has none.
std::string programOf(const Session& session, const std::string& file);

// Until the library knows what dominates the program. Throws std::runtime_error when that takes too long.
void waitForTasks();
// The library's summary; empty when it has none, nothing when its search has failed. Waits for tasks.
std::optional<std::string> loadSummary(const Session& session);

// The configuration to ask for: the one given, or the options' defaults. Throws UsageError when it holds a
// value that this result's options lack: the library would fall back on defaults without a word.
std::string chooseConfiguration(const Session& session, const std::optional<std::string>& given);
// The same with every group's value written out.
std::string completeConfiguration(const Session& session, const std::string& configuration);

// The captions of the options by their values.
std::map<std::string, std::string> optionCaptions(const Session& session);

data_models2::RoofThreadingFeatures threadingOf(const Session& session, const RoofChoice& choice);
data_models2::IRooflineInfo::Perspective perspectiveOf(const RoofChoice& choice);

}  // namespace cli
