// Finds in the background what dominates a program: its data types on a CPU, its operations on a device.
#pragma once

#include "host_interfaces/model.h"
#include "host_interfaces/progress.h"
#include "host_interfaces/tasks.h"

#include "roofline_model/dominating_type_helper.h"
#include "roofline_model/operation_map.h"

#include <atomic>
#include <memory>

namespace data_models2 {

// Holds what it needs by itself, so it may outlive who asked for it. Its results are there when `completed`
// is raised; they are written by `DoTask` alone.
class DominatingRoofsTask final : public BaseLongOperationTask {
public:
    // The rows of `dataType` are walked: `Cpu` or `GpuStatistics`; any other fails. `progress` may be null
    // and outlives the task.
    DominatingRoofsTask(std::shared_ptr<ISurveyingViewModel> viewModel, DataType dataType,
                        IProgress* progress = nullptr);

    void DoTask() override;
    void Cancel() override;
    void TaskFinished() override;

    DominatingTypesInfo getProgramDominatingTypes() const { return m_dominatingTypes; }
    // Null unless a device's operations were counted.
    std::shared_ptr<const OperationMap> getProgramOperationMap() const { return m_operationMap; }

private:
    bool calculateDominatingTypes();

    DummyProgress m_dummyProgress;
    IProgress* m_progress;  // never null
    std::shared_ptr<ISurveyingViewModel> m_viewModel;
    DataType m_dataType;
    DominatingTypesInfo m_dominatingTypes;
    std::shared_ptr<const OperationMap> m_operationMap;
    std::atomic<bool> m_succeeded = true;
};

}  // namespace data_models2
