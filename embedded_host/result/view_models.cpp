#include "embedded_host/result/view_models.h"

#include "host_interfaces/host_functions.h"
#include "host_interfaces/model.h"
#include "host_interfaces/signals.h"

#include "embedded_host/result/dataset.h"
#include "embedded_host/result/device.h"
#include "embedded_host/result/gpu_roof_table.h"
#include "embedded_host/result/machine_file.h"
#include "embedded_host/result/result_file.h"
#include "embedded_host/result/roof_table.h"

#include <numeric>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

// What every kind answers; the constructor of each sets the roofs.
template <class Interface>
class FileViewModel : public Interface {
public:
    FileViewModel(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory)
        : m_result(std::move(result)), m_machine(std::move(machine)), m_directory(std::move(directory)) {}

    std::shared_ptr<IRoofManager> getRoofManager(DataType) const override { return m_roofs; }
    ProgramInfo getProgramInfo() const override { return m_result.program; }
    std::string getResultDirectory() const override { return m_directory; }

protected:
    using LoadSignal = typename Interface::LoadSignal;

    // All rows, as a tree where one has children.
    sptr_t<IDataset> makeRows(DataType type) const {
        return makeDataset(m_result.rows, type, m_result.rows->hasTree ? RowOrder::Tree : RowOrder::Flat);
    }

    const ResultFile m_result;
    const std::shared_ptr<const Machine> m_machine;
    std::shared_ptr<IRoofManager> m_roofs;
    LoadSignal m_loaded;

private:
    const std::string m_directory;
};

class MeasuredViewModel : public FileViewModel<ISurveyingViewModel> {
public:
    using FileViewModel::FileViewModel;

    LoadSignal& onSurveyResultLoaded() override { return m_loaded; }
    bool clearHighlighting(DataType, int) override { return false; }  // nothing is ever highlighted
    int getUsedThreadCount() const override { return m_result.usedThreads; }
    int getLogicalCoreCount() const override { return m_machine->logicalCores; }
    int getPhysicalCoreCount() const override { return m_machine->physicalCores; }
    std::uint64_t getCollectedDataFlags() const override { return m_result.collected; }
};

class CpuViewModel final : public MeasuredViewModel {
public:
    CpuViewModel(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory)
        : MeasuredViewModel(std::move(result), std::move(machine), std::move(directory)) {
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
    std::vector<std::string> getMemoryLevelNames() const override { return m_result.levels; }
    int getPackageCount() const override { return m_machine->packages; }
    double getTotalTime() const override { return m_totalTime; }
    sptr_t<IRowNavigator> getRowNavigator() const override { return makeRowNavigator(m_flat); }

private:
    sptr_t<IDataset> m_flat;
    sptr_t<IDataset> m_tree;  // null when no row has children
    double m_totalTime = 0.0;
};

class GpuViewModel final : public MeasuredViewModel {
public:
    GpuViewModel(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory)
        : MeasuredViewModel(std::move(result), std::move(machine), std::move(directory)) {
        m_device = m_result.device ? m_result.device : m_machine->device;
        m_roofs = makeGpuRoofTable(m_machine, subDevicesOf(m_device, *m_machine));
        m_kernels = makeRows(DataType::Gpu);
        m_statistics =
            makeDataset(makeStatisticsTable(*m_result.rows), DataType::GpuStatistics, RowOrder::Tree);
        m_linker = makeRowLinker(m_statistics);
    }

    sptr_t<IDataset> getDataset(DataType type) const override {
        return type == DataType::Gpu ? m_kernels : type == DataType::GpuStatistics ? m_statistics : nullptr;
    }
    std::vector<std::string> getMemoryLevelNames() const override {
        return {"CARMgpu", "L3gpu", "SLMgpu",
                roofline_helpers::getGpuMemoryRooflineType(getGpuDeviceProperties().memoryType)};
    }
    int getPackageCount() const override { return subDevicesOf(m_device, *m_machine); }
    double getTotalTime() const override { return m_result.kernelTime; }

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
    std::optional<GpuDeviceProperties> m_device;
    sptr_t<IDataset> m_kernels;
    sptr_t<IDataset> m_statistics;
    std::shared_ptr<IDatasetRowLinker> m_linker;
};

class OffloadViewModel final : public FileViewModel<IPerfProjectionViewModel> {
public:
    OffloadViewModel(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory)
        : FileViewModel(std::move(result), std::move(machine), std::move(directory)) {
        if (m_result.target) m_memory = m_result.target->memory;
        if (m_memory.empty() && m_machine->device) m_memory = memoryNameOf(*m_machine->device);
        m_roofs = makeGpuRoofTable(m_machine, subDevicesOf(m_machine->device, *m_machine));
        m_regions = makeRows(DataType::Offload);
    }

    sptr_t<IDataset> getDataset(DataType type) const override {
        return type == DataType::Offload ? m_regions : nullptr;
    }
    LoadSignal& onResultLoaded() override { return m_loaded; }
    std::string getTargetMemoryName() const override { return m_memory; }

private:
    std::string m_memory;
    sptr_t<IDataset> m_regions;
};

}  // namespace

Views makeCpuView(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory) {
    return {std::make_shared<CpuViewModel>(std::move(result), std::move(machine), std::move(directory)), {}};
}

Views makeGpuView(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory) {
    return {std::make_shared<GpuViewModel>(std::move(result), std::move(machine), std::move(directory)), {}};
}

Views makeOffloadView(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory) {
    return {{},
            std::make_shared<OffloadViewModel>(std::move(result), std::move(machine), std::move(directory))};
}

}  // namespace embedded_host
