// Opens results: the file, its machine, and the view model over both.
#include "host_interfaces/model.h"
#include "host_interfaces/signals.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/kinds.h"
#include "embedded_host/result/machine_file.h"
#include "embedded_host/result/own_roofs.h"
#include "embedded_host/result/result_file.h"

#include <filesystem>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

class LoadedResult final : public Result {
public:
    LoadedResult(ResultKind kind, Target target, Views views, std::shared_ptr<const Machine> machine)
        : m_kind(kind),
          m_target(std::move(target)),
          m_views(std::move(views)),
          m_machine(std::move(machine)) {}
    ResultKind kind() const override { return m_kind; }
    std::string machineName() const override { return m_machine->name; }
    std::string machineFile() const override { return m_machine->file; }
    std::string targetName() const override { return m_target.name; }
    bool isProjected() const override { return m_target.isProjected; }
    std::string ownRoofsFault() const override {
        const auto table = base().getRoofManager(traitsOf(m_kind).rows);
        return table ? embedded_host::ownRoofsFault(*table) : std::string();
    }
    std::shared_ptr<ISurveyingViewModel> viewModel() const override { return m_views.measured; }
    std::shared_ptr<IPerfProjectionViewModel> projection() const override { return m_views.projected; }
    void load(IViewModelBase::LoadType type) override {
        auto& loaded = m_views.projected ? m_views.projected->onResultLoaded()
                                         : m_views.measured->onSurveyResultLoaded();
        loaded.raise(type, base().getResultDirectory());
    }

private:
    const IViewModelBase& base() const {
        if (m_views.projected) return *m_views.projected;
        return *m_views.measured;
    }

    const ResultKind m_kind;
    const Target m_target;
    const Views m_views;
    const std::shared_ptr<const Machine> m_machine;
};

// With the name of the machine's device where the file gives none; of other kinds nothing.
Target targetOf(const ResultFile& result, const Machine& machine) {
    if (!traitsOf(result.kind).hasTarget) return {};
    auto target = result.target.value_or(Target());
    if (target.name.empty() && machine.device) target.name = machine.device->name;
    return target;
}

// A machine without roofs when none is known.
Machine findMachine(ResultFile& result, const std::string& path, const OpenOptions& options) {
    if (!options.machineFile.empty()) return openMachine(options.machineFile);
    if (result.machine) return std::move(*result.machine);
    if (result.machinePath.empty()) return {};
    const auto machine = std::filesystem::path(path).parent_path() / result.machinePath;
    try {
        return openMachine(machine.string());
    } catch (const FileError& error) {
        throw FileError(path + ": /machine: " + error.what());
    }
}

}  // namespace

std::shared_ptr<Result> parseResult(const std::string& text, const std::string& path,
                                    const OpenOptions& options) {
    auto result = readResult(JsonFile(path, text));
    auto machine = std::make_shared<const Machine>(findMachine(result, path, options));
    const auto kind = result.kind;
    auto target = targetOf(result, *machine);
    auto views = traitsOf(kind).makeView(std::move(result), machine, path);
    return std::make_shared<LoadedResult>(kind, std::move(target), std::move(views), std::move(machine));
}

std::shared_ptr<Result> openResult(const std::string& path, const OpenOptions& options) {
    return parseResult(readFile(path), path, options);
}

}  // namespace embedded_host
