// What a roof is for, and the text that selects the roofs of a thread set-up.
#include "embedded_host/services/roof_configuration.h"

#include <fmt/format.h>

#include <charconv>

namespace data_models2::roof {

OperationsType getOperationsType(const RoofItem& roof) {
    if (hasType(roof, RoofItem::Memory) || roof.arithType == ArithTypeExtDef::None)
        return OperationsType::Undefined;
    return roof.arithType <= ArithTypeExtDef::Float64 ? OperationsType::Float : OperationsType::Int;
}

bool hasType(const RoofItem& roof, RoofItem::Type type) { return (roof.typeBits & type) != 0; }

std::string getCpuRoofConfiguration(const RoofThreadingFeatures& features, OperationsType operations,
                                    IRooflineInfo::Perspective perspective) {
    return fmt::format("threads={};packages={};strategy={};operations={};perspective={}",
                       features.threadCount, features.packageCount, static_cast<int>(features.strategy),
                       static_cast<unsigned>(operations), static_cast<int>(perspective));
}

std::string getCpuRoofConfiguration(int threadCount, int packageCount,
                                    RoofThreadingFeatures::Strategy strategy, OperationsType operations,
                                    IRooflineInfo::Perspective perspective) {
    const RoofThreadingFeatures features{threadCount, strategy, packageCount};
    return getCpuRoofConfiguration(features, operations, perspective);
}

std::string getGpuRoofConfiguration(TileUsage usage, OperationsType operations) {
    return fmt::format("tiles={};operations={}", static_cast<int>(usage), static_cast<unsigned>(operations));
}

}  // namespace data_models2::roof

namespace embedded_host {
namespace {

using data_models2::IRooflineInfo;
using data_models2::OperationsType;
using data_models2::RoofThreadingFeatures;

// The number behind "<name>="; 0 when there is none.
int numberOf(std::string_view text, std::string_view name) {
    const auto at = text.find(name);
    if (at == std::string_view::npos) return 0;
    int number = 0;
    std::from_chars(text.data() + at + name.size(), text.data() + text.size(), number);
    return number;
}

template <class Value>
bool isBetween(Value value, Value first, Value last) {
    return first <= value && value <= last;
}

}  // namespace

std::optional<RoofConfiguration> parseCpuRoofConfiguration(const std::string& text) {
    const RoofConfiguration result{
        .features = {.threadCount = numberOf(text, "threads="),
                     .strategy = static_cast<RoofThreadingFeatures::Strategy>(numberOf(text, "strategy=")),
                     .packageCount = numberOf(text, "packages=")},
        .operations = static_cast<OperationsType>(numberOf(text, "operations=")),
        .perspective = static_cast<IRooflineInfo::Perspective>(numberOf(text, "perspective="))};
    using Strategy = RoofThreadingFeatures::Strategy;
    using Perspective = IRooflineInfo::Perspective;
    if (!isBetween(result.features.strategy, Strategy::MultiThread, Strategy::SingleThread) ||
        !isBetween(result.operations, OperationsType::Float, OperationsType::Undefined) ||
        !isBetween(result.perspective, Perspective::Vectorized, Perspective::Program))
        return std::nullopt;
    // Whatever the reading above was lenient about shows here.
    const auto expected =
        data_models2::roof::getCpuRoofConfiguration(result.features, result.operations, result.perspective);
    if (text != expected) return std::nullopt;
    return result;
}

std::optional<GpuRoofConfiguration> parseGpuRoofConfiguration(const std::string& text) {
    const GpuRoofConfiguration result{
        .usage = static_cast<data_models2::TileUsage>(numberOf(text, "tiles=")),
        .operations = static_cast<OperationsType>(numberOf(text, "operations="))};
    using data_models2::TileUsage;
    if (!isBetween(result.usage, TileUsage::Single, TileUsage::Multi) ||
        !isBetween(result.operations, OperationsType::Float, OperationsType::Undefined) ||
        text != data_models2::roof::getGpuRoofConfiguration(result.usage, result.operations))
        return std::nullopt;
    return result;
}

}  // namespace embedded_host
