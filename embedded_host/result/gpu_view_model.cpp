// Answers from what the files said of kernels and their device.
#include "embedded_host/result/gpu_view_model.h"

#include "host_interfaces/host_functions.h"
#include "host_interfaces/signals.h"

#include "embedded_host/result/dataset.h"
#include "embedded_host/result/gpu_roof_table.h"

#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

class GpuViewModel final : public ISurveyingViewModel {
public:
    GpuViewModel(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory)
        : m_result(std::move(result)), m_machine(std::move(machine)), m_directory(std::move(directory)) {
        m_device = m_result.device ? m_result.device : m_machine->device;
        m_roofs = makeGpuRoofTable(m_machine, subDeviceCount());
        const auto order = m_result.rows->hasTree ? RowOrder::Tree : RowOrder::Flat;
        m_kernels = makeDataset(m_result.rows, DataType::Gpu, order);
        m_statistics =
            makeDataset(makeStatisticsTable(*m_result.rows), DataType::GpuStatistics, RowOrder::Tree);
        m_linker = makeRowLinker(m_statistics);
    }

    sptr_t<IDataset> getDataset(DataType type) const override {
        return type == DataType::Gpu ? m_kernels : type == DataType::GpuStatistics ? m_statistics : nullptr;
    }
    std::shared_ptr<IRoofManager> getRoofManager(DataType) const override { return m_roofs; }
    ProgramInfo getProgramInfo() const override { return m_result.program; }
    std::string getResultDirectory() const override { return m_directory; }
    LoadSignal& onSurveyResultLoaded() override { return m_loaded; }
    bool clearHighlighting(DataType, int) override { return false; }  // nothing is ever highlighted
    std::vector<std::string> getMemoryLevelNames() const override {
        return {"CARMgpu", "L3gpu", "SLMgpu",
                roofline_helpers::getGpuMemoryRooflineType(getGpuDeviceProperties().memoryType)};
    }
    int getUsedThreadCount() const override { return m_result.usedThreads; }
    int getLogicalCoreCount() const override { return m_machine->logicalCores; }
    int getPhysicalCoreCount() const override { return m_machine->physicalCores; }
    int getPackageCount() const override { return subDeviceCount(); }
    double getTotalTime() const override { return m_result.kernelTime; }
    std::uint64_t getCollectedDataFlags() const override { return m_result.collected; }

    std::optional<DeviceInfo> getDeviceInfo(TargetDeviceType target) const override {
        if (target != TargetDeviceType::Gpu || !m_device) return std::nullopt;
        return DeviceInfo{m_device->name};
    }
    // A device that no file speaks of is taken for one with a DRAM of its own.
    GpuDeviceProperties getGpuDeviceProperties() const override {
        if (m_device) return *m_device;
        GpuDeviceProperties unknown;
        unknown.memoryType = static_cast<std::uint64_t>(MemoryLevel::Dram);
        return unknown;
    }
    std::shared_ptr<IDatasetRowLinker> getRowLinker(DataType from, DataType to) const override {
        return from == DataType::Gpu && to == DataType::GpuStatistics ? m_linker : nullptr;
    }

private:
    int subDeviceCount() const { return subDevicesOf(m_device, *m_machine); }

    const ResultFile m_result;
    const std::shared_ptr<const Machine> m_machine;
    const std::string m_directory;
    std::optional<GpuDeviceProperties> m_device;
    std::shared_ptr<IRoofManager> m_roofs;
    sptr_t<IDataset> m_kernels;
    sptr_t<IDataset> m_statistics;
    std::shared_ptr<IDatasetRowLinker> m_linker;
    LoadSignal m_loaded;
};

}  // namespace

std::shared_ptr<ISurveyingViewModel> makeGpuViewModel(ResultFile result,
                                                      std::shared_ptr<const Machine> machine,
                                                      std::string directory) {
    return std::make_shared<GpuViewModel>(std::move(result), std::move(machine), std::move(directory));
}

}  // namespace embedded_host
