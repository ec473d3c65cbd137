// What the engines of measured results share: the view model, what dominates the program, the details of its
// loops.
#pragma once

#include "roofline_model/engine_face.h"
#include "roofline_model/program_dominance.h"

#include <functional>
#include <memory>
#include <string>

namespace data_models2 {

// Without a view model there is no data, and a summary is never told.
class MeasuredEngine : public EngineFace {
public:
    // The slots use members, so the connections go before them; an engine with slots that use members of its
    // own cuts them itself.
    ~MeasuredEngine() override { disconnectAll(); }

    // Replaces the view model and listens to its load signal; nothing more is heard of tasks on an earlier
    // one. The device is the new one's.
    void setModel(std::shared_ptr<ISurveyingViewModel> viewModel);
    // Takes the kind's steps.
    virtual void onSurveyResultLoaded(IViewModelBase::LoadType type, const std::string& message);
    // Starts the background task; its completion raises `changed`.
    void detectDominatingRoofsAsync() const { m_dominance->detectDominatingRoofsAsync(); }
    int getMemoryLevelsCount() const final;

    void loadSummaryData(int kind, const std::function<void(const std::string&)>& callback) final;
    std::string getAllRoofs(const std::string& configuration) const final;
    std::string getSelectedRoofs(const std::string& configuration, Perspective perspective) const final;
    std::string getLoopAdditionalInfo(const std::string& request, std::shared_ptr<IResultController>,
                                      const std::string& configuration) const final;
    bool clearHighlighting(DataType type) final { return m_core.clearHighlighting(type); }
    std::string getComparisonData(const ComparisonData& data, const std::string& ids,
                                  const std::string& configuration) const final;
    std::string getReportTemplate(std::shared_ptr<IResultController>) const final;

protected:
    // A null view model makes an engine without data.
    MeasuredEngine(const AnalysisKind& kind, const roofline::LogChannel& log,
                   std::shared_ptr<ISurveyingViewModel> viewModel);

    const std::shared_ptr<ISurveyingViewModel>& viewModel() const { return m_viewModel; }
    // Whether the last load told of a device.
    bool hasDeviceInfo() const { return m_hasDeviceInfo; }

private:
    void take(LoadStep step, IViewModelBase::LoadType type);
    void readDevice();

    std::shared_ptr<ISurveyingViewModel> m_viewModel;
    const std::unique_ptr<ProgramDominance> m_dominance;
    bool m_hasDeviceInfo = false;
};

}  // namespace data_models2
