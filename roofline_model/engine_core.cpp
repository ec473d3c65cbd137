#include "roofline_model/engine_core.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/roofline_document.h"
#include "roofline_model/unified/chart_range.h"

namespace data_models2 {

namespace {

using roofline::helpers::getRooflineTotal;
using Totals = std::vector<roofline::helpers::SRooflineTotal>;

OperationsType operationsOf(const RooflineConfiguration& configuration) {
    if (configuration.hasType("b")) return OperationsType::Mixed;
    return configuration.hasType("i") ? OperationsType::Int : OperationsType::Float;
}

Totals makeTotals(const AnalysisKind& kind, const EngineCore::Metrics& metrics,
                  const sptr_t<IDataset>& dataset, const RooflineConfigurations& configurations,
                  int memoryLevels, double elapsedTime) {
    const std::string& firstLevel = kind.totalLevels.front();
    if (configurations.empty()) return Totals(1, roofline::helpers::SRooflineTotal{.name = firstLevel});
    const OperationsType operations = operationsOf(*configurations.begin());
    if (!metrics) return {getRooflineTotal(dataset, operations, firstLevel)};
    Totals totals{getRooflineTotal(*metrics, operations, firstLevel, elapsedTime)};
    for (std::size_t i = 1; memoryLevels > 1 && i < kind.totalLevels.size(); ++i) {
        auto total = getRooflineTotal(*metrics, operations, kind.totalLevels[i], elapsedTime);
        if (total.elapsedTime > 0.0) totals.push_back(std::move(total));
    }
    return totals;
}

}  // namespace

void EngineCore::initMemoryMetrics() {
    if (!m_metrics && m_viewModel)
        m_metrics = makeMemoryMetrics(m_viewModel->getDataset(m_kind.rows), m_kind.recipe);
}

sptr_t<IDataset> EngineCore::getRooflineDatasetForConfiguration(const RooflineConfigurations& configurations,
                                                                sptr_t<IDataset> first,
                                                                sptr_t<IDataset> second) const {
    if (!m_viewModel || configurations.empty()) return nullptr;
    return chooseDataset(m_kind, *m_viewModel, configurations, std::move(first), std::move(second));
}

sptr_t<IDataset> EngineCore::chooseDataset(const AnalysisKind& kind, const IViewModelBase& viewModel,
                                           const RooflineConfigurations& configurations,
                                           sptr_t<IDataset> first, sptr_t<IDataset> second) {
    if (!first) first = viewModel.getDataset(kind.rows);
    if (!second) second = viewModel.getDataset(kind.totals);
    return configurations.begin()->hasType("1") || !second ? first : second;
}

std::string EngineCore::getRooflineData(const sptr_t<IDataset>& first, const sptr_t<IDataset>& second,
                                        const std::string& configuration, int memoryLevels) {
    if (!m_viewModel || !m_options) return {};
    // An empty text is no configuration at all here, not one of defaults: the document says that there is no
    // data.
    RooflineConfigurations configurations;
    if (!configuration.empty() && !configurations.init(configuration, m_options)) return {};
    const bool selfData = !configurations.empty() && configurations.begin()->hasType("1");
    const auto chosen = getRooflineDatasetForConfiguration(configurations, first, second);
    initMemoryMetrics();
    const Totals totals = makeTotals(m_kind, m_metrics, first, configurations, memoryLevels,
                                     m_viewModel->getProgramInfo().elapsedTime);
    calcViewRect(first, second);
    return makeRooflineDocument({chosen, m_options, configurations, totals, m_kind.tables(), selfData},
                                m_viewRect);
}

std::shared_ptr<IRoofManager> EngineCore::getRoofManager() const {
    auto roofManager = m_viewModel ? m_viewModel->getRoofManager(m_kind.rows) : nullptr;
    if (!roofManager) reportAssertion("roofManager", "roofline_model/roofline_engine", __LINE__);
    return roofManager;
}

void EngineCore::calcViewRect(const sptr_t<IDataset>& first, const sptr_t<IDataset>& second) {
    if (!m_viewRect.isEmpty() || !first || !second || !m_options) return;
    RooflineViewRect rect = m_viewRect;  // a walk that fails leaves the engine without one
    calcViewRectImp(rect, first, m_kind.tables().params, m_options, false);
    calcViewRectImp(rect, second, m_kind.tables().params, m_options, true);
    m_viewRect = rect;
}

}  // namespace data_models2
