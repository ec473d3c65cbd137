#include "roofline_model/measured_program.h"

#include "roofline_model/guard.h"
#include "roofline_model/loop_details.h"
#include "roofline_model/report_template.h"
#include "roofline_model/threading.h"

namespace data_models2 {

using roofline::guarded;

void MeasuredProgram::setModel(std::shared_ptr<ISurveyingViewModel> viewModel) {
    m_viewModel = std::move(viewModel);
    m_core.setViewModel(m_viewModel);
    m_dominance->setModel(m_viewModel);
    if (m_viewModel) guarded([this] { m_core.setDevice(m_viewModel->getGpuDeviceProperties()); });
}

void MeasuredProgram::onLoaded(IViewModelBase::LoadType type) {
    for (const LoadStep step : m_core.kind().loadSteps) guarded([&] { take(step, type); });
}

void MeasuredProgram::take(LoadStep step, IViewModelBase::LoadType type) {
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

void MeasuredProgram::readDevice() {
    if (!m_viewModel) return;
    m_hasDeviceInfo = m_viewModel->getDeviceInfo(m_core.kind().device).has_value();
    m_core.setDevice(m_viewModel->getGpuDeviceProperties());
}

int MeasuredProgram::memoryLevels() const { return roofline::getMemoryLevelsCount(m_viewModel); }

void MeasuredProgram::loadSummaryData(int kind, const std::function<void(const std::string&)>& callback) {
    if (kind != 0 && !callback) throw std::bad_function_call();
    if (kind != 0) return guarded([&] { callback(std::string()); });
    guarded([&] { m_dominance->loadSummaryData(callback); });
}

std::string MeasuredProgram::getRooflineData(const sptr_t<IDataset>& first, const sptr_t<IDataset>& second,
                                             const std::string& configuration) {
    return guarded(std::string(),
                   [&] { return m_core.getRooflineData(first, second, configuration, memoryLevels()); });
}

std::string MeasuredProgram::getAllRoofs(const std::string& configuration) const {
    return guarded(std::string(),
                   [&] { return m_core.getAllRoofs(configuration, roofline::getThreadsInfo(m_viewModel)); });
}

std::string MeasuredProgram::getSelectedRoofs(const std::string& configuration,
                                              Perspective perspective) const {
    return guarded(std::string(), [&] {
        if (!m_viewModel) return std::string();
        const auto dominating = m_dominance->requestDominatingRoofs(perspective);
        return m_core.getSelectedRoofs(configuration, perspective, dominating, memoryLevels());
    });
}

std::string MeasuredProgram::getLoopAdditionalInfo(const std::string& request,
                                                   const std::string& configuration) const {
    return guarded(std::string(), [&] {
        return LoopDetails(m_core, m_viewModel).getLoopAdditionalInfo(request, configuration);
    });
}

std::string MeasuredProgram::getReportTemplate() const {
    return guarded(std::string(), [&] {
        const auto dominating = m_dominance->requestDominatingRoofs(Perspective::Program);
        return makeReportTemplate(
            {m_core, memoryLevels(), roofline::getThreadsInfo(m_viewModel), dominating});
    });
}

std::string MeasuredProgram::getComparisonData(const ComparisonData& data, const std::string& ids,
                                               const std::string& configuration) const {
    return guarded(std::string(),
                   [&] { return LoopDetails::getComparisonData(m_core, data, ids, configuration); });
}

}  // namespace data_models2
