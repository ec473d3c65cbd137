#include "roofline_model/roofline_engine.h"

#include "host_interfaces/comparison.h"
#include "host_interfaces/host_functions.h"

#include "roofline_model/bag_helpers.h"
#include "roofline_model/cpu_roof_choice.h"
#include "roofline_model/guard.h"
#include "roofline_model/logging.h"
#include "roofline_model/loop_details.h"
#include "roofline_model/roof_catalogue.h"
#include "roofline_model/threading.h"
#include "roofline_model/unified/option_tables.h"

#include <boost/property_tree/ptree.hpp>
namespace data_models2 {

using roofline::guarded;

namespace {

constinit const roofline::LogChannel kLog{"roofline_engine"};

// Deliberate: unlike the chart, roofs stand at mixed operations when nothing is said.
OperationsType roofOperationsOf(const std::string& configuration, const EngineCore::Options& options) {
    RooflineConfigurations configurations;
    if (!configurations.init(configuration, options) || configurations.empty()) return OperationsType::Mixed;
    const RooflineConfiguration& first = *configurations.begin();
    if (first.hasType("i")) return OperationsType::Int;
    return first.hasType("f") ? OperationsType::Float : OperationsType::Mixed;
}

// Own values hold under every type of operations and perspective.
std::string customRoofsKey(const RoofThreadingFeatures& features) {
    return roof::getCpuRoofConfiguration(features, OperationsType::Undefined,
                                         IRooflineInfo::Perspective::Program);
}

}  // namespace

CRooflineEngine::CRooflineEngine() : CRooflineEngine(nullptr) {}

CRooflineEngine::CRooflineEngine(std::shared_ptr<ISurveyingViewModel> viewModel)
    : m_core(cpuAnalysis()), m_dominance(std::make_unique<ProgramDominance>(m_core, changed)) {
    setModel(std::move(viewModel));
    guarded([this] { rebuildOptions(); });  // a host that fails now may answer at the next load
}

// The slots use members, so the connections go before them.
CRooflineEngine::~CRooflineEngine() {
    disconnectAll();
    m_dominance->disconnectAll();
}

void CRooflineEngine::setModel(std::shared_ptr<ISurveyingViewModel> viewModel) {
    disconnectAll();
    m_viewModel = std::move(viewModel);
    m_core.setViewModel(m_viewModel);
    m_dominance->setModel(m_viewModel);
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
        if (type == IViewModelBase::LoadType::Result) detectDominatingRoofsAsync();
        m_core.dropMemoryMetrics();
        m_core.initMemoryMetrics();
        rebuildOptions();
        kLog.debug([&](std::ostream& out) {
            out << "load " << static_cast<int>(type) << ": "
                << (m_core.metrics() ? "metrics built" : "no data");
        });
    });
}

ThreadsInfo CRooflineEngine::getThreadsInfoStruct() const { return roofline::getThreadsInfo(m_viewModel); }

int CRooflineEngine::getMemoryLevelsCount() const { return roofline::getMemoryLevelsCount(m_viewModel); }

void CRooflineEngine::loadSummaryData(int kind, const std::function<void(const std::string&)>& callback) {
    if (kind != 0) return callback(std::string());
    guarded([&] { m_dominance->loadSummaryData(callback); });
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

std::string CRooflineEngine::getSelectedRoofs(const std::string& configuration,
                                              Perspective perspective) const {
    return guarded(std::string(), [&]() -> std::string {
        if (!m_viewModel) return {};
        roofline::RoofIds selected;
        roofline::fillSelectedMemoryRoofs(selected, configuration, m_core.options(), getMemoryLevelsCount(),
                                          perspective);
        const auto& dominating = m_dominance->dominatingRoofs();
        if (dominating.empty()) detectDominatingRoofsAsync();  // may run inside the call
        if (!dominating.empty()) {
            const auto& roofs = dominating.at(perspective);
            selected.insert(roofs.begin(), roofs.end());
        }
        const auto roofManager = m_core.getRoofManager();
        if (!roofManager) return {};
        const auto roofs = roofManager->getRoofs(std::string());
        return roofline::createSelectedRoofsJson(selected, roofline::getCpuHiddenRoofs(roofs, perspective),
                                                 roofs);
    });
}

bool CRooflineEngine::setCustomRoofValues(RoofId roof, unsigned long long value,
                                          const RoofThreadingFeatures& features) {
    return guarded(false, [&] {
        const auto roofManager = m_viewModel ? m_core.getRoofManager() : nullptr;
        return roofManager && roofManager->setCustomRoofValues({{roof, value}}, customRoofsKey(features));
    });
}

bool CRooflineEngine::clearCustomRoofValues(const RoofThreadingFeatures& features) {
    return guarded(false, [&] {
        const auto roofManager = m_viewModel ? m_core.getRoofManager() : nullptr;
        return roofManager && roofManager->clearCustomRoofValues(customRoofsKey(features));
    });
}

std::string CRooflineEngine::getLoopAdditionalInfo(const std::string& request,
                                                   std::shared_ptr<IResultController>,
                                                   const std::string& configuration) const {
    return guarded(std::string(), [&] {
        return LoopDetails(m_core, m_viewModel, getMemoryLevelsCount())
            .getLoopAdditionalInfo(request, configuration);
    });
}

// `ids` is a bag with the object ids "first" and "second".
std::string CRooflineEngine::getComparisonData(const ComparisonData& data, const std::string& ids,
                                               const std::string& configuration) const {
    return guarded(std::string(), [&]() -> std::string {
        variant_bag_t bag;
        if (!m_core.options() || !loadBag(ids, bag)) return {};
        const auto side = [&](const std::string& name,
                              const std::shared_ptr<ISurveyingViewModel>& viewModel) {
            const auto id = bag.find(name);
            const auto objectId = id == bag.not_found() ? std::string() : toText(id->second.data());
            return VBagAttr<variant_bag_t>{
                name, LoopDetails(m_core, viewModel, roofline::getMemoryLevelsCount(viewModel))
                          .getObjectBag(objectId, configuration)};
        };
        variant_bag_t result;
        VBagHelper::addAttribute(result, VBagAttr<std::string>{"conf", configuration});
        VBagHelper::addAttribute(result, side("first", data.first));
        VBagHelper::addAttribute(result, side("second", data.second));
        return saveBag(result);
    });
}

int CRooflineEngine::getDominatingOperationType(sptr_t<RowNode> row) const {
    return guarded(DominatingTypeHelper::kUnknownOperationType,
                   [&]() -> int { return makeTypeHelper().getDominatingOperationType(row); });
}

int CRooflineEngine::getDominatingFloatType(sptr_t<RowNode> row) const {
    return guarded(DominatingTypeHelper::kUnknownFloatType,
                   [&] { return makeTypeHelper().getDominatingFloatType(row); });
}

int CRooflineEngine::getDominatingIntType(sptr_t<RowNode> row) const {
    return guarded(DominatingTypeHelper::kUnknownIntType,
                   [&] { return makeTypeHelper().getDominatingIntType(row); });
}

DominatingTypeHelper CRooflineEngine::makeTypeHelper() const {
    return DominatingTypeHelper(m_viewModel ? m_viewModel->getDataset(m_core.kind().rows) : nullptr);
}

}  // namespace data_models2
