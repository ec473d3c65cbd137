// What dominates a measured program: found in the background, kept by perspective, told to the summary pane.
#pragma once

#include "host_interfaces/roofline_services.h"
#include "host_interfaces/signals.h"
#include "host_interfaces/tasks.h"

#include "roofline_model/engine_core.h"
#include "roofline_model/selected_roofs.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace data_models2 {

// Belongs to one engine and lives on its thread: completions arrive on the thread that the host takes them
// on, which is the engine's.
class ProgramDominance final : public subscriber_base_t {
public:
    using SummaryCallback = std::function<void(const std::string&)>;

    // `core` and `changed` outlive it.
    ProgramDominance(EngineCore& core, signal_t<>& changed) : m_core(core), m_changed(changed) {}
    ~ProgramDominance() override { disconnectAll(); }

    // Nothing more is heard of tasks on an earlier view model.
    void setModel(std::shared_ptr<ISurveyingViewModel> viewModel) {
        disconnectAll();
        m_viewModel = std::move(viewModel);
    }
    // Hands a task to the host's scheduler; nothing without one that can run tasks, or without a view model.
    void detectDominatingRoofsAsync();
    // Takes over what a task found, answers the pending summary, tells of the change. A task that failed or
    // was cancelled, or that isn't the engine's, changes nothing.
    void onDominatingRoofsCompleted(const BaseLongOperationTask* task);
    void onDominatingRoofsCompleted(const BaseLongOperationTask& task) { onDominatingRoofsCompleted(&task); }
    // Answers now or, once, when a task has completed; a later request takes the place of one that waits.
    void loadSummaryData(const SummaryCallback& callback);

    // Empty until a task has completed; a load leaves the old ones in place until then.
    roofline::DominatingRoofs dominatingRoofs() const;
    // Those of one perspective; starts a task when none are known, which may complete inside the call. Throws
    // std::out_of_range for a perspective that there isn't.
    roofline::RoofIds requestDominatingRoofs(IRooflineInfo::Perspective perspective);

private:
    std::string makeSummary(const roofline::RoofIds& selected) const;

    EngineCore& m_core;
    signal_t<>& m_changed;
    std::shared_ptr<ISurveyingViewModel> m_viewModel;
    mutable std::mutex m_mutex;  // of the next two; never held while calling out
    roofline::DominatingRoofs m_dominatingRoofs;
    std::shared_ptr<const OperationMap> m_operationMap;
    SummaryCallback m_pendingSummaryCallback;
};

}  // namespace data_models2
