#include "roofline_model/roof_catalogue.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/roof_names.h"

#include <utility>

namespace data_models2::roofline {

namespace {

constexpr std::pair<RoofThreadingFeatures::Strategy, const char*> kStrategies[]{
    {RoofThreadingFeatures::Strategy::MultiThread, "rsiMultiThread"},
    {RoofThreadingFeatures::Strategy::SingleThread, "rsiSingleThread"},
};

rabbit::object toJSON(const RoofItem& roof, TargetDeviceType device, rabbit::Allocator& allocator) {
    const bool isMemory = roof::hasType(roof, RoofItem::Memory);
    const OperationsType operations = roof::getOperationsType(roof);
    rabbit::object result(allocator);
    result.append("id", static_cast<std::int32_t>(roof.id));
    result.append("val", roof.value);
    result.append("isMem", isMemory);
    result.append("isSingleNode", roof::hasType(roof, RoofItem::SingleNode));
    result.append("measure", helpers::getRoofMeasureTranslated(isMemory, operations));
    result.append("name", roof.name);
    result.append("desc", helpers::getRoofDescription(roof.name, device));
    result.append("device", static_cast<std::int32_t>(device));
    result.append("memoryLevel", static_cast<std::uint64_t>(roof.memoryLevel));
    result.append("opType", static_cast<std::uint32_t>(operations));
    result.append("dataType", static_cast<std::uint32_t>(roof.arithType));
    return result;
}

rabbit::object toJSON(const RoofThreadingFeatures& features, const char* strategy, const FillRoofs& fill,
                      rabbit::Allocator& allocator) {
    rabbit::array roofs(allocator);
    fill(roofs, features);
    rabbit::object result(allocator);
    result.append("threadCount", features.threadCount);
    result.append("strategyId", strategy);
    result.append("packageCount", features.packageCount);
    result.append("roofs", std::move(roofs));
    return result;
}

}  // namespace

void fillRoofs(rabbit::array& array, generic_iterator_t<RoofItem> roofs, TargetDeviceType device) {
    for (; !roofs.isEnd(); ++roofs) array.push(toJSON(*roofs, device, array.allocator()));
}

void fillAllRoofs(rabbit::array& array, const ThreadsInfo& info, const FillRoofs& fill) {
    if (info.processorPackageCount < 1) return;
    const int perPackage = info.physicalCoreCount / info.processorPackageCount;
    for (int packages = info.processorPackageCount; packages >= 1; --packages) {
        if (packages != 1 && packages != info.processorPackageCount) continue;
        for (const auto& [strategy, name] : kStrategies)
            for (int threads = 1; threads <= perPackage * packages; threads += threads == 1 ? 1 : 2)
                array.push(toJSON({threads, strategy, packages}, name, fill, array.allocator()));
    }
}

}  // namespace data_models2::roofline
