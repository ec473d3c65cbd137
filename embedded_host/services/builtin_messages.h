// The message files that are compiled in; the definition is generated from embedded_host/messages.
#pragma once

#include <string_view>
#include <vector>

namespace embedded_host {

// A file "messages/<language>.json" as it stands, cut into pieces that compilers accept as literals.
struct BuiltinMessages {
    std::string_view language;
    std::vector<std::string_view> pieces;
};

const std::vector<BuiltinMessages>& builtinMessages();

}  // namespace embedded_host
