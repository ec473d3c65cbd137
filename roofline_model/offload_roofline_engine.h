// The roofline of a projection: a program measured on its host, as it would run on a target device.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "roofline_model/dominating_type_helper.h"
#include "roofline_model/engine_core.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace data_models2 {

// What the services don't say of projections: there is no choice of threads, no summary, nothing to
// highlight, and no background task.
class COffloadRooflineEngine final : public IRooflineInfo, public subscriber_base_t {
public:
    // A null view model makes an engine without data. The option tree is made here, once, for the target that
    // is known by now.
    explicit COffloadRooflineEngine(std::shared_ptr<IPerfProjectionViewModel> viewModel);
    // The slots use members, so the connections go before them.
    ~COffloadRooflineEngine() override { disconnectAll(); }

    // Replaces the view model and listens to its load signal.
    void setModel(std::shared_ptr<IPerfProjectionViewModel> viewModel);
    // Builds the metrics anew, then finds what dominates.
    void onResultLoaded(IViewModelBase::LoadType type, const std::string& message);
    // Needs the metrics; without them, or without operations, no compute roof dominates.
    void detectDominatingRoofs();
    const std::shared_ptr<const CMemoryLevelMetrics>& getMetrics() const { return m_core.metrics(); }

    // Never answers.
    void loadSummaryData(int, const std::function<void(const std::string&)>&) override {}
    std::string getRooflineOptions() const override { return m_core.getRooflineOptions(); }
    std::string getRooflineData(sptr_t<IDataset> dataset, const std::string& configuration) override {
        return m_core.getRooflineData(dataset, nullptr, configuration, kMemoryLevels);
    }
    // A projection has no dataset of total data beside its own.
    std::string getRooflineData(sptr_t<IDataset> dataset, sptr_t<IDataset>,
                                const std::string& configuration) override {
        return getRooflineData(dataset, configuration);
    }
    std::string getRoofs(const std::string& configuration, const RoofThreadingFeatures& features,
                         Perspective perspective) const override {
        return m_core.getRoofs(configuration, features, perspective);
    }
    std::string getAllRoofs(const std::string&) const override { return {}; }
    std::string getSelectedRoofs(const std::string& configuration, Perspective perspective) const override;
    std::string getThreadsInfo() const override { return {}; }
    std::string getLoopAdditionalInfo(const std::string& request, std::shared_ptr<IResultController>,
                                      const std::string& configuration) const override;
    bool clearHighlighting(DataType) override { return false; }
    std::string getRooflineConfigurationStr(const std::vector<std::string>& captions) const override {
        return m_core.getRooflineConfigurationStr(captions);
    }
    // The details of the loops that the second text names: there is no second projection to compare with.
    std::string getComparisonData(const ComparisonData&, const std::string& ids,
                                  const std::string& configuration) const override {
        return getLoopAdditionalInfo(ids, nullptr, configuration);
    }
    // Nothing is known of one row's types.
    int getDominatingOperationType(sptr_t<RowNode>) const override {
        return DominatingTypeHelper::kUnknownOperationType;
    }
    int getDominatingFloatType(sptr_t<RowNode>) const override {
        return DominatingTypeHelper::kUnknownFloatType;
    }
    int getDominatingIntType(sptr_t<RowNode>) const override { return DominatingTypeHelper::kUnknownIntType; }
    std::string getReportTemplate(std::shared_ptr<IResultController>) const override;
    bool setCustomRoofValues(RoofId roof, unsigned long long value,
                             const RoofThreadingFeatures& features) override {
        return m_core.setCustomRoofValues(roof, value, features);
    }
    bool clearCustomRoofValues(const RoofThreadingFeatures& features) override {
        return m_core.clearCustomRoofValues(features);
    }

private:
    // The levels of a projection are the target's, whatever was measured on the host.
    static constexpr int kMemoryLevels = 1;

    std::shared_ptr<IPerfProjectionViewModel> m_viewModel;
    EngineCore m_core;
    roofline::RoofIds m_dominatingRoofs;
};

}  // namespace data_models2
