// The roofline of a CPU result.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "roofline_model/dominating_type_helper.h"
#include "roofline_model/measured_program.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace data_models2 {

class CRooflineEngine final : public IRooflineInfo, public subscriber_base_t {
public:
    CRooflineEngine();
    // A null view model makes an engine without data.
    explicit CRooflineEngine(std::shared_ptr<ISurveyingViewModel> viewModel);
    // The slots use members, so the connections go before them.
    ~CRooflineEngine() override { disconnectAll(); }

    // Replaces the view model and listens to its load signal.
    void setModel(std::shared_ptr<ISurveyingViewModel> viewModel);
    void onSurveyResultLoaded(IViewModelBase::LoadType type, const std::string& message);
    // Starts the background task; its completion raises `changed`.
    void detectDominatingRoofsAsync() const { m_program.detectDominatingRoofsAsync(); }
    ThreadsInfo getThreadsInfoStruct() const;
    // At least 1.
    int getMemoryLevelsCount() const { return m_program.memoryLevels(); }
    const std::shared_ptr<const CMemoryLevelMetrics>& getMetrics() const {
        return m_program.core().metrics();
    }

    void loadSummaryData(int kind, const std::function<void(const std::string&)>& callback) override {
        m_program.loadSummaryData(kind, callback);
    }
    std::string getRooflineOptions() const override { return m_program.core().getRooflineOptions(); }
    std::string getRooflineData(sptr_t<IDataset> dataset, const std::string& configuration) override {
        return m_program.getRooflineData(dataset, nullptr, configuration);
    }
    std::string getRooflineData(sptr_t<IDataset> dataset, sptr_t<IDataset> secondDataset,
                                const std::string& configuration) override {
        return m_program.getRooflineData(dataset, secondDataset, configuration);
    }
    std::string getRoofs(const std::string& configuration, const RoofThreadingFeatures& features,
                         Perspective perspective) const override {
        return m_program.core().getRoofs(configuration, features, perspective);
    }
    std::string getAllRoofs(const std::string& configuration) const override {
        return m_program.getAllRoofs(configuration);
    }
    std::string getSelectedRoofs(const std::string& configuration, Perspective perspective) const override {
        return m_program.getSelectedRoofs(configuration, perspective);
    }
    std::string getThreadsInfo() const override;
    std::string getLoopAdditionalInfo(const std::string& request, std::shared_ptr<IResultController>,
                                      const std::string& configuration) const override {
        return m_program.getLoopAdditionalInfo(request, configuration);
    }
    bool clearHighlighting(DataType type) override { return m_program.core().clearHighlighting(type); }
    std::string getRooflineConfigurationStr(const std::vector<std::string>& captions) const override {
        return m_program.core().getRooflineConfigurationStr(captions);
    }
    std::string getComparisonData(const ComparisonData& data, const std::string& ids,
                                  const std::string& configuration) const override {
        return m_program.getComparisonData(data, ids, configuration);
    }
    int getDominatingOperationType(sptr_t<RowNode> row) const override;
    int getDominatingFloatType(sptr_t<RowNode> row) const override;
    int getDominatingIntType(sptr_t<RowNode> row) const override;
    std::string getReportTemplate(std::shared_ptr<IResultController>) const override {
        return m_program.getReportTemplate();
    }
    bool setCustomRoofValues(RoofId roof, unsigned long long value,
                             const RoofThreadingFeatures& features) override {
        return m_program.core().setCustomRoofValues(roof, value, features);
    }
    bool clearCustomRoofValues(const RoofThreadingFeatures& features) override {
        return m_program.core().clearCustomRoofValues(features);
    }

private:
    DominatingTypeHelper makeTypeHelper() const;

    MeasuredProgram m_program;
};

}  // namespace data_models2
