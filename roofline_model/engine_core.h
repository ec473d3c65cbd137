// What the engines of all kinds share: the option tree, the metrics, the rectangle and the requests on them.
#pragma once

#include "host_interfaces/model.h"

#include "roofline_model/analysis_kinds.h"
#include "roofline_model/unified/configurations.h"
#include "roofline_model/unified/roofline_totals.h"
#include "roofline_model/unified/view_rect.h"

#include <memory>
#include <string>
#include <vector>

namespace data_models2 {

// Its requests on texts and roofs are guarded: no exception leaves them, and what can't be answered is an
// empty value.
class EngineCore {
public:
    using Options = std::shared_ptr<const CRooflineOptions>;
    using Metrics = std::shared_ptr<const CMemoryLevelMetrics>;
    using Perspective = IRooflineInfo::Perspective;
    using Totals = std::vector<roofline::helpers::SRooflineTotal>;

    explicit EngineCore(const AnalysisKind& kind) : m_kind(kind) {}

    const AnalysisKind& kind() const { return m_kind; }
    const std::shared_ptr<IViewModelBase>& viewModel() const { return m_viewModel; }
    void setViewModel(std::shared_ptr<IViewModelBase> viewModel) { m_viewModel = std::move(viewModel); }
    void setProjection(const std::shared_ptr<IPerfProjectionViewModel>& projection) {
        m_viewModel = projection;
        m_state.projection = projection;
    }
    const Options& options() const { return m_state.options; }
    const Metrics& metrics() const { return m_state.metrics; }
    const GpuDeviceProperties& device() const { return m_state.device; }
    // Of the metrics and options that are built from now on.
    void setDevice(GpuDeviceProperties device) { m_state.device = std::move(device); }

    // Builds the metrics unless they are there, or there is no data for them.
    void initMemoryMetrics();
    void rebuildMemoryMetrics();
    // `memoryLevels` here and below: as measured, 1 when only the core's traffic was.
    void rebuildOptions(int memoryLevels) { m_state.options = m_kind.options(m_state, memoryLevels); }

    // Self data is in the first dataset, total data in the second; a null one is the view model's own. Null
    // when there is none.
    sptr_t<IDataset> getRooflineDatasetForConfiguration(const RooflineConfigurations& configurations,
                                                        sptr_t<IDataset> first,
                                                        sptr_t<IDataset> second) const;
    // The same for any view model; `configurations` aren't empty.
    static sptr_t<IDataset> chooseDataset(const AnalysisKind& kind, const IViewModelBase& viewModel,
                                          const RooflineConfigurations& configurations,
                                          sptr_t<IDataset> first, sptr_t<IDataset> second);
    // The chart document. A kind without total data takes no second dataset.
    std::string getRooflineData(const sptr_t<IDataset>& first, const sptr_t<IDataset>& second,
                                const std::string& configuration, int memoryLevels);
    // The program's points on a chart, those of `dataset` without metrics; none without configurations. Needs
    // a view model, and isn't guarded.
    Totals makeTotals(const sptr_t<IDataset>& dataset, const RooflineConfigurations& configurations,
                      int memoryLevels) const;
    std::string getRooflineOptions() const;
    std::string getRooflineConfigurationStr(const RooflineTypes& types) const;
    bool clearHighlighting(DataType type) const;

    // The roof table, asserted to be there; null when it isn't.
    std::shared_ptr<IRoofManager> getRoofManager() const;
    std::string getRoofs(const std::string& configuration, const RoofThreadingFeatures& features,
                         Perspective perspective) const;
    std::string getAllRoofs(const std::string& configuration, const ThreadsInfo& info) const;
    // Into an array; not guarded.
    void fillRoofs(rabbit::array& array, const std::string& configuration,
                   const RoofThreadingFeatures& features, Perspective perspective) const;
    void fillAllRoofs(rabbit::array& array, const std::string& configuration, const ThreadsInfo& info) const;
    // The memory roofs that the kind chooses, and the roofs that dominate.
    std::string getSelectedRoofs(const std::string& configuration, Perspective perspective,
                                 const roofline::RoofIds& dominating, int memoryLevels) const;
    // The same before it becomes a text; not guarded.
    roofline::SelectedRoofs selectRoofs(const std::string& configuration, Perspective perspective,
                                        const roofline::RoofIds& dominating, int memoryLevels) const;
    // Own values hold under every type of operations and perspective.
    bool setCustomRoofValues(RoofId roof, unsigned long long value,
                             const RoofThreadingFeatures& features) const;
    bool clearCustomRoofValues(const RoofThreadingFeatures& features) const;

private:
    void calcViewRect(const sptr_t<IDataset>& first, const sptr_t<IDataset>& second);
    std::string customRoofsKey(const RoofThreadingFeatures& features) const;

    const AnalysisKind& m_kind;
    RooflineViewRect m_viewRect;  // never reset: charts of one engine keep one scale
    std::shared_ptr<IViewModelBase> m_viewModel;
    ResultState m_state;
};

}  // namespace data_models2
