// The roofline of a CPU result.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "roofline_model/dominating_type_helper.h"
#include "roofline_model/engine_core.h"
#include "roofline_model/program_dominance.h"
#include "roofline_model/rabbit.h"

#include <memory>
#include <string>
#include <vector>

namespace data_models2 {

class CRooflineEngine final : public IRooflineInfo, public subscriber_base_t {
public:
    CRooflineEngine();
    // A null view model makes an engine without data.
    explicit CRooflineEngine(std::shared_ptr<ISurveyingViewModel> viewModel);
    ~CRooflineEngine() override;

    // Replaces the view model and listens to its load signal.
    void setModel(std::shared_ptr<ISurveyingViewModel> viewModel);
    void onSurveyResultLoaded(IViewModelBase::LoadType type, const std::string& message);
    // Starts the background task; its completion raises `changed`.
    void detectDominatingRoofsAsync() const { m_dominance->detectDominatingRoofsAsync(); }
    ThreadsInfo getThreadsInfoStruct() const;
    // At least 1.
    int getMemoryLevelsCount() const;
    const std::shared_ptr<const CMemoryLevelMetrics>& getMetrics() const { return m_core.metrics(); }

    void loadSummaryData(int kind, const std::function<void(const std::string&)>& callback) override;
    std::string getRooflineOptions() const override;
    std::string getRooflineData(sptr_t<IDataset> dataset, const std::string& configuration) override;
    std::string getRooflineData(sptr_t<IDataset> dataset, sptr_t<IDataset> secondDataset,
                                const std::string& configuration) override;
    std::string getRoofs(const std::string& configuration, const RoofThreadingFeatures& features,
                         Perspective perspective) const override;
    std::string getAllRoofs(const std::string& configuration) const override;
    std::string getSelectedRoofs(const std::string& configuration, Perspective perspective) const override;
    std::string getThreadsInfo() const override;
    std::string getLoopAdditionalInfo(const std::string& request,
                                      std::shared_ptr<IResultController> controller,
                                      const std::string& configuration) const override;
    bool clearHighlighting(DataType type) override;
    std::string getRooflineConfigurationStr(const std::vector<std::string>& captions) const override;
    std::string getComparisonData(const ComparisonData& data, const std::string& ids,
                                  const std::string& configuration) const override;
    int getDominatingOperationType(sptr_t<RowNode> row) const override;
    int getDominatingFloatType(sptr_t<RowNode> row) const override;
    int getDominatingIntType(sptr_t<RowNode> row) const override;
    bool setCustomRoofValues(RoofId roof, unsigned long long value,
                             const RoofThreadingFeatures& features) override;
    bool clearCustomRoofValues(const RoofThreadingFeatures& features) override;

private:
    void rebuildOptions();
    DominatingTypeHelper makeTypeHelper() const;
    void getRoofsImp(rabbit::array& array, const std::string& configuration,
                     const RoofThreadingFeatures& features, Perspective perspective) const;

    std::shared_ptr<ISurveyingViewModel> m_viewModel;
    EngineCore m_core;
    const std::unique_ptr<ProgramDominance> m_dominance;
};

}  // namespace data_models2
