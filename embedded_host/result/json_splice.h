// Changes one member of a JSON text and leaves every other byte as it stands.
#pragma once

#include "embedded_host/result/json_reader.h"

#include <string>
#include <string_view>
#include <vector>

namespace embedded_host {

// In both, `file` was parsed of `text`, and its root is an object with members.

// The items of the root's array `name` as they stand in the text; none when there is no such member.
std::vector<std::string> arrayItems(const JsonFile& file, const std::string& text, std::string_view name);
// The text with these items in that array. A new member becomes the last one and is laid out as the one
// before it; without items the member goes.
std::string withArrayItems(const JsonFile& file, std::string text, std::string_view name,
                           const std::vector<std::string>& items);

}  // namespace embedded_host
