// The results of a page from their files, the same for a report and for a served page.
#pragma once

#include "cli/page/model.h"

#include <string>
#include <vector>

namespace cli::page {

// One result, or two when `compare` names the new one. Throws as `openSession` does.
std::vector<Result> openResults(const ResultSource& source, const std::string& compare);
// The request for them; of two results with their comparison, by the defaults of `roofline compare`. Without
// matches when `progress` was cancelled. The results outlive the request.
ModelRequest requestOf(const std::vector<Result>& results, data_models2::IProgress& progress);
// The names of the programs, or of the files where there is none.
std::string titleOf(const std::vector<Result>& results);

}  // namespace cli::page
