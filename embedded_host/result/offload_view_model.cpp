// Answers from what the files said of regions and their target.
#include "embedded_host/result/offload_view_model.h"

#include "host_interfaces/signals.h"

#include "embedded_host/result/dataset.h"
#include "embedded_host/result/device.h"
#include "embedded_host/result/gpu_roof_table.h"

#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

class OffloadViewModel final : public IPerfProjectionViewModel {
public:
    OffloadViewModel(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory)
        : m_result(std::move(result)), m_directory(std::move(directory)) {
        if (m_result.target) m_memory = m_result.target->memory;
        if (m_memory.empty() && machine->device) m_memory = memoryNameOf(*machine->device);
        const int subDevices = subDevicesOf(machine->device, *machine);
        m_roofs = makeGpuRoofTable(std::move(machine), subDevices);
        const auto order = m_result.rows->hasTree ? RowOrder::Tree : RowOrder::Flat;
        m_regions = makeDataset(m_result.rows, DataType::Offload, order);
    }

    sptr_t<IDataset> getDataset(DataType type) const override {
        return type == DataType::Offload ? m_regions : nullptr;
    }
    std::shared_ptr<IRoofManager> getRoofManager(DataType) const override { return m_roofs; }
    ProgramInfo getProgramInfo() const override { return m_result.program; }
    std::string getResultDirectory() const override { return m_directory; }
    LoadSignal& onResultLoaded() override { return m_loaded; }
    std::string getTargetMemoryName() const override { return m_memory; }

private:
    const ResultFile m_result;
    const std::string m_directory;
    std::string m_memory;
    std::shared_ptr<IRoofManager> m_roofs;
    sptr_t<IDataset> m_regions;
    LoadSignal m_loaded;
};

}  // namespace

std::shared_ptr<IPerfProjectionViewModel> makeOffloadViewModel(ResultFile result,
                                                               std::shared_ptr<const Machine> machine,
                                                               std::string directory) {
    return std::make_shared<OffloadViewModel>(std::move(result), std::move(machine), std::move(directory));
}

}  // namespace embedded_host
