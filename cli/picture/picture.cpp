// From the library's texts to the picture: read, lay out, write.
#include "cli/picture/picture.h"

#include "cli/picture/layout.h"
#include "cli/picture/svg.h"

namespace cli {

std::string drawChart(const std::string& documentJson, const std::string& roofsJson,
                      const std::vector<UnplacedRows>& unplaced, const PictureOptions& options) {
    return picture::toSvg(
        picture::layOut(parseChartDocument(documentJson), parseRoofs(roofsJson), unplaced, options));
}

}  // namespace cli
