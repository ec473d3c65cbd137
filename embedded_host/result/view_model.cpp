// Answers from what the files said.
#include "embedded_host/result/view_model.h"

#include "host_interfaces/signals.h"

#include "embedded_host/result/dataset.h"
#include "embedded_host/result/roof_table.h"

#include <numeric>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

class ViewModel final : public ISurveyingViewModel {
public:
    ViewModel(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory)
        : m_result(std::move(result)), m_machine(std::move(machine)), m_directory(std::move(directory)) {
        m_roofs = makeRoofTable(m_machine, m_result.usedThreads);
        m_flat = makeDataset(m_result.rows, DataType::Cpu, RowOrder::Flat);
        if (m_result.rows->hasTree) m_tree = makeDataset(m_result.rows, DataType::CpuTopDown, RowOrder::Tree);
        if (const auto* const times = m_result.rows->find(FieldId::SelfTime)) {
            const auto& values = times->as<double>();
            m_totalTime = std::accumulate(values.begin(), values.end(), 0.0);
        }
    }

    sptr_t<IDataset> getDataset(DataType type) const override {
        return type == DataType::Cpu ? m_flat : type == DataType::CpuTopDown ? m_tree : nullptr;
    }
    std::shared_ptr<IRoofManager> getRoofManager(DataType) const override { return m_roofs; }
    ProgramInfo getProgramInfo() const override { return m_result.program; }
    std::string getResultDirectory() const override { return m_directory; }
    LoadSignal& onSurveyResultLoaded() override { return m_loaded; }
    bool clearHighlighting(DataType, int) override { return false; }  // nothing is ever highlighted
    std::vector<std::string> getMemoryLevelNames() const override { return m_result.levels; }
    int getUsedThreadCount() const override { return m_result.usedThreads; }
    int getLogicalCoreCount() const override { return m_machine->logicalCores; }
    int getPhysicalCoreCount() const override { return m_machine->physicalCores; }
    int getPackageCount() const override { return m_machine->packages; }
    double getTotalTime() const override { return m_totalTime; }
    std::uint64_t getCollectedDataFlags() const override { return m_result.collected; }
    sptr_t<IRowNavigator> getRowNavigator() const override { return makeRowNavigator(m_flat); }

private:
    const ResultFile m_result;
    const std::shared_ptr<const Machine> m_machine;
    const std::string m_directory;
    std::shared_ptr<IRoofManager> m_roofs;
    sptr_t<IDataset> m_flat;
    sptr_t<IDataset> m_tree;  // null when no row has children
    double m_totalTime = 0.0;
    LoadSignal m_loaded;
};

}  // namespace

std::shared_ptr<ISurveyingViewModel> makeViewModel(ResultFile result, std::shared_ptr<const Machine> machine,
                                                   std::string directory) {
    return std::make_shared<ViewModel>(std::move(result), std::move(machine), std::move(directory));
}

}  // namespace embedded_host
