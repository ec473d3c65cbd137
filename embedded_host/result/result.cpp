// Opens results: the file, its machine, and the view model over both.
#include "host_interfaces/signals.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/gpu_view_model.h"
#include "embedded_host/result/own_roofs.h"
#include "embedded_host/result/view_model.h"

#include <filesystem>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

class LoadedResult final : public Result {
public:
    LoadedResult(ResultKind kind, std::shared_ptr<ISurveyingViewModel> viewModel,
                 std::shared_ptr<const Machine> machine)
        : m_kind(kind), m_viewModel(std::move(viewModel)), m_machine(std::move(machine)) {}
    ResultKind kind() const override { return m_kind; }
    std::string machineName() const override { return m_machine->name; }
    std::string machineFile() const override { return m_machine->file; }
    std::string ownRoofsFault() const override {
        const auto table =
            m_viewModel->getRoofManager(m_kind == ResultKind::Gpu ? DataType::Gpu : DataType::Cpu);
        return table ? embedded_host::ownRoofsFault(*table) : std::string();
    }
    std::shared_ptr<ISurveyingViewModel> viewModel() const override { return m_viewModel; }
    void load(IViewModelBase::LoadType type) override {
        m_viewModel->onSurveyResultLoaded().raise(type, m_viewModel->getResultDirectory());
    }

private:
    const ResultKind m_kind;
    const std::shared_ptr<ISurveyingViewModel> m_viewModel;
    const std::shared_ptr<const Machine> m_machine;
};

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
    const auto make = kind == ResultKind::Gpu ? makeGpuViewModel : makeViewModel;
    auto viewModel = make(std::move(result), machine, path);
    return std::make_shared<LoadedResult>(kind, std::move(viewModel), std::move(machine));
}

std::shared_ptr<Result> openResult(const std::string& path, const OpenOptions& options) {
    return parseResult(readFile(path), path, options);
}

}  // namespace embedded_host
