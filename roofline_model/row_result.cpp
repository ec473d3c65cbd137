#include "roofline_model/row_result.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/guard.h"
#include "roofline_model/json_dumps.h"
#include "roofline_model/roofline_summary.h"
#include "roofline_model/row_data_access.h"
#include "roofline_model/selected_roofs.h"
#include "roofline_model/translation.h"

#include <algorithm>

namespace data_models2 {

namespace {

using roofline::translate;
using roofline::helpers::BottleneckWidget;
using roofline::helpers::logHeight;
using roofline::helpers::logPosition;
using roofline::helpers::MemoryMetricWidget;
using roofline::helpers::RooflineWidget;
using roofline::helpers::wholePercent;

template <class Widget>
void addExplanation(Widget& widget, const char* lead, const CRowRooflineEngine& engine) {
    widget.addExpl(lead, engine.dataset()->getDataType(), !engine.areTotalMetricsAvailable(),
                   engine.getPoint().operationsType);
}

// A message alone in the place of a bottleneck.
variant_bag_t messageBag(const char* id) {
    BottleneckWidget widget;
    widget.addMessage(translate(id));
    return widget.get();
}

// The roofs of the row's small chart; selected are the one that limits it and its compute roof.
void fillState(rabbit::object& state, const CRowRooflineEngine& engine) {
    if (!engine.isValid()) return;
    const RoofItem compute = engine.getComputeRoof(OperationsType::Undefined);
    std::vector<RoofItem> roofs = engine.getMemoryRoofs();
    roofs.insert(roofs.begin(), compute);
    roofline::fillRoofsState(state, {engine.getLimitingRoof(true).id, compute.id}, {},
                             makeIterator(std::move(roofs)));
}

}  // namespace

namespace roofline::helpers {

std::optional<RooflineWidget> makeRooflineWidget(const CRowRooflineEngine& engine) {
    const RooflinePoint point = engine.getPoint();
    if (!engine.isValid()) return {};
    const RoofItem compute = engine.getComputeRoof(point.operationsType);
    if (compute.id == RoofId::None) return {};

    const bool isVectorized =
        checkData<long long>(FieldId::Vectorized, 0, engine.row(), engine.dataset()) != 0;
    const auto name = checkData<std::string>(FieldId::FunctionName, {}, engine.row(), engine.dataset());
    RooflineWidget widget;
    addExplanation(widget, "roofline_single_widget_expl", engine);
    widget.setRoofs({compute}, engine.getMemoryRoofs());
    widget.setOperationsType(point.operationsType);
    widget.setLimitingRoof(engine.getLimitingRoof(true).name);
    if (!engine.areMemLevelMetricsAvailable()) {
        widget.addFunctionInstance(point.ai, point.performance, isVectorized, name);
        return widget;
    }
    for (const auto& levelPoint : engine.getMemLevelPoints())
        widget.addFunctionInstance(levelPoint, isVectorized, name);
    if (const auto bottleneck = engine.getBottleneck()) widget.setBottleneck(bottleneck->get());
    return widget;
}

std::optional<MemoryMetricWidget> makeMemoryMetricWidget(const CRowRooflineEngine& engine) {
    // Every point of a level has a share of the traffic: without shares there is no table at all.
    const auto shares = engine.getMemoryValues(RooflineMemoryValuesType::Traffic);
    if (!engine.isValid() || shares.empty()) return {};
    static const auto impactCaption = translate("roofline_memory_impact_caption");
    static const auto impactExplanation = translate("roofline_memory_impact_expl");
    static const auto impactMeasure = translate("roofline_percent_measure");
    static const auto sharesCaption = translate("roofline_memory_shares_caption");
    static const auto sharesExplanation = translate("roofline_memory_shares_expl");
    static const auto sharesMeasure = translate("roofline_memory_share_measure");

    MemoryMetricWidget widget;
    addExplanation(widget, "roofline_memory_expl", engine);
    widget.addMetric(engine.getMemoryValues(RooflineMemoryValuesType::Time), impactCaption, impactMeasure,
                     impactExplanation);
    widget.addMetric(shares, sharesCaption, sharesMeasure, sharesExplanation);
    return widget;
}

}  // namespace roofline::helpers

variant_bag_t CRowRooflineEngine::getRooflineVariantBag() const {
    return roofline::guarded(variant_bag_t(), [this] {
        const auto widget = roofline::helpers::makeRooflineWidget(*this);
        return widget ? widget->get() : variant_bag_t();
    });
}

variant_bag_t CRowRooflineEngine::getMemoryMetricsVariantBag() const {
    return roofline::guarded(variant_bag_t(), [this] {
        const auto widget = roofline::helpers::makeMemoryMetricWidget(*this);
        return widget ? widget->get() : variant_bag_t();
    });
}

// A limiting roof of value 0 is no roof but a bound that the strategy has put in its place.
std::shared_ptr<BottleneckWidget> CRowRooflineEngine::getBottleneck() const {
    return roofline::guarded(nullptr, [this]() -> std::shared_ptr<BottleneckWidget> {
        auto widget = std::make_shared<BottleneckWidget>();
        const LimitingRoof& roof = m_memLimitingRoof;
        const auto point =
            std::find_if(m_memLevelPoints.begin(), m_memLevelPoints.end(),
                         [&roof](const RooflinePoint& p) { return p.limitingRoofId == roof.id; });
        // Without a bound every point matches its id 0: the name tells.
        if (point == m_memLevelPoints.end() || roof.name.empty()) {
            widget->addMessage(translate("roofline_bottleneck_general_error"));
            return widget;
        }
        const double x = logPosition(point->ai);
        const double y = logPosition(point->performance);
        if (roof.value != 0) {
            constexpr int kPercent = 0;
            widget->addLoopWithLimitingRoof(x, y, roof.name, logHeight(roof), logPosition(roof.limitValue),
                                            wholePercent(point->performance, roof.limitValue), kPercent);
            return widget;
        }
        const std::string factor = translate(roof.name);
        widget->addLoopWithLimitingFactor(x, y, factor);
        widget->addMessage(translate("roofline_bottleneck_performance_analysis_bounded_by", factor));
        return widget;
    });
}

variant_bag_t CRowRooflineEngine::getBotteleneckVariantBag(std::vector<std::string> messages) const {
    return roofline::guarded(variant_bag_t(), [&] {
        if (m_helper && !m_helper->isValid(m_totalMetricsAvailable))
            return messageBag("roofline_bottleneck_no_stacks_error");
        const auto widget = isValid() ? getBottleneck() : nullptr;
        if (!widget) return messageBag("roofline_bottleneck_general_error");
        for (const auto& message : messages) widget->addMessage(message);
        return widget->get();
    });
}

std::string CRowRooflineEngine::getRooflineData() const {
    const auto self = weak_from_this().lock();
    if (!self) return {};
    return roofline::guarded(std::string(), [&] {
        return rabbit::writeObject([&](rabbit::object& root) {
            const auto addMember = [&root](const char* key, auto&& fill) {
                rabbit::object member(root.allocator());
                fill(member);
                root.append(key, std::move(member));
            };
            namespace json_dump = roofline::json_dump;
            addMember("rooflineGuidance", [&](auto& o) { json_dump::dumpSingleRoofline(o, self); });
            addMember("memoryMetrics", [&](auto& o) { json_dump::dumpMemoryMetrics(o, self); });
            addMember("opsAndBandwidth", [&](auto& o) {
                roofline::summary::dumpRowOpsAndBandwidthSummary(o, self, m_dataset, m_row);
                if (m_helper) m_helper->dumpInstructionMixSummary(o);
            });
            json_dump::dumpRooflineConclusions(root, self);
            root.append("useZoneColoring", areMemLevelMetricsAvailable());
            addMember("rooflineState", [&](auto& o) { fillState(o, *self); });
        });
    });
}

}  // namespace data_models2
