// What the page tells of a single row that was pinned.
#pragma once

#include "cli/page/rows.h"

#include <map>
#include <string>
#include <vector>

namespace cli::page {

// By id, each a JSON object; `places` are those of rows. A row of which the library tells nothing isn't
// there.
std::map<std::string, std::string> readDetails(const Session& session, const Rows& rows,
                                               const std::vector<std::size_t>& places);

}  // namespace cli::page
