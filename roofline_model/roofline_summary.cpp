#include "roofline_model/roofline_summary.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/chart_widgets.h"
#include "roofline_model/row_data_access.h"
#include "roofline_model/translation.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <locale>
#include <utility>

namespace data_models2::roofline::summary {

namespace {

using namespace helpers;

constexpr auto kUnit = "roofline_model/roofline_summary";
constexpr double kGiga = 1e9;

// Keys and texts of the metrics of one type of operations.
struct ComputeTexts {
    const char* key;
    const char* unit;
    const char* description;
    const char* countKey;
    const char* countCaption;
    const char* countDescription;
};
constexpr ComputeTexts kFloatTexts{
    "performanceFloat", "roofline_summary_gflops",      "roofline_summary_gflops_descr",
    "opFloat",          "roofline_summary_gflop_count", "roofline_summary_gflop_count_descr"};
constexpr ComputeTexts kIntTexts{
    "performanceInt", "roofline_summary_gintops",      "roofline_summary_gintops_descr",
    "opInt",          "roofline_summary_gintop_count", "roofline_summary_gintop_count_descr"};

std::string formatted(double value) { return double2str(value, "", 2, 0.001); }

double perSecond(double amount, double elapsedTime) {
    if (elapsedTime > 0.0) return amount / elapsedTime;
    reportAssertion("elapsedTime > 0.", kUnit, __LINE__);
    return 0.0;
}

OpsAndBandMetric makeMetric(const char* key, std::string caption, const std::string& descriptionId,
                            double value, bool isDominatingOps) {
    OpsAndBandMetric metric;
    metric.key = key;
    metric.caption = std::move(caption);
    metric.description = translate(descriptionId);
    metric.value = value;
    metric.isDominatingOps = isDominatingOps;
    return metric;
}

void setRoof(OpsAndBandMetric& metric, const RoofItem& roof) {
    metric.roofId = fmt::to_string(static_cast<int>(roof.id));
    metric.roofName = getRoofShortName(roof.name);
}

OpsAndBandMetric makeIntensity(const char* key, std::string id, double value, bool isRow,
                               bool isDominatingOps) {
    if (isRow) id += "_row";
    return makeMetric(key, translate(id), id + "_descr", value, isDominatingOps);
}

rabbit::object makeRoofEntry(const RoofItem& roof, double reached, TargetDeviceType device,
                             rabbit::Allocator& allocator) {
    const double peak = static_cast<double>(roof.value) / kGiga;
    json_dump::DumpMetricInfo info;
    info.key = getRoofShortName(roof.name);
    info.caption = roof.name;
    info.measure =
        getRoofMeasureTranslated(roof::hasType(roof, RoofItem::Memory), roof::getOperationsType(roof));
    info.description = getRoofDescription(roof.name, device);
    info.details = translate("roofline_summary_roof_descr", int2str(wholePercent(reached, peak)));
    rabbit::object entry(allocator);
    json_dump::dumpMetricInfo(entry, info);
    entry.append("value", peak);
    entry.append("formattedValue", formatted(peak));
    return entry;
}

// What a row's time and operations are and where it ran, by the kind of its dataset.
struct RowSource {
    DataType type;
    FieldId elapsedTime;
    TargetDeviceType device;
    FieldId floatOps = FieldId::SelfFloatOps;
    FieldId intOps = FieldId::SelfIntOps;
};

constexpr auto kRowSources = std::to_array<RowSource>({
    {DataType::Cpu, FieldId::SelfElapsedTime, TargetDeviceType::Cpu},
    {DataType::CpuTopDown, FieldId::SelfElapsedTime, TargetDeviceType::Cpu},
    {DataType::Gpu, FieldId::GpuElapsedTime, TargetDeviceType::Gpu},
    {DataType::Offload, FieldId::OffloadElapsedTime, TargetDeviceType::Gpu, FieldId::TotalFloatOps,
     FieldId::TotalIntOps},
});

const RowSource& sourceOf(DataType type) {
    const auto found = std::find_if(kRowSources.begin(), kRowSources.end(),
                                    [type](const RowSource& source) { return source.type == type; });
    return found == kRowSources.end() ? kRowSources.front() : *found;
}

std::vector<SummaryItem> makeRowItems(const CRowRooflineEngine& engine, const sptr_t<IDataset>& dataset,
                                      const sptr_t<RowNode>& row) {
    const auto read = [&](FieldId field) { return checkData<double>(field, 0.0, row, dataset); };
    const RowSource& source = sourceOf(dataset->getDataType());
    const double elapsedTime = read(source.elapsedTime);
    if (!(elapsedTime > 0.0)) return {};

    const OperationsType dominating = engine.getPoint().operationsType;
    const double floatOps = read(source.floatOps);
    const double intOps = read(source.intOps);
    std::vector<SummaryItem> items;
    const RoofItem memory = engine.getLimitingRoof(false);
    const auto points = engine.getMemLevelPoints();
    const auto point = std::find_if(points.begin(), points.end(), [&](const RooflinePoint& p) {
        return p.memoryLevel == memory.memoryLevel && p.traffic > 0.0;
    });
    if (roof::hasType(memory, RoofItem::Memory) && point != points.end())
        items.push_back(
            {memory, getMetricForMemoryRoof(memory, elapsedTime, point->traffic, floatOps / point->traffic,
                                            intOps / point->traffic, getLevelName(memory, source.device),
                                            dominating, true)});
    const auto addCompute = [&](OperationsType operations, double count) {
        const RoofItem compute = engine.getComputeRoof(operations);
        if (count > 0.0 && compute.id != RoofId::None)
            items.push_back({compute, getMetricForComputeRoof(compute, elapsedTime, count, dominating)});
    };
    addCompute(OperationsType::Float, floatOps);
    addCompute(OperationsType::Int, intOps);
    return items;
}

}  // namespace

std::string getLevelName(const RoofItem& roof, TargetDeviceType device) {
    const auto name = roofline_helpers::getMemoryRooflineType(roof.memoryLevel, device);
    return name.empty() ? getCoreLevelName(device) : name;
}

OpsAndBandMetric getMetricForComputeRoof(const RoofItem& roof, double elapsedTime, double opCount,
                                         OperationsType dominatingType) {
    const OperationsType type = roof::getOperationsType(roof);
    const ComputeTexts& texts = type == OperationsType::Int ? kIntTexts : kFloatTexts;
    const bool dominates = type == dominatingType;
    auto metric =
        makeMetric(texts.key, translate("roofline_summary_inst_compute") + " (" + translate(texts.unit) + ")",
                   texts.description, perSecond(opCount, elapsedTime), dominates);
    metric.measure =
        boost::algorithm::to_lower_copy(getRoofMeasureTranslated(false, type), std::locale::classic());
    setRoof(metric, roof);
    metric.children.push_back(makeMetric(texts.countKey, translate(texts.countCaption),
                                         texts.countDescription, opCount, dominates));
    return metric;
}

OpsAndBandMetric getMetricForMemoryRoof(const RoofItem& roof, double elapsedTime, double gigabytes,
                                        double aiFloat, double aiInt, const std::string& levelName,
                                        OperationsType dominatingType, bool isRow) {
    auto metric = makeMetric("bandwidth", getMemLevelCaption(levelName, roof.name),
                             "roofline_summary_bandwidth_descr", perSecond(gigabytes, elapsedTime), false);
    metric.measure = translate("roofline_summary_bw_postfix");
    setRoof(metric, roof);
    metric.children.push_back(
        makeMetric("traffic", translate("roofline_summary_bytes", translate("roofline_summary_gb")),
                   "roofline_summary_bytes_descr", gigabytes, false));
    metric.children.push_back(makeIntensity("aiFloat", "roofline_summary_float_ai", aiFloat, isRow,
                                            dominatingType == OperationsType::Float));
    metric.children.push_back(makeIntensity("aiInt", "roofline_summary_int_ai", aiInt, isRow,
                                            dominatingType == OperationsType::Int));
    return metric;
}

void dumpMetric(rabbit::object& object, const OpsAndBandMetric& metric) {
    json_dump::dumpMetricInfo(object, metric);
    object.append("value", metric.value);
    object.append("formattedValue", formatted(metric.value));
    object.append("isDominatingOps", metric.isDominatingOps);
    if (metric.children.empty()) return;
    object.append("roofId", metric.roofId);
    if (!metric.roofName.empty()) object.append("roofName", metric.roofName);
    rabbit::array children(object.allocator());
    for (const auto& child : metric.children) {
        rabbit::object item(object.allocator());
        dumpMetric(item, child);
        children.push(std::move(item));
    }
    object.append("children", std::move(children));
}

void dumpSummary(rabbit::object& object, const std::vector<SummaryItem>& items, TargetDeviceType device) {
    rabbit::array roofs(object.allocator());
    rabbit::array metrics(object.allocator());
    for (const auto& [roof, metric] : items) {
        roofs.push(makeRoofEntry(roof, metric.value, device, object.allocator()));
        rabbit::object item(object.allocator());
        dumpMetric(item, metric);
        metrics.push(std::move(item));
    }
    object.append("roofs", std::move(roofs));
    object.append("metrics", std::move(metrics));
}

void dumpRowOpsAndBandwidthSummary(rabbit::object& object,
                                   const std::shared_ptr<const CRowRooflineEngine>& engine,
                                   const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) {
    if (!engine || !engine->isValid() || !dataset || !row) return;
    const auto items = makeRowItems(*engine, dataset, row);
    if (!items.empty()) dumpSummary(object, items, sourceOf(dataset->getDataType()).device);
}

}  // namespace data_models2::roofline::summary
