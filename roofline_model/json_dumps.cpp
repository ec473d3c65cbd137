#include "roofline_model/json_dumps.h"

#include "roofline_model/row_result.h"
#include "roofline_model/translation.h"

namespace data_models2::roofline::json_dump {

namespace {

using namespace helpers;

// An array with what `fill` writes of each record.
template <class Records, class Fill>
rabbit::array makeArray(rabbit::Allocator& allocator, const Records& records, Fill&& fill) {
    rabbit::array result(allocator);
    for (const auto& record : records) {
        rabbit::object item(allocator);
        fill(item, record);
        result.push(std::move(item));
    }
    return result;
}

void fillLoop(rabbit::object& object, const ChartLoop& loop) {
    object.append("name", loop.name);
    object.append("x", loop.x);
    object.append("y", loop.y);
    if (!loop.level) return;
    rabbit::object transferred(object.allocator());
    transferred.append("val", loop.level->traffic);
    transferred.append("measure", translate("roofline_memory_gb"));
    object.append(kTransferredKey, std::move(transferred));
    rabbit::object attributes(object.allocator());
    attributes.append(kLevelPrefixKey, loop.level->caption);
    object.append("attrs", std::move(attributes));
}

void fillRoof(rabbit::object& object, const ChartRoof& roof) {
    object.append("name", roof.name);
    object.append("measure", roof.measure);
    object.append("val", roof.height);
    object.append("isMem", roof.isMemory);
}

void fillMetric(rabbit::object& object, const MemoryMetric& metric) {
    object.append("caption", metric.caption);
    object.append("measure", metric.measure);
    object.append("explanation", metric.explanation);
    object.append("metrics", makeArray(object.allocator(), metric.entries,
                                       [](rabbit::object& item, const MemoryMetric::Entry& entry) {
                                           item.append("label", entry.label);
                                           item.append("val", entry.value);
                                           item.append("caption", entry.caption);
                                       }));
}

// `hasCrossing`: the limiting roof has a height at the row's intensity.
void fillBottleneckLoop(rabbit::object& object, const BottleneckLoop& loop, bool hasCrossing) {
    object.append("name", loop.name);
    object.append("x", loop.x);
    object.append("y", loop.y);
    rabbit::object roof(object.allocator());
    roof.append("name", loop.name);
    roof.append("val", loop.roofHeight);
    object.append("roof", std::move(roof));
    if (loop.limit && hasCrossing) object.append("crossingY", loop.limit->crossingY);
}

// Empty for a row without memory-level metrics, as in its bag.
rabbit::object makeBottleneck(rabbit::Allocator& allocator, const CRowRooflineEngine& engine) {
    rabbit::object result(allocator);
    const auto bottleneck = engine.areMemLevelMetricsAvailable() ? engine.getBottleneck() : nullptr;
    if (!bottleneck || bottleneck->loops().empty()) return result;
    rabbit::object loop(allocator);
    fillBottleneckLoop(loop, bottleneck->loops().front(), engine.getLimitingRoof(false).limitValue > 0.0);
    result.append("loop", std::move(loop));
    return result;
}

}  // namespace

void dumpMetricInfo(rabbit::object& object, const DumpMetricInfo& info) {
    object.append("key", info.key);
    object.append("caption", info.caption);
    object.append("measure", info.measure);
    object.append("description", info.description);
    object.append("details", info.details);
    object.append("order", info.order);
}

void dumpSingleRoofline(rabbit::object& object, const Engine& engine) {
    const auto widget = engine ? makeRooflineWidget(*engine) : std::nullopt;
    if (!widget) return;
    rabbit::Allocator& allocator = object.allocator();
    const auto [x, y] = widget->axes();
    object.append("nameX", x.caption);
    object.append("measureX", x.measure);
    object.append("nameY", y.caption);
    object.append("measureY", y.measure);
    object.append("limitingRoof", widget->limitingRoof());
    object.append("loops", makeArray(allocator, widget->loops(), fillLoop));
    object.append("roofs", makeArray(allocator, widget->roofs(), fillRoof));
    object.append("bottleneck", makeBottleneck(allocator, *engine));
    rabbit::array explanation(allocator);
    for (const auto& line : widget->explanation()) explanation.push(line);
    rabbit::object data(allocator);
    data.append("name", "roofline");
    data.append("explanation", std::move(explanation));
    object.append("data", std::move(data));
}

void dumpMemoryMetrics(rabbit::object& object, const Engine& engine) {
    const auto widget = engine ? makeMemoryMetricWidget(*engine) : std::nullopt;
    if (widget) object.append("metrics", makeArray(object.allocator(), widget->metrics(), fillMetric));
}

void dumpRooflineConclusions(rabbit::object& object, const Engine& engine) {
    if (!engine || !engine->isValid()) return;
    object.append("conclusions", makeArray(object.allocator(), engine->getRooflineConclusions(),
                                           [](rabbit::object& item, const RooflineConclusion& conclusion) {
                                               item.append("id", conclusion.key);
                                               if (conclusion.attributes.empty()) return;
                                               rabbit::object params(item.allocator());
                                               for (const auto& [name, text] : conclusion.attributes)
                                                   params.set(name, text);
                                               item.append("params", std::move(params));
                                           }));
}

}  // namespace data_models2::roofline::json_dump
