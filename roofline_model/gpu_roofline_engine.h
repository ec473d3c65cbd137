// The roofline of a GPU result.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "roofline_model/dominating_type_helper.h"
#include "roofline_model/measured_program.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace data_models2 {

class CGpuRooflineEngine final : public IRooflineInfo, public subscriber_base_t {
public:
    // A null view model makes an engine without data.
    explicit CGpuRooflineEngine(std::shared_ptr<ISurveyingViewModel> viewModel);
    // The slots use members, so the connections go before them.
    ~CGpuRooflineEngine() override { disconnectAll(); }

    // Replaces the view model and listens to its load signal; takes over its device.
    void setModel(std::shared_ptr<ISurveyingViewModel> viewModel);
    void onSurveyResultLoaded(IViewModelBase::LoadType type, const std::string& message);
    // Starts the background task; its completion raises `changed`.
    void detectDominatingRoofsAsync() const { m_program.detectDominatingRoofsAsync(); }
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
    // The choice of sub-devices; an empty text until a load has told of the device.
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
    // Nothing is known of one row's types.
    int getDominatingOperationType(sptr_t<RowNode>) const override {
        return DominatingTypeHelper::kUnknownOperationType;
    }
    int getDominatingFloatType(sptr_t<RowNode>) const override {
        return DominatingTypeHelper::kUnknownFloatType;
    }
    int getDominatingIntType(sptr_t<RowNode>) const override { return DominatingTypeHelper::kUnknownIntType; }
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
    MeasuredProgram m_program;
};

}  // namespace data_models2
