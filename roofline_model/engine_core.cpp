#include "roofline_model/engine_core.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/guard.h"
#include "roofline_model/roof_catalogue.h"
#include "roofline_model/roofline_document.h"
#include "roofline_model/unified/chart_range.h"

namespace data_models2 {

using roofline::guarded;

namespace {

OperationsType operationsOf(const RooflineConfiguration& configuration) {
    if (configuration.hasType("b")) return OperationsType::Mixed;
    return configuration.hasType("i") ? OperationsType::Int : OperationsType::Float;
}

}  // namespace

void EngineCore::initMemoryMetrics() {
    if (!m_state.metrics && m_viewModel)
        m_state.metrics = makeMemoryMetrics(m_viewModel->getDataset(m_kind.rows), m_kind.recipe(m_state));
}

void EngineCore::rebuildMemoryMetrics() {
    m_state.metrics.reset();
    initMemoryMetrics();
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
    if (!second && kind.totals != DataType::None) second = viewModel.getDataset(kind.totals);
    return configurations.begin()->hasType("1") || !second ? first : second;
}

EngineCore::Totals EngineCore::makeTotals(const sptr_t<IDataset>& dataset,
                                          const RooflineConfigurations& configurations,
                                          int memoryLevels) const {
    using roofline::helpers::getRooflineTotal;
    if (configurations.empty()) return {};
    const auto levels = m_kind.totalLevels(configurations, memoryLevels);
    const OperationsType operations = operationsOf(*configurations.begin());
    if (!metrics()) return {getRooflineTotal(dataset, operations, levels.front(), m_kind.recipe(m_state))};
    const double elapsedTime = m_viewModel->getProgramInfo().elapsedTime;
    Totals totals;
    for (const auto& level : levels) {
        auto total = getRooflineTotal(*metrics(), operations, level, elapsedTime);
        if (totals.size() < m_kind.certainTotals || total.elapsedTime > 0.0)
            totals.push_back(std::move(total));
    }
    return totals;
}

std::string EngineCore::getRooflineData(const sptr_t<IDataset>& first, const sptr_t<IDataset>& second,
                                        const std::string& configuration, int memoryLevels) {
    return guarded(std::string(), [&]() -> std::string {
        if (!m_viewModel || !options()) return {};
        // An empty text is no configuration at all here, not one of defaults: the document says that there is
        // no data.
        RooflineConfigurations configurations;
        if (!configuration.empty() && !configurations.init(configuration, options())) return {};
        const bool selfData = !configurations.empty() && configurations.begin()->hasType("1");
        const auto totalData = m_kind.totals == DataType::None ? nullptr : second;
        const auto chosen = getRooflineDatasetForConfiguration(configurations, first, totalData);
        initMemoryMetrics();
        const Totals totals = makeTotals(first, configurations, memoryLevels);
        calcViewRect(first, totalData);
        return makeRooflineDocument(
            {chosen, options(), configurations, totals, m_kind.tables(), selfData, m_kind.rowTime},
            m_viewRect);
    });
}

std::string EngineCore::getRooflineOptions() const {
    return guarded(std::string(), [&] { return options() ? options()->toString() : std::string(); });
}

std::string EngineCore::getRooflineConfigurationStr(const RooflineTypes& types) const {
    return guarded(std::string(), [&] {
        return options() ? options()->getRooflineConfigurationStr(m_kind.optionValues(types, m_state))
                         : std::string();
    });
}

bool EngineCore::clearHighlighting(DataType type) const {
    return guarded(false, [&] { return m_viewModel && m_viewModel->clearHighlighting(type, 0); });
}

std::shared_ptr<IRoofManager> EngineCore::getRoofManager() const {
    auto roofManager = m_viewModel ? m_viewModel->getRoofManager(m_kind.rows) : nullptr;
    if (!roofManager) reportAssertion("roofManager", "roofline_model/roofline_engine", __LINE__);
    return roofManager;
}

void EngineCore::fillRoofs(rabbit::array& array, const std::string& configuration,
                           const RoofThreadingFeatures& features, Perspective perspective) const {
    if (!m_viewModel) return;
    const auto operations = m_kind.roofOperations(configuration, m_state);
    const auto roofConfiguration = m_kind.roofConfiguration(features, operations, perspective);
    if (const auto roofManager = getRoofManager())
        roofline::fillRoofs(array, roofManager->getRoofs(roofConfiguration), m_kind.device);
}

std::string EngineCore::getRoofs(const std::string& configuration, const RoofThreadingFeatures& features,
                                 Perspective perspective) const {
    return guarded(std::string(), [&] {
        return rabbit::writeArray(
            [&](rabbit::array& root) { fillRoofs(root, configuration, features, perspective); });
    });
}

std::string EngineCore::getAllRoofs(const std::string& configuration, const ThreadsInfo& info) const {
    return guarded(std::string(), [&] {
        return rabbit::writeArray([&](rabbit::array& root) { fillAllRoofs(root, configuration, info); });
    });
}

void EngineCore::fillAllRoofs(rabbit::array& array, const std::string& configuration,
                              const ThreadsInfo& info) const {
    roofline::fillAllRoofs(array, info, [&](rabbit::array& roofs, const RoofThreadingFeatures& features) {
        fillRoofs(roofs, configuration, features, Perspective::Program);
    });
}

std::string EngineCore::getSelectedRoofs(const std::string& configuration, Perspective perspective,
                                         const roofline::RoofIds& dominating, int memoryLevels) const {
    return guarded(std::string(), [&] {
        const auto choice = selectRoofs(configuration, perspective, dominating, memoryLevels);
        return roofline::createSelectedRoofsJson(choice.selected, choice.hidden, choice.roofs);
    });
}

roofline::SelectedRoofs EngineCore::selectRoofs(const std::string& configuration, Perspective perspective,
                                                const roofline::RoofIds& dominating, int memoryLevels) const {
    roofline::RoofIds selected;
    m_kind.selectMemoryRoofs(selected, configuration, perspective, m_state, memoryLevels);
    selected.insert(dominating.begin(), dominating.end());
    const auto roofManager = getRoofManager();
    if (!roofManager) return {};
    const auto roofs = roofManager->getRoofs(std::string());
    return {std::move(selected), m_kind.hiddenRoofs(roofs, perspective, m_state), roofs};
}

std::string EngineCore::customRoofsKey(const RoofThreadingFeatures& features) const {
    return m_kind.roofConfiguration(features, OperationsType::Undefined, Perspective::Program);
}

bool EngineCore::setCustomRoofValues(RoofId roof, unsigned long long value,
                                     const RoofThreadingFeatures& features) const {
    return guarded(false, [&] {
        const auto roofManager = m_viewModel ? getRoofManager() : nullptr;
        return roofManager && roofManager->setCustomRoofValues({{roof, value}}, customRoofsKey(features));
    });
}

bool EngineCore::clearCustomRoofValues(const RoofThreadingFeatures& features) const {
    return guarded(false, [&] {
        const auto roofManager = m_viewModel ? getRoofManager() : nullptr;
        return roofManager && roofManager->clearCustomRoofValues(customRoofsKey(features));
    });
}

void EngineCore::calcViewRect(const sptr_t<IDataset>& first, const sptr_t<IDataset>& second) {
    if (!m_viewRect.isEmpty() || !first || !second || !options()) return;
    RooflineViewRect rect = m_viewRect;  // a walk that fails leaves the engine without one
    calcViewRectImp(rect, first, m_kind.tables().params, options(), false);
    calcViewRectImp(rect, second, m_kind.tables().params, options(), true);
    m_viewRect = rect;
}

}  // namespace data_models2
