#include "roofline_model/offload_roofline_engine.h"

#include "roofline_model/compute_roofs.h"
#include "roofline_model/guard.h"
#include "roofline_model/loop_details.h"
#include "roofline_model/offload_operation_map.h"
#include "roofline_model/report_template.h"

namespace data_models2 {

using roofline::guarded;

namespace {
constinit const roofline::LogChannel kLog{"offload_roofline_engine"};
}  // namespace

COffloadRooflineEngine::COffloadRooflineEngine(std::shared_ptr<IPerfProjectionViewModel> viewModel)
    : EngineFace(offloadAnalysis(), kLog) {
    setModel(std::move(viewModel));
    guarded([this] { rebuildOptions(); });
}

void COffloadRooflineEngine::setModel(std::shared_ptr<IPerfProjectionViewModel> viewModel) {
    disconnectAll();
    m_viewModel = std::move(viewModel);
    m_core.setProjection(m_viewModel);
    if (!m_viewModel) return;
    m_viewModel->onResultLoaded().connect(
        *this,
        [this](IViewModelBase::LoadType type, const std::string& message) { onResultLoaded(type, message); });
}

void COffloadRooflineEngine::onResultLoaded(IViewModelBase::LoadType type, const std::string&) {
    guarded([this] { m_core.rebuildMemoryMetrics(); });
    guarded([this] { detectDominatingRoofs(); });
    logLoad(type);
}

void COffloadRooflineEngine::detectDominatingRoofs() {
    if (!m_viewModel) return;
    m_dominatingRoofs.clear();
    const auto roofManager = m_core.getRoofManager();
    if (!roofManager) return;
    const auto operations = getOffloadProgramOperations(m_viewModel->getDataset(m_core.kind().rows));
    m_dominatingRoofs = roofline::getDominatingComputeRoofs(roofManager->getRoofs(std::string()), operations,
                                                            m_core.metrics());
}

std::string COffloadRooflineEngine::getSelectedRoofs(const std::string& configuration,
                                                     Perspective perspective) const {
    if (!m_viewModel) return {};
    return m_core.getSelectedRoofs(configuration, perspective, m_dominatingRoofs, getMemoryLevelsCount());
}

std::string COffloadRooflineEngine::getLoopAdditionalInfo(const std::string& request,
                                                          std::shared_ptr<IResultController>,
                                                          const std::string& configuration) const {
    return guarded(std::string(), [&] {
        const LoopDetails details(m_core, {m_viewModel, {}, getMemoryLevelsCount()});
        return details.getLoopAdditionalInfo(request, configuration);
    });
}

std::string COffloadRooflineEngine::getReportTemplate(std::shared_ptr<IResultController>) const {
    return guarded(std::string(), [&] {
        return makeReportTemplate({m_core, getMemoryLevelsCount(), {}, m_dominatingRoofs});
    });
}

}  // namespace data_models2
