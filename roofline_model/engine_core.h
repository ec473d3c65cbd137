// What the engines of all kinds share: the option tree, the metrics, the rectangle and the requests on them.
#pragma once

#include "host_interfaces/model.h"

#include "roofline_model/analysis_kinds.h"
#include "roofline_model/unified/configurations.h"
#include "roofline_model/unified/view_rect.h"

#include <memory>
#include <string>

namespace data_models2 {

class EngineCore {
public:
    using Options = std::shared_ptr<const CRooflineOptions>;
    using Metrics = std::shared_ptr<const CMemoryLevelMetrics>;

    explicit EngineCore(const AnalysisKind& kind) : m_kind(kind) {}

    const AnalysisKind& kind() const { return m_kind; }
    const std::shared_ptr<IViewModelBase>& viewModel() const { return m_viewModel; }
    void setViewModel(std::shared_ptr<IViewModelBase> viewModel) { m_viewModel = std::move(viewModel); }
    const Options& options() const { return m_options; }
    void setOptions(Options options) { m_options = std::move(options); }
    const Metrics& metrics() const { return m_metrics; }

    // Builds the metrics unless they are there, or there is no data for them.
    void initMemoryMetrics();
    void dropMemoryMetrics() { m_metrics.reset(); }

    // Self data is in the first dataset, total data in the second; a null one is the view model's own. Null
    // when there is none.
    sptr_t<IDataset> getRooflineDatasetForConfiguration(const RooflineConfigurations& configurations,
                                                        sptr_t<IDataset> first,
                                                        sptr_t<IDataset> second) const;
    // The same for any view model; `configurations` aren't empty.
    static sptr_t<IDataset> chooseDataset(const AnalysisKind& kind, const IViewModelBase& viewModel,
                                          const RooflineConfigurations& configurations,
                                          sptr_t<IDataset> first, sptr_t<IDataset> second);
    // The chart document. `memoryLevels` as measured, 1 when only the core's traffic was.
    std::string getRooflineData(const sptr_t<IDataset>& first, const sptr_t<IDataset>& second,
                                const std::string& configuration, int memoryLevels);
    // The roof table, asserted to be there; null when it isn't.
    std::shared_ptr<IRoofManager> getRoofManager() const;

private:
    void calcViewRect(const sptr_t<IDataset>& first, const sptr_t<IDataset>& second);

    const AnalysisKind& m_kind;
    RooflineViewRect m_viewRect;  // never reset: charts of one engine keep one scale
    std::shared_ptr<IViewModelBase> m_viewModel;
    Options m_options;
    Metrics m_metrics;
};

}  // namespace data_models2
