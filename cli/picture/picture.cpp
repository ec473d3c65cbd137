// From the library's texts to the picture: read, lay out, write.
#include "cli/picture/picture.h"

#include "cli/picture/layout.h"
#include "cli/picture/svg.h"

namespace cli {

std::string drawChart(const std::string& documentJson, const std::string& roofsJson,
                      const std::vector<UnplacedRows>& unplaced, const PictureOptions& options) {
    const auto roofs = chooseRoofs(parseRoofs(roofsJson), options.selectedRoofs);
    return picture::toSvg(picture::layOut(parseChartDocument(documentJson), roofs, unplaced, options));
}

}  // namespace cli
