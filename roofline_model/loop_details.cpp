#include "roofline_model/loop_details.h"

#include "host_interfaces/comparison.h"
#include "host_interfaces/host_functions.h"

#include "roofline_model/bag_helpers.h"
#include "roofline_model/chart_widgets.h"
#include "roofline_model/roof_names.h"
#include "roofline_model/row_roofline_engine.h"
#include "roofline_model/threading.h"
#include "roofline_model/translation.h"
#include "roofline_model/unified/row_walk.h"

#include <boost/property_tree/ptree.hpp>

#include <set>

namespace data_models2 {

namespace {

constexpr auto kItem = "item";

// The ids of a list: "item" children, or the items of an "item" that is a list itself.
void collectIds(const variant_bag_t& list, std::set<std::string>& ids) {
    for (const auto& [name, child] : list) {
        if (name != kItem) continue;
        if (child.empty())
            ids.insert(toText(child.data()));
        else
            collectIds(child, ids);
    }
}

// Whether the row has a point and roofs, but no memory roof stands above its point, or none above the point
// of its own level.
bool isAboveAllRoofs(const CRowRooflineEngine& engine) {
    const RooflinePoint point = engine.getPoint();
    return point.ai > 0.0 && !engine.getMemoryRoofs().empty() &&
           engine.getComputeRoof(point.operationsType).id != RoofId::None &&
           (engine.getLimitingRoof(true).name.empty() ||
            (!engine.getMemLevelPoints().empty() && engine.getLimitingRoof(false).name.empty()));
}

variant_bag_t messageBag(const std::string& messageId) {
    roofline::helpers::BottleneckWidget widget;
    widget.addMessage(roofline::translate(messageId));
    return widget.get();
}

// Without memory levels the row engine has no bottleneck to draw: the total point and its roof stand in.
variant_bag_t drawTotalLimit(const CRowRooflineEngine& engine, const std::vector<std::string>& messages) {
    using namespace roofline::helpers;
    constexpr int kPercent = 0;
    const RooflinePoint point = engine.getPoint();
    const LimitingRoof roof = engine.getLimitingRoof(true);
    BottleneckWidget widget;
    widget.addLoopWithLimitingRoof(logPosition(point.ai), logPosition(point.performance), roof.name,
                                   logHeight(roof), logPosition(roof.limitValue),
                                   wholePercent(point.performance, roof.limitValue), kPercent);
    for (const auto& message : messages) widget.addMessage(message);
    return widget.get();
}

}  // namespace

bool roofline::helpers::parseLoopAdditionalInfoRequest(const std::string& request, variant_bag_t& bag) {
    return loadBag(request, bag);
}

LoopDetails::LoopDetails(const EngineCore& core, const std::shared_ptr<ISurveyingViewModel>& measured)
    : LoopDetails(core,
                  {measured, roofline::getThreadsInfo(measured), roofline::getMemoryLevelsCount(measured)}) {}

bool LoopDetails::initDataForLoopAdditionalInfo(
    const variant_bag_t& bag, const std::string& configuration,
    const std::shared_ptr<LoopAdditionalInfoParams>& params) const {
    if (!params || !params->configurations.init(configuration, m_core.options()) || !m_source.viewModel)
        return false;
    if (params->configurations.empty()) return false;
    params->dataset = EngineCore::chooseDataset(m_core.kind(), *m_source.viewModel, params->configurations,
                                                nullptr, nullptr);
    if (!params->dataset) return false;
    params->features = m_core.kind().features(bag, m_source.threads);
    params->roofManager = m_source.viewModel->getRoofManager(params->dataset->getDataType());
    return params->roofManager != nullptr;
}

std::string LoopDetails::getLoopAdditionalInfo(const std::string& request,
                                               const std::string& configuration) const {
    variant_bag_t bag;
    const auto params = std::make_shared<LoopAdditionalInfoParams>();
    if (!roofline::helpers::parseLoopAdditionalInfoRequest(request, bag) ||
        !initDataForLoopAdditionalInfo(bag, configuration, params))
        return {};
    std::set<std::string> ids;
    collectIds(bag, ids);
    variant_bag_t result;
    VBagHelper::addAttribute(result, VBagAttr<std::string>{"arrayOf", kItem});
    const auto addRow = [&](const sptr_t<IDataset>&, const sptr_t<RowNode>& row, int) {
        const auto id = roofline::helpers::getLoopId(row);
        if (ids.contains(id)) result.push_back({kItem, getLoopAdditionalInfoBag(id, row, *params)});
        return 0;
    };
    forEachDatasetRows4Loops(params->dataset, addRow, {});
    return saveBag(result);
}

std::string LoopDetails::getComparisonData(const EngineCore& core, const ComparisonData& data,
                                           const std::string& ids, const std::string& configuration) {
    variant_bag_t bag;
    if (!core.options() || !loadBag(ids, bag)) return {};
    const auto side = [&](const std::string& name, const std::shared_ptr<ISurveyingViewModel>& viewModel) {
        const auto id = bag.find(name);
        const auto objectId = id == bag.not_found() ? std::string() : toText(id->second.data());
        return VBagAttr<variant_bag_t>{name,
                                       LoopDetails(core, viewModel).getObjectBag(objectId, configuration)};
    };
    variant_bag_t result;
    VBagHelper::addAttribute(result, VBagAttr<std::string>{"conf", configuration});
    VBagHelper::addAttribute(result, side("first", data.first));
    VBagHelper::addAttribute(result, side("second", data.second));
    return saveBag(result);
}

variant_bag_t LoopDetails::getLoopAdditionalInfoBag(const std::string& id, const sptr_t<RowNode>& row,
                                                    const LoopAdditionalInfoParams& params) const {
    const DetailedRow detailed =
        m_core.kind().detailedRow({row, params.dataset, m_source.viewModel, params.roofManager,
                                   params.features, m_source.memoryLevels});
    const auto& engine = detailed.engine;
    variant_bag_t result;
    const auto add = [&](const char* name, const variant_bag_t& bag) {
        VBagHelper::addAttribute(result, VBagAttr<variant_bag_t>{name, bag});
    };
    VBagHelper::addAttribute(result, VBagAttr<std::string>{"id", id});
    if (detailed.threads) add("roofline", engine->getRooflineVariantBag());
    add("bottleneck", getBottleneck(params.configurations, detailed));
    add("memoryMetrics", engine ? engine->getMemoryMetricsVariantBag() : variant_bag_t());
    if (detailed.threads) add("threads", getThreads(*detailed.threads));
    return result;
}

variant_bag_t LoopDetails::getObjectBag(const std::string& objectId, const std::string& configuration) const {
    const auto params = std::make_shared<LoopAdditionalInfoParams>();
    variant_bag_t result;
    if (!initDataForLoopAdditionalInfo({}, configuration, params)) return result;
    bool found = false;
    const auto look = [&](const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row, int) {
        if (roofline::getObjectId(row, dataset) != objectId) return 0;
        result = getLoopAdditionalInfoBag(roofline::helpers::getLoopId(row), row, *params);
        found = true;
        return -1;
    };
    const auto stillLooking = [&](const sptr_t<IDataset>&, const sptr_t<RowNode>&) { return !found; };
    forEachDatasetRows4Loops(params->dataset, look, stillLooking);
    return result;
}

variant_bag_t LoopDetails::getBottleneck(const RooflineConfigurations& configurations,
                                         const DetailedRow& row) const {
    const auto& engine = row.engine;
    if (!engine) return messageBag("roofline_bottleneck_general_error");
    if (!row.isAcceptable || configurations.empty()) return engine->getBotteleneckVariantBag({});
    if (isAboveAllRoofs(*engine)) return messageBag("roofline_bottleneck_above_roofs");
    const auto messages = describeLimit(*configurations.begin(), *engine);
    const bool hasOnlyTotal = engine->isValid() && !engine->areMemLevelMetricsAvailable();
    return hasOnlyTotal ? drawTotalLimit(*engine, messages) : engine->getBotteleneckVariantBag(messages);
}

std::vector<std::string> LoopDetails::describeLimit(const RooflineConfiguration& configuration,
                                                    const CRowRooflineEngine& engine) const {
    using roofline::getRooflineTypeFromOpsType;
    using roofline::translate;
    const auto type = getRooflineTypeFromOpsType(engine.getPoint().operationsType);
    if (configuration.hasType(type) ||
        configuration.hasType(getRooflineTypeFromOpsType(OperationsType::Mixed)))
        return describeLimit(engine);
    return {translate("roofline_bottleneck_wrong_configuration_general"),
            translate("roofline_bottleneck_wrong_configuration_details",
                      translate("roofline_options_operations_caption"),
                      m_core.options()->getOptionCaption(type))};
}

std::vector<std::string> LoopDetails::describeLimit(const CRowRooflineEngine& engine) const {
    const LimitingRoof roof = engine.getLimitingRoof(!engine.areMemLevelMetricsAvailable());
    if (roof.boundCategory == BoundCategory::Other) return {};  // the row itself tells of it
    if (roof.boundCategory == BoundCategory::Compute)
        return {roofline::translate(
            "roofline_bottleneck_bound_by_compute", roof.name,
            roofline::helpers::wholePercent(engine.getPoint().performance, roof.limitValue))};
    const auto level = roofline::helpers::getTrafficLevelName(roof.memoryLevel, m_core.kind().device);
    const auto caption = m_core.options()->getOptionCaption(level);
    return {roofline::translate("roofline_bottleneck_bound_by_memory", roof.name,
                                caption.empty() ? roofline::helpers::getMemLevelCaption(level) : caption)};
}

variant_bag_t LoopDetails::getThreads(const RoofThreadingFeatures& features) const {
    const ThreadsInfo& info = m_source.threads;
    variant_bag_t result;
    const auto add = [&](const char* name, int value) {
        VBagHelper::addAttribute(result, VBagAttr<int>{name, value});
    };
    add("physicalCoreCount", info.physicalCoreCount);
    add("processorPackageCount", info.processorPackageCount);
    add("usedNumberOfThreads", info.usedNumberOfThreads);
    add("threadCount", features.threadCount);
    add("packageCount", features.packageCount);
    add("useSTRoofsStrategy", features.strategy == RoofThreadingFeatures::Strategy::SingleThread);
    return result;
}

}  // namespace data_models2
