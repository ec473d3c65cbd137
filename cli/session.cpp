// Opening of results and the choices that depend on one.
#include "cli/session.h"

#include "cli/json.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace cli {
namespace {

using namespace data_models2;

std::vector<std::string> split(const std::string& configuration) {
    std::vector<std::string> values;
    std::istringstream stream(configuration);
    for (std::string value; std::getline(stream, value, '-');) values.push_back(value);
    return values;
}

using OptionVisit = std::function<void(std::string value, std::string caption)>;

void forEachOption(const Session& session, const OptionVisit& visit) {
    const auto options = json::parse(session.engine->getRooflineOptions(), "the library's options");
    for (const auto& group : json::items(options, "groups"))
        for (const auto& option : json::items(group, "options"))
            visit(json::text(option, "value"), json::text(option, "caption"));
}

std::vector<std::string> knownValues(const Session& session) {
    std::vector<std::string> values;
    forEachOption(session,
                  [&](std::string value, const std::string&) { values.push_back(std::move(value)); });
    return values;
}

void chooseLanguage(const ResultSource& source) {
    if (source.language.empty() || embedded_host::setLanguage(source.language)) return;
    throw UsageError(fmt::format("--language: there are no texts in '{}'; known: {}", source.language,
                                 fmt::join(embedded_host::availableLanguages(), ", ")));
}

std::shared_ptr<embedded_host::Result> readResult(const std::string& file, const ResultSource& source) {
    embedded_host::OpenOptions options;
    options.machineFile = source.machine;
    return embedded_host::openResult(file, options);
}

// Null when the file says none that is known.
const ResultTraits* declaredKind(const std::string& file) {
    try {
        return findKind(json::text(json::parse(embedded_host::readFile(file), file), "kind"));
    } catch (const std::runtime_error&) {
        return nullptr;
    }
}

struct KindOfFile {
    const ResultTraits* kind;  // null: not known
    const std::string& file;
};

void checkComparable(const KindOfFile& first, const KindOfFile& second) {
    for (const auto& [kind, file] : {first, second})
        if (kind && kind->compared == DataType::None)
            throw UsageError(fmt::format(
                "{}: {} results can't be compared: the library doesn't match their rows", file, kind->name));
    if (first.kind && second.kind && first.kind != second.kind)
        throw UsageError(fmt::format("{} is {} and {} {}: only results of one kind are compared", first.file,
                                     first.kind->aResult, second.file, second.kind->aResult));
}

Session startSession(std::shared_ptr<embedded_host::Result> result) {
    Session session;
    session.kind = &kindOf(*result);
    session.result = std::move(result);
    // The engine listens for the load, so it comes first.
    auto [models, engine] = session.kind->open(*session.result);
    session.models = std::move(models);
    session.engine = std::move(engine);
    session.result->load(IViewModelBase::LoadType::Result);
    const auto& viewModel = *session.models.all;
    session.rows = viewModel.getDataset(session.kind->rows);
    if (session.kind->tree != DataType::None) session.tree = viewModel.getDataset(session.kind->tree);
    return session;
}

}  // namespace

Session openSession(const ResultSource& source) {
    chooseLanguage(source);
    return startSession(readResult(source.file, source));
}

std::pair<Session, Session> openSessions(const ResultSource& base, const std::string& newFile) {
    chooseLanguage(base);
    std::shared_ptr<embedded_host::Result> first, second;
    try {
        first = readResult(base.file, base);
        second = readResult(newFile, base);
    } catch (const embedded_host::FileError&) {
        // The host may not open a kind that wouldn't be compared either: then that is the better reason.
        checkComparable({declaredKind(base.file), base.file}, {declaredKind(newFile), newFile});
        throw;
    }
    checkComparable({&kindOf(*first), base.file}, {&kindOf(*second), newFile});
    return {startSession(std::move(first)), startSession(std::move(second))};
}

void needSurvey(const Session& session, const std::string& file, const char* thing) {
    if (!session.models.survey)
        throw std::runtime_error(fmt::format("{}: {} has no {}", file, session.kind->aResult, thing));
}

std::string programOf(const Session& session, const std::string& file) {
    const auto name = session.models.all->getProgramInfo().name;
    return name.empty() ? std::filesystem::path(file).stem().string() : name;
}

void waitForTasks() {
    constexpr std::chrono::minutes kLimit(2);
    if (!embedded_host::pumpTasks(kLimit))
        throw std::runtime_error("the search for what dominates the program doesn't come to an end");
}

std::optional<std::string> loadSummary(const Session& session) {
    const auto text = std::make_shared<std::optional<std::string>>();  // the answer may come after all
    session.engine->loadSummaryData(0, [text](const std::string& answer) { *text = answer; });
    waitForTasks();
    return *text;
}

std::string chooseConfiguration(const Session& session, const std::optional<std::string>& given) {
    if (!given) return session.engine->getRooflineConfigurationStr({});
    const auto known = knownValues(session);
    for (const auto& value : split(*given)) {
        if (std::find(known.begin(), known.end(), value) != known.end()) continue;
        throw UsageError(fmt::format("--config: this result has no option '{}'; there are {}", value,
                                     fmt::join(known, ", ")));
    }
    return *given;
}

std::string completeConfiguration(const Session& session, const std::string& configuration) {
    return session.engine->getRooflineConfigurationStr(split(configuration));
}

std::map<std::string, std::string> optionCaptions(const Session& session) {
    std::map<std::string, std::string> captions;
    forEachOption(session, [&](std::string value, std::string caption) {
        captions.emplace(std::move(value), std::move(caption));
    });
    return captions;
}

RoofThreadingFeatures threadingOf(const Session& session, const RoofChoice& choice) {
    return session.kind->threading(*session.engine, choice);
}

IRooflineInfo::Perspective perspectiveOf(const RoofChoice& choice) {
    return static_cast<IRooflineInfo::Perspective>(choice.perspective);
}

}  // namespace cli
