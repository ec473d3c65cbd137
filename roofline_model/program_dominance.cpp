#include "roofline_model/program_dominance.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/dominating_roofs_task.h"
#include "roofline_model/guard.h"
#include "roofline_model/roofline_summary.h"

#include <utility>

namespace data_models2 {

namespace {

constexpr auto kTaskName = "/dominating_roofs";  // behind the result's directory: the task's id

}  // namespace

void ProgramDominance::detectDominatingRoofsAsync() {
    const auto scheduler = IScheduler::Get();
    if (!scheduler) return reportAssertion("scheduler", "roofline_model/program_dominance", __LINE__);
    if (!scheduler->isEnabled() || !m_viewModel) return;
    const sptr_t<DominatingRoofsTask> task(new DominatingRoofsTask(m_viewModel, m_core.kind().dominance));
    task->completed.connect(
        *this, [this](const BaseLongOperationTask& completed) { onDominatingRoofsCompleted(completed); });
    scheduler->schedule(task, m_viewModel->getResultDirectory() + kTaskName);
}

void ProgramDominance::onDominatingRoofsCompleted(const BaseLongOperationTask* completed) {
    const auto* const task = dynamic_cast<const DominatingRoofsTask*>(completed);
    if (!task || !m_viewModel) return;
    disconnect(&task->completed);
    if (task->getCompleteStatus() != BaseLongOperationTask::LoadType::Succeeded) return;
    roofline::guarded([&] {
        auto roofs = m_core.kind().dominatingRoofs(*task, *m_viewModel, m_core.metrics());
        const auto selected = roofs[IRooflineInfo::Perspective::Program];
        {
            const std::lock_guard lock(m_mutex);
            m_operationMap = task->getProgramOperationMap();
            m_dominatingRoofs = std::move(roofs);
        }
        if (const auto answer = std::exchange(m_pendingSummaryCallback, {})) answer(makeSummary(selected));
    });
    roofline::guarded([&] { m_changed.raise(); });
}

void ProgramDominance::loadSummaryData(const SummaryCallback& callback) {
    m_core.initMemoryMetrics();
    if (!m_viewModel || !m_core.metrics() || !callback) return;
    const auto selected = dominatingRoofs()[IRooflineInfo::Perspective::Program];
    if (!selected.empty())
        callback(makeSummary(selected));
    else
        m_pendingSummaryCallback = callback;
}

roofline::DominatingRoofs ProgramDominance::dominatingRoofs() const {
    const std::lock_guard lock(m_mutex);
    return m_dominatingRoofs;
}

roofline::RoofIds ProgramDominance::requestDominatingRoofs(IRooflineInfo::Perspective perspective) {
    if (dominatingRoofs().empty()) detectDominatingRoofsAsync();
    const auto roofs = dominatingRoofs();
    return roofs.empty() ? roofline::RoofIds() : roofs.at(perspective);
}

std::string ProgramDominance::makeSummary(const roofline::RoofIds& selected) const {
    const auto operationMap = [this] {
        const std::lock_guard lock(m_mutex);
        return m_operationMap;
    }();
    return roofline::summary::getProgramOpsAndBandwidthSummary(m_core.metrics(), m_viewModel,
                                                               m_core.kind().device, selected, operationMap);
}

}  // namespace data_models2
