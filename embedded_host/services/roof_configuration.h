// The text by which the roof table selects the roofs of a thread set-up, and the way back.
#pragma once

#include "host_interfaces/host_functions.h"

#include <optional>
#include <string>

namespace embedded_host {

// Made into a text by `data_models2::roof::getCpuRoofConfiguration`.
struct RoofConfiguration {
    data_models2::RoofThreadingFeatures features;
    data_models2::OperationsType operations = data_models2::OperationsType::Mixed;
    data_models2::IRooflineInfo::Perspective perspective = data_models2::IRooflineInfo::Perspective::Program;

    auto operator<=>(const RoofConfiguration&) const = default;
};

// Nothing for a text that isn't exactly one that `getCpuRoofConfiguration` makes, the empty text included.
std::optional<RoofConfiguration> parseCpuRoofConfiguration(const std::string& text);

// Made into a text by `data_models2::roof::getGpuRoofConfiguration`.
struct GpuRoofConfiguration {
    data_models2::TileUsage usage = data_models2::TileUsage::Multi;
    data_models2::OperationsType operations = data_models2::OperationsType::Undefined;

    auto operator<=>(const GpuRoofConfiguration&) const = default;
};

// Nothing for a text that isn't exactly one that `getGpuRoofConfiguration` makes.
std::optional<GpuRoofConfiguration> parseGpuRoofConfiguration(const std::string& text);

}  // namespace embedded_host
