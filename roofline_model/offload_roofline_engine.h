// The roofline of a projection: a program measured on its host, as it would run on a target device.
#pragma once

#include "roofline_model/engine_face.h"

#include <functional>
#include <memory>
#include <string>

namespace data_models2 {

// What the services don't say of projections: there is no choice of threads, no summary, nothing to
// highlight, and no background task. Nor has a projection a dataset of total data beside its own.
class COffloadRooflineEngine final : public EngineFace {
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

    // The levels of a projection are its target's, whatever was measured.
    int getMemoryLevelsCount() const override { return 1; }

    // Never answers.
    void loadSummaryData(int, const std::function<void(const std::string&)>&) override {}
    std::string getAllRoofs(const std::string&) const override { return {}; }
    std::string getSelectedRoofs(const std::string& configuration, Perspective perspective) const override;
    std::string getThreadsInfo() const override { return {}; }
    std::string getLoopAdditionalInfo(const std::string& request, std::shared_ptr<IResultController>,
                                      const std::string& configuration) const override;
    bool clearHighlighting(DataType) override { return false; }
    // The details of the loops that the second text names: there is no second projection to compare with.
    std::string getComparisonData(const ComparisonData&, const std::string& ids,
                                  const std::string& configuration) const override {
        return getLoopAdditionalInfo(ids, nullptr, configuration);
    }
    std::string getReportTemplate(std::shared_ptr<IResultController>) const override;

private:
    std::shared_ptr<IPerfProjectionViewModel> m_viewModel;
    roofline::RoofIds m_dominatingRoofs;
};

}  // namespace data_models2
