// A custom roof as a served page asks for it.
#pragma once

#include "cli/requests.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace cli::page {

struct RoofChange {
    std::size_t result = 0;
    int id = 0;
    std::optional<std::uint64_t> value;  // per second; nothing: the thread set-up's own values go
    RoofChoice roofs;
};

// Reads the body of `POST roof`. Throws UsageError, which names the member, for anything that isn't there, is
// of another type, or isn't known.
RoofChange parseRoofChange(const std::string& body);

}  // namespace cli::page
