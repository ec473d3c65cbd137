// Stands in for the page where the build couldn't make one.
#include "cli/page/page_file.h"

namespace cli::page {

const Resources* resources() { return nullptr; }

}  // namespace cli::page
