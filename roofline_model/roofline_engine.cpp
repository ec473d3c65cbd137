#include "roofline_model/roofline_engine.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/guard.h"
#include "roofline_model/logging.h"
#include "roofline_model/roof_catalogue.h"
#include "roofline_model/unified/option_tables.h"

#include <algorithm>

namespace data_models2 {

using roofline::guarded;

namespace {

constinit const roofline::LogChannel kLog{"roofline_engine"};

// What the queries of a row's types answer while nothing is known of it.
constexpr int kUnknownOperationType = 2;
constexpr int kUnknownFloatType = 2;
constexpr int kUnknownIntType = 7;

// Deliberate: unlike the chart, roofs stand at mixed operations when nothing is said.
OperationsType roofOperationsOf(const std::string& configuration, const EngineCore::Options& options) {
    RooflineConfigurations configurations;
    if (!configurations.init(configuration, options) || configurations.empty()) return OperationsType::Mixed;
    const RooflineConfiguration& first = *configurations.begin();
    if (first.hasType("i")) return OperationsType::Int;
    return first.hasType("f") ? OperationsType::Float : OperationsType::Mixed;
}

}  // namespace

CRooflineEngine::CRooflineEngine() : CRooflineEngine(nullptr) {}

CRooflineEngine::CRooflineEngine(std::shared_ptr<ISurveyingViewModel> viewModel) : m_core(cpuAnalysis()) {
    setModel(std::move(viewModel));
    guarded([this] { rebuildOptions(); });  // a host that fails now may answer at the next load
}

// The slots use members, so the connections go before them.
CRooflineEngine::~CRooflineEngine() { disconnectAll(); }

void CRooflineEngine::setModel(std::shared_ptr<ISurveyingViewModel> viewModel) {
    disconnectAll();
    m_viewModel = std::move(viewModel);
    m_core.setViewModel(m_viewModel);
    if (!m_viewModel) return;
    m_viewModel->onSurveyResultLoaded().connect(
        *this, [this](IViewModelBase::LoadType type, const std::string& message) {
            onSurveyResultLoaded(type, message);
        });
}

void CRooflineEngine::rebuildOptions() {
    m_core.setOptions(initRooflineOptions(getMemoryLevelsCount(), m_core.metrics()));
}

void CRooflineEngine::onSurveyResultLoaded(IViewModelBase::LoadType type, const std::string&) {
    guarded([&] {
        m_core.dropMemoryMetrics();
        m_core.initMemoryMetrics();
        rebuildOptions();
        kLog.debug([&](std::ostream& out) {
            out << "load " << static_cast<int>(type) << ": "
                << (m_core.metrics() ? "metrics built" : "no data");
        });
    });
}

ThreadsInfo CRooflineEngine::getThreadsInfoStruct() const {
    if (!m_viewModel) return {};
    const int physical = m_viewModel->getPhysicalCoreCount();
    return {.physicalCoreCount = physical > 0 ? physical : m_viewModel->getLogicalCoreCount(),
            .processorPackageCount = std::max(1, m_viewModel->getPackageCount()),
            .usedNumberOfThreads = m_viewModel->getUsedThreadCount()};
}

int CRooflineEngine::getMemoryLevelsCount() const {
    return m_viewModel ? std::max(1, static_cast<int>(m_viewModel->getMemoryLevelNames().size())) : 1;
}

void CRooflineEngine::loadSummaryData(int kind, const std::function<void(const std::string&)>& callback) {
    if (kind != 0) callback(std::string());
}

std::string CRooflineEngine::getRooflineOptions() const {
    return guarded(std::string(),
                   [&] { return m_core.options() ? m_core.options()->toString() : std::string(); });
}

std::string CRooflineEngine::getRooflineData(sptr_t<IDataset> dataset, const std::string& configuration) {
    return getRooflineData(std::move(dataset), nullptr, configuration);
}

std::string CRooflineEngine::getRooflineData(sptr_t<IDataset> dataset, sptr_t<IDataset> secondDataset,
                                             const std::string& configuration) {
    return guarded(std::string(), [&] {
        return m_core.getRooflineData(dataset, secondDataset, configuration, getMemoryLevelsCount());
    });
}

void CRooflineEngine::getRoofsImp(rabbit::array& array, const std::string& configuration,
                                  const RoofThreadingFeatures& features, Perspective perspective) const {
    if (!m_viewModel) return;
    const auto operations = roofOperationsOf(configuration, m_core.options());
    const auto roofConfiguration = roof::getCpuRoofConfiguration(features, operations, perspective);
    if (const auto roofManager = m_core.getRoofManager())
        roofline::fillRoofs(array, roofManager->getRoofs(roofConfiguration), m_core.kind().device);
}

std::string CRooflineEngine::getRoofs(const std::string& configuration, const RoofThreadingFeatures& features,
                                      Perspective perspective) const {
    return guarded(std::string(), [&] {
        return rabbit::writeArray(
            [&](rabbit::array& root) { getRoofsImp(root, configuration, features, perspective); });
    });
}

std::string CRooflineEngine::getAllRoofs(const std::string& configuration) const {
    return guarded(std::string(), [&] {
        const auto fill = [&](rabbit::array& array, const RoofThreadingFeatures& features) {
            getRoofsImp(array, configuration, features, Perspective::Program);
        };
        return roofline::getAllRoofs(getThreadsInfoStruct(), fill);
    });
}

std::string CRooflineEngine::getThreadsInfo() const {
    return guarded(std::string(), [&] {
        const ThreadsInfo info = getThreadsInfoStruct();
        return rabbit::writeObject([&](rabbit::object& root) {
            root.set("physicalCoreCount", info.physicalCoreCount);
            root.set("processorPackageCount", info.processorPackageCount);
            root.set("usedNumberOfThreads", info.usedNumberOfThreads);
        });
    });
}

bool CRooflineEngine::clearHighlighting(DataType type) {
    return guarded(false, [&] { return m_viewModel && m_viewModel->clearHighlighting(type, 0); });
}

std::string CRooflineEngine::getRooflineConfigurationStr(const std::vector<std::string>& captions) const {
    return guarded(std::string(), [&] {
        return m_core.options() ? m_core.options()->getRooflineConfigurationStr(captions) : std::string();
    });
}

std::string CRooflineEngine::getSelectedRoofs(const std::string&, Perspective) const { return {}; }

std::string CRooflineEngine::getLoopAdditionalInfo(const std::string&, std::shared_ptr<IResultController>,
                                                   const std::string&) const {
    return {};
}

std::string CRooflineEngine::getComparisonData(const ComparisonData&, const std::string&,
                                               const std::string&) const {
    return {};
}

int CRooflineEngine::getDominatingOperationType(sptr_t<RowNode>) const { return kUnknownOperationType; }
int CRooflineEngine::getDominatingFloatType(sptr_t<RowNode>) const { return kUnknownFloatType; }
int CRooflineEngine::getDominatingIntType(sptr_t<RowNode>) const { return kUnknownIntType; }

}  // namespace data_models2
