#include "roofline_model/chart_widgets.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/bag_helpers.h"
#include "roofline_model/translation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace data_models2::roofline::helpers {

namespace {

template <class T>
void add(variant_bag_t& bag, const char* key, const T& value) {
    VBagHelper::addAttribute(bag, VBagAttr<T>{key, value});
}

// A bag that stands for an array; "arrayOf" tells a reader the name of its children.
template <class Records, class ToBag>
variant_bag_t makeList(const Records& records, ToBag&& toBag) {
    variant_bag_t list;
    add(list, "arrayOf", std::string("item"));
    for (const auto& record : records) list.push_back({"item", toBag(record)});
    return list;
}

variant_bag_t textBag(const std::string& text) { return variant_bag_t(variant_t(text)); }

variant_bag_t toBag(const ChartLoop& loop) {
    variant_bag_t bag;
    add(bag, "name", loop.name);
    add(bag, "x", loop.x);
    add(bag, "y", loop.y);
    if (!loop.level) return bag;
    variant_bag_t transferred;
    add(transferred, "val", loop.level->traffic);
    add(transferred, "measure", translate("roofline_memory_gb"));
    add(bag, kTransferredKey, transferred);
    variant_bag_t attributes;
    add(attributes, kLevelPrefixKey, loop.level->caption);
    add(bag, "attrs", attributes);
    return bag;
}

variant_bag_t toBag(const ChartRoof& roof) {
    variant_bag_t bag;
    add(bag, "name", roof.name);
    add(bag, "isMem", roof.isMemory);
    add(bag, "measure", roof.measure);
    add(bag, "val", roof.height);
    return bag;
}

variant_bag_t toBag(const MemoryMetric& metric) {
    variant_bag_t bag;
    add(bag, "caption", metric.caption);
    add(bag, "measure", metric.measure);
    add(bag, "explanation", metric.explanation);
    add(bag, "metrics", makeList(metric.entries, [](const MemoryMetric::Entry& entry) {
            variant_bag_t item;
            add(item, "label", entry.label);
            add(item, "val", entry.value);
            add(item, "caption", entry.caption);
            return item;
        }));
    return bag;
}

variant_bag_t toBag(const BottleneckLoop& loop) {
    variant_bag_t bag;
    add(bag, "name", loop.name);
    add(bag, "x", loop.x);
    add(bag, "y", loop.y);
    if (loop.limit) add(bag, "crossingY", loop.limit->crossingY);
    variant_bag_t roof;
    add(roof, "name", loop.name);
    add(roof, "val", loop.roofHeight);
    add(bag, "roof", roof);
    if (!loop.limit) return bag;
    variant_bag_t utilization;
    add(utilization, "name", translate("roofline_memory_utilization_caption"));
    add(utilization, "val", loop.limit->utilization);
    add(utilization, "measure", loop.limit->measure);
    add(bag, "utilization", utilization);
    return bag;
}

constexpr auto kRecordToBag = [](const auto& record) { return toBag(record); };

// A level's token, made like the prefix of a chart's level and cut behind it.
std::string levelCaption(const std::string& token) {
    std::string caption = getMemoryLevelCaption({token});
    if (caption.size() > 1) caption.pop_back();
    return caption;
}

std::string operationsCaption(OperationsType type) {
    switch (type) {
        case OperationsType::Float:
            return translate("roofline_options_operation_float");
        case OperationsType::Int:
            return translate("roofline_options_operation_int");
        case OperationsType::Mixed:
            return translate("roofline_options_operation_int_float");
        default:
            return {};
    }
}

}  // namespace

double logPosition(double value) { return value > 0.0 ? std::log10(value) : 0.0; }

double logHeight(const RoofItem& roof) {
    constexpr double kLogGiga = 9.0;
    return roof.value == 0 ? 0.0 : std::log10(static_cast<double>(roof.value)) - kLogGiga;
}

