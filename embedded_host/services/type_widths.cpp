// Widths of the data types that a text names.
#include "host_interfaces/host_functions.h"

#include <algorithm>
#include <charconv>

namespace data_models2::isa_helpers {

// What stands before the base name is part of the type's name: "uint32" is an "int" type, "bfloat16" a
// "float" type. Mark-up and any other text between the types is passed over.
unsigned getTypeMaxWidth(const std::string& text, const std::string& base) {
    if (base.empty()) return 0;
    unsigned widest = 0;
    for (auto at = text.find(base); at != std::string::npos; at = text.find(base, at + 1)) {
        unsigned width = 0;
        std::from_chars(text.data() + at + base.size(), text.data() + text.size(), width);
        widest = std::max(widest, width);
    }
    return widest;
}

}  // namespace data_models2::isa_helpers
