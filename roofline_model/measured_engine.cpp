#include "roofline_model/measured_engine.h"

#include "roofline_model/guard.h"
#include "roofline_model/loop_details.h"
#include "roofline_model/report_template.h"
#include "roofline_model/threading.h"

namespace data_models2 {

using roofline::guarded;

MeasuredEngine::MeasuredEngine(const AnalysisKind& kind, const roofline::LogChannel& log,
                               std::shared_ptr<ISurveyingViewModel> viewModel)
    : EngineFace(kind, log), m_dominance(std::make_unique<ProgramDominance>(m_core, changed)) {
    setModel(std::move(viewModel));
    guarded([this] { rebuildOptions(); });  // a host that fails now may answer at the next load
}

void MeasuredEngine::setModel(std::shared_ptr<ISurveyingViewModel> viewModel) {
    disconnectAll();
    m_viewModel = std::move(viewModel);
    m_core.setViewModel(m_viewModel);
    m_dominance->setModel(m_viewModel);
    if (!m_viewModel) return;
    guarded([this] { m_core.setDevice(m_viewModel->getGpuDeviceProperties()); });
    m_viewModel->onSurveyResultLoaded().connect(
        *this, [this](IViewModelBase::LoadType type, const std::string& message) {
            onSurveyResultLoaded(type, message);
        });
}

void MeasuredEngine::onSurveyResultLoaded(IViewModelBase::LoadType type, const std::string&) {
    for (const LoadStep step : m_core.kind().loadSteps) guarded([&] { take(step, type); });
    logLoad(type);
}

void MeasuredEngine::take(LoadStep step, IViewModelBase::LoadType type) {
    switch (step) {
        case LoadStep::DetectWhenNew:
            if (type == IViewModelBase::LoadType::Result) detectDominatingRoofsAsync();
            break;
        case LoadStep::Detect:
            return detectDominatingRoofsAsync();
        case LoadStep::RebuildMetrics:
            return m_core.rebuildMemoryMetrics();
        case LoadStep::ReadDevice:
            return readDevice();
        case LoadStep::RebuildOptions:
            return rebuildOptions();
    }
}

void MeasuredEngine::readDevice() {
    if (!m_viewModel) return;
    m_hasDeviceInfo = m_viewModel->getDeviceInfo(m_core.kind().device).has_value();
    m_core.setDevice(m_viewModel->getGpuDeviceProperties());
}

int MeasuredEngine::getMemoryLevelsCount() const { return roofline::getMemoryLevelsCount(m_viewModel); }

void MeasuredEngine::loadSummaryData(int kind, const std::function<void(const std::string&)>& callback) {
    if (kind != 0 && !callback) throw std::bad_function_call();
    if (kind != 0) return guarded([&] { callback(std::string()); });
    guarded([&] { m_dominance->loadSummaryData(callback); });
}

std::string MeasuredEngine::getAllRoofs(const std::string& configuration) const {
    return guarded(std::string(),
                   [&] { return m_core.getAllRoofs(configuration, roofline::getThreadsInfo(m_viewModel)); });
}

std::string MeasuredEngine::getSelectedRoofs(const std::string& configuration,
                                             Perspective perspective) const {
    return guarded(std::string(), [&] {
        if (!m_viewModel) return std::string();
        const auto dominating = m_dominance->requestDominatingRoofs(perspective);
        return m_core.getSelectedRoofs(configuration, perspective, dominating, getMemoryLevelsCount());
    });
}

std::string MeasuredEngine::getLoopAdditionalInfo(const std::string& request,
                                                  std::shared_ptr<IResultController>,
                                                  const std::string& configuration) const {
    return guarded(std::string(), [&] {
        return LoopDetails(m_core, m_viewModel).getLoopAdditionalInfo(request, configuration);
    });
}

std::string MeasuredEngine::getReportTemplate(std::shared_ptr<IResultController>) const {
    return guarded(std::string(), [&] {
        const auto dominating = m_dominance->requestDominatingRoofs(Perspective::Program);
        return makeReportTemplate(
            {m_core, getMemoryLevelsCount(), roofline::getThreadsInfo(m_viewModel), dominating});
    });
}

std::string MeasuredEngine::getComparisonData(const ComparisonData& data, const std::string& ids,
                                              const std::string& configuration) const {
    return guarded(std::string(),
                   [&] { return LoopDetails::getComparisonData(m_core, data, ids, configuration); });
}

}  // namespace data_models2