int wholePercent(double part, double whole) {
    const double percent = whole > 0.0 ? part / whole * 100.0 : 0.0;
    if (std::isnan(percent)) return 0;
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(
        std::clamp(percent, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

std::string getMeasureText(int measureKind) {
    constexpr int kPercent = 0;
    return measureKind == kPercent ? translate("roofline_percent_measure") : std::string();
}

void BaseRooflineWidget::addExpl(const std::string& level, DataType dataType, bool isSelf,
                                 OperationsType operations) {
    m_explanation.push_back(translate(level));
    m_explanation.push_back(translate("roofline_widget_expl"));
    m_explanation.push_back(translate(isSelf ? "roofline_memory_self_expl" : "roofline_memory_total_expl"));
    if (dataType == DataType::CpuTopDown)
        m_explanation.push_back(translate("roofline_memory_topdown_expl"));
    else if (dataType == DataType::Cpu)
        m_explanation.push_back(translate("roofline_memory_bottomup_expl"));
    if (auto caption = operationsCaption(operations); !caption.empty())
        m_explanation.push_back(translate("roofline_memory_dominating_type_expl", caption));
}

variant_bag_t BaseRooflineWidget::get() const {
    variant_bag_t bag;
    if (!m_explanation.empty()) add(bag, "explanation", makeList(m_explanation, textBag));
    return bag;
}

void RooflineWidget::addFunctionInstance(double intensity, double performance, bool /*isVectorized*/,
                                         const std::string& name) {
    m_loops.push_back({name, logPosition(intensity), logPosition(performance)});
}

void RooflineWidget::addFunctionInstance(const RooflinePoint& point, bool isVectorized,
                                         const std::string& name) {
    addFunctionInstance(point.ai, point.performance, isVectorized, name);
    const auto token = roofline_helpers::getMemoryRooflineType(point.memoryLevel, TargetDeviceType::Cpu);
    m_loops.back().level = ChartLoop::Level{point.traffic, getMemLevelCaption(token)};
}

void RooflineWidget::setRoofs(const std::vector<RoofItem>& computeRoofs,
                              const std::vector<RoofItem>& memoryRoofs) {
    m_roofs = computeRoofs;
    m_roofs.insert(m_roofs.end(), memoryRoofs.begin(), memoryRoofs.end());
}

ChartAxes RooflineWidget::axes() const {
    static const std::map<OperationsType, ChartAxes> kAxes{
        {OperationsType::Float,
         {getRoofAxesTranslated(FieldId::SelfFloatAi), getRoofAxesTranslated(FieldId::SelfGFlops)}},
        {OperationsType::Int,
         {getRoofAxesTranslated(FieldId::SelfIntAi), getRoofAxesTranslated(FieldId::SelfGIntOps)}},
        {OperationsType::Mixed,
         {getRoofAxesTranslated(FieldId::SelfMixedAi), getRoofAxesTranslated(FieldId::SelfGMixedOps)}},
    };
    const auto found = kAxes.find(m_operationsType);
    return found == kAxes.end() ? ChartAxes() : found->second;
}

std::vector<ChartRoof> RooflineWidget::roofs() const {
    std::vector<ChartRoof> result;
    for (const auto& roof : m_roofs) {
        const bool isMemory = roof::hasType(roof, RoofItem::Memory);
        result.push_back(
            {roof.name, isMemory, getRoofMeasureTranslated(isMemory, m_operationsType), logHeight(roof)});
    }
    return result;
}

variant_bag_t RooflineWidget::get() const {
    const auto [x, y] = axes();
    variant_bag_t outer = BaseRooflineWidget::get();
    variant_bag_t data;
    add(data, "name", std::string("roofline"));
    add(data, "limitingRoof", m_limitingRoof);
    add(data, "nameX", x.caption);
    add(data, "measureX", x.measure);
    add(data, "nameY", y.caption);
    add(data, "measureY", y.measure);
    add(data, "loops", makeList(m_loops, kRecordToBag));
    add(data, "roofs", makeList(roofs(), kRecordToBag));
    add(data, "bottleneck", m_bottleneck);
    for (const auto& member : outer) data.push_back(member);
    add(outer, "data", data);
    return outer;
}

void MemoryMetricWidget::addMetric(const std::vector<MemoryValue>& values, const std::string& caption,
                                   const std::string& measure, const std::string& explanation) {
    MemoryMetric metric{caption, measure, explanation, {}};
    for (const auto& value : values)
        metric.entries.push_back(
            {getMemLevelCaption(value.caption), value.value, levelCaption(value.caption)});
    m_metrics.push_back(std::move(metric));
}

variant_bag_t MemoryMetricWidget::get() const {
    variant_bag_t bag = BaseRooflineWidget::get();
    add(bag, "metrics", makeList(m_metrics, kRecordToBag));
    return bag;
}

void BottleneckWidget::addLoopWithLimitingRoof(double x, double y, const std::string& name, double roofHeight,
                                               double crossingY, double utilization, int measureKind) {
    m_loops.push_back(
        {name, x, y, roofHeight, BottleneckLoop::Limit{crossingY, utilization, getMeasureText(measureKind)}});
}

void BottleneckWidget::addLoopWithLimitingFactor(double x, double y, const std::string& name) {
    m_loops.push_back({name, x, y});
}

variant_bag_t BottleneckWidget::get() const {
    variant_bag_t bag = BaseRooflineWidget::get();
    add(bag, "loop", makeList(m_loops, kRecordToBag));
    add(bag, "messages", makeList(m_messages, textBag));
    return bag;
}

}  // namespace data_models2::roofline::helpers
