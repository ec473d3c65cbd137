// The chart document: everything that a chart draws except the roofs.
#pragma once

#include "roofline_model/rabbit.h"
#include "roofline_model/unified/loop_params_tables.h"
#include "roofline_model/unified/loops.h"
#include "roofline_model/unified/roofline_totals.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace data_models2 {

struct DocumentRequest {
    sptr_t<IDataset> dataset;
    std::shared_ptr<const CRooflineOptions> options;
    const RooflineConfigurations& configurations;
    const std::vector<roofline::helpers::SRooflineTotal>& totals;
    const ChartTables& tables;
    bool selfData;
    FieldId time;  // of a row; None: why a chart stays empty isn't looked for
};

// The compact text of the document; one that can't be drawn holds "noDataMessage" alone. The rectangle is
// extended by the records and totals.
std::string makeRooflineDocument(const DocumentRequest& request, RooflineViewRect& viewRect);

// Writes the members of a document that has records; false, with `object` as it was, when there are none.
bool fillRooflineData(rabbit::object& object, const sptr_t<IDataset>& dataset,
                      const std::shared_ptr<const CRooflineOptions>& options,
                      const RooflineConfigurations& configurations,
                      const std::vector<RooflineAttrsTotal>& totals, const ChartTables& tables, bool selfData,
                      RooflineViewRect& viewRect, const RowFilter& rowFilter,
                      const std::function<void(CLoopInfo&)>& onLoop);

// One point of the program.
void fillProgramTotal(rabbit::object& object, const RooflineAttrsTotal& total,
                      const std::shared_ptr<const CRooflineOptions>& options,
                      const RooflineConfiguration& configuration, const RooflineAttributes& attributes);
// The same for the configuration that a choice of option values stands for.
void fillProgramTotal(rabbit::object& object, const RooflineAttrsTotal& total,
                      const std::shared_ptr<const CRooflineOptions>& options,
                      const RooflineTypes& configurationTypes, const RooflineAttributes& attributes);

}  // namespace data_models2
