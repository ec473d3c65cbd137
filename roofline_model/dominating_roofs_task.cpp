#include "roofline_model/dominating_roofs_task.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/gpu_operation_map_provider.h"
#include "roofline_model/guard.h"

namespace data_models2 {

DominatingRoofsTask::DominatingRoofsTask(std::shared_ptr<ISurveyingViewModel> viewModel, DataType dataType,
                                         IProgress* progress)
    : m_progress(progress ? progress : &m_dummyProgress),
      m_viewModel(std::move(viewModel)),
      m_dataType(dataType) {}

// A cancellation may be overwritten here: `TaskFinished` asks for it first.
void DominatingRoofsTask::DoTask() {
    m_succeeded = !isCancelled() && roofline::guarded(false, [this] { return calculateDominatingTypes(); });
}

void DominatingRoofsTask::Cancel() {
    DefaultTaskImpl::Cancel();
    m_progress->cancel();
    m_succeeded = false;
}

bool DominatingRoofsTask::calculateDominatingTypes() {
    const auto dataset = m_viewModel ? m_viewModel->getDataset(m_dataType) : nullptr;
    const auto walker = createDatasetHelper(dataset);
    if (!walker) return false;
    if (m_dataType == DataType::Cpu) {
        const sptr_t<DominatingTypeHelper> helper(
            new DominatingTypeHelper(dataset, m_viewModel->getTotalTime()));
        walker->visit(helper, true);
        m_dominatingTypes = helper->getProgramDominatingTypes();
        return true;
    }
    if (m_dataType == DataType::GpuStatistics) {
        const sptr_t<GpuDominatingTypeHelper> helper(new GpuDominatingTypeHelper(m_viewModel));
        walker->visit(helper, true);
        m_operationMap = helper->getOperationMap();
        return true;
    }
    return false;
}

void DominatingRoofsTask::TaskFinished() {
    const bool cancelled = isCancelled() || m_progress->isCancelled();
    SetCompleteStatus(cancelled ? LoadType::Cancelled : m_succeeded ? LoadType::Succeeded : LoadType::Failed);
    completed.raise(*this);
}

}  // namespace data_models2
