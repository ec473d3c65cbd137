// What the engines of measured results share beside their core: the view model, what dominates the program,
// the details of its loops.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "roofline_model/engine_core.h"
#include "roofline_model/program_dominance.h"

#include <functional>
#include <memory>
#include <string>

namespace data_models2 {

// Belongs to one engine. Its requests are guarded like those of the core; all answers but the summary's are
// empty without a view model.
class MeasuredProgram {
public:
    using Perspective = IRooflineInfo::Perspective;

    // `changed` outlives it.
    MeasuredProgram(const AnalysisKind& kind, signal_t<>& changed)
        : m_core(kind), m_dominance(std::make_unique<ProgramDominance>(m_core, changed)) {}

    EngineCore& core() { return m_core; }
    const EngineCore& core() const { return m_core; }
    const std::shared_ptr<ISurveyingViewModel>& viewModel() const { return m_viewModel; }
    // Nothing more is heard of tasks on an earlier view model. The device is the new one's.
    void setModel(std::shared_ptr<ISurveyingViewModel> viewModel);
    // Takes the kind's steps.
    void onLoaded(IViewModelBase::LoadType type);
    // Whether the last load told of a device.
    bool hasDeviceInfo() const { return m_hasDeviceInfo; }
    void detectDominatingRoofsAsync() const { m_dominance->detectDominatingRoofsAsync(); }
    void rebuildOptions() { m_core.rebuildOptions(memoryLevels()); }
    // At least 1.
    int memoryLevels() const;

    // A kind other than 0 is answered with an empty text; it throws for an empty callback.
    void loadSummaryData(int kind, const std::function<void(const std::string&)>& callback);
    std::string getRooflineData(const sptr_t<IDataset>& first, const sptr_t<IDataset>& second,
                                const std::string& configuration);
    std::string getAllRoofs(const std::string& configuration) const;
    std::string getSelectedRoofs(const std::string& configuration, Perspective perspective) const;
    std::string getLoopAdditionalInfo(const std::string& request, const std::string& configuration) const;
    std::string getReportTemplate() const;
    std::string getComparisonData(const ComparisonData& data, const std::string& ids,
                                  const std::string& configuration) const;

private:
    void take(LoadStep step, IViewModelBase::LoadType type);
    void readDevice();

    std::shared_ptr<ISurveyingViewModel> m_viewModel;
    EngineCore m_core;
    const std::unique_ptr<ProgramDominance> m_dominance;
    bool m_hasDeviceInfo = false;
};

}  // namespace data_models2
