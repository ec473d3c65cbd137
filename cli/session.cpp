// Opening of results and the choices that depend on one.
#include "cli/session.h"

#include "roofline_model/factories.h"

#include "cli/json.h"

#include <boost/algorithm/string/predicate.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace cli {
namespace {

using namespace data_models2;
using embedded_host::ResultKind;

using Factory = std::shared_ptr<IRooflineInfo> (*)(std::shared_ptr<ISurveyingViewModel>);

struct Kind {
    ResultKind kind;
    std::string_view name;
    DataType rows;
    DataType tree;
    DataType compared;     // None: the library doesn't match its rows
    Factory createEngine;  // null: the library has no engine for this kind
};

constexpr std::array<Kind, 3> kKinds{{
    {ResultKind::Cpu, "CPU", DataType::Cpu, DataType::CpuTopDown, DataType::Cpu, createRooflineInfo},
    {ResultKind::Gpu, "GPU", DataType::Gpu, DataType::None, DataType::Gpu, nullptr},
    {ResultKind::Offload, "offload", DataType::Offload, DataType::None, DataType::None, nullptr},
}};

const Kind& kindOf(const embedded_host::Result& result) {
    return *std::find_if(kKinds.begin(), kKinds.end(),
                         [&](const Kind& each) { return each.kind == result.kind(); });
}

std::vector<std::string> split(const std::string& configuration) {
    std::vector<std::string> values;
    std::istringstream stream(configuration);
    for (std::string value; std::getline(stream, value, '-');) values.push_back(value);
    return values;
}

std::vector<std::string> knownValues(const Session& session) {
    std::vector<std::string> values;
    const auto options = json::parse(session.engine->getRooflineOptions(), "the library's options");
    for (const auto& group : json::items(options, "groups"))
        for (const auto& option : json::items(group, "options"))
            values.push_back(json::text(option, "value"));
    return values;
}

void chooseLanguage(const ResultSource& source) {
    if (!source.language.empty() && !embedded_host::setLanguage(source.language))
        throw UsageError(fmt::format("--language: there are no texts in '{}'", source.language));
}

std::shared_ptr<embedded_host::Result> readResult(const std::string& file, const ResultSource& source) {
    embedded_host::OpenOptions options;
    options.machineFile = source.machine;
    return embedded_host::openResult(file, options);
}

// Null when the file says none that is known.
const Kind* declaredKind(const std::string& file) {
    try {
        const auto name = json::text(json::parse(embedded_host::readFile(file), file), "kind");
        const auto kind = std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& each) {
            return boost::algorithm::iequals(each.name, name, std::locale::classic());
        });
        return kind == kKinds.end() ? nullptr : &*kind;
    } catch (const std::runtime_error&) {
        return nullptr;
    }
}

struct KindOfFile {
    const Kind* kind;  // null: not known
    const std::string& file;
};

void checkComparable(const KindOfFile& first, const KindOfFile& second) {
    for (const auto& [kind, file] : {first, second})
        if (kind && kind->compared == DataType::None)
            throw UsageError(fmt::format(
                "{}: {} results can't be compared: the library doesn't match their rows", file, kind->name));
    if (first.kind && second.kind && first.kind != second.kind)
        throw UsageError(
            fmt::format("{} is a {} result and {} a {} one: only results of one kind are compared",
                        first.file, first.kind->name, second.file, second.kind->name));
}

Session startSession(std::shared_ptr<embedded_host::Result> result, const std::string& file) {
    const auto& kind = kindOf(*result);
    if (!kind.createEngine)
        throw embedded_host::FileError(
            fmt::format("{}: {} results can't be charted by this version", file, kind.name));
    Session session;
    session.result = std::move(result);
    // The engine listens for the load, so it comes first.
    session.viewModel = session.result->viewModel();
    session.engine = kind.createEngine(session.viewModel);
    session.result->load(IViewModelBase::LoadType::Result);
    session.rows = session.viewModel->getDataset(kind.rows);
    if (kind.tree != DataType::None) session.tree = session.viewModel->getDataset(kind.tree);
    session.comparedRows = kind.compared;
    return session;
}

}  // namespace

Session openSession(const ResultSource& source) {
    chooseLanguage(source);
    return startSession(readResult(source.file, source), source.file);
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
    return {startSession(std::move(first), base.file), startSession(std::move(second), newFile)};
}

void waitForTasks() {
    constexpr std::chrono::minutes kLimit(2);
    if (!embedded_host::pumpTasks(kLimit))
        throw std::runtime_error("the search for what dominates the program doesn't come to an end");
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

RoofThreadingFeatures threadingOf(const Session& session, const RoofChoice& choice) {
    using Strategy = RoofThreadingFeatures::Strategy;
    RoofThreadingFeatures features;
    features.threadCount = choice.threads;
    features.strategy = choice.single ? Strategy::SingleThread : Strategy::MultiThread;
    features.packageCount = choice.packages;
    if (choice.packages > 0) return features;

    // Threads that don't fit on one package need all of them.
    const auto info = json::parse(session.engine->getThreadsInfo(), "the library's thread counts");
    const auto packages =
        std::max(1, static_cast<int>(json::number(info, "processorPackageCount").value_or(1)));
    const auto cores = json::number(info, "physicalCoreCount").value_or(0);
    const auto used = json::number(info, "usedNumberOfThreads").value_or(0);
    const auto threads = choice.threads > 0 ? choice.threads : used;
    features.packageCount = cores > 0 && threads > cores / packages ? packages : 1;
    return features;
}

IRooflineInfo::Perspective perspectiveOf(const RoofChoice& choice) {
    return static_cast<IRooflineInfo::Perspective>(choice.perspective);
}

}  // namespace cli
