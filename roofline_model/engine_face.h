// What an engine of any kind answers from its core alone.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "roofline_model/dominating_type_helper.h"
#include "roofline_model/engine_core.h"
#include "roofline_model/logging.h"

#include <memory>
#include <string>
#include <vector>

namespace data_models2 {

class EngineFace : public IRooflineInfo, public subscriber_base_t {
public:
    const std::shared_ptr<const CMemoryLevelMetrics>& getMetrics() const { return m_core.metrics(); }
    // At least 1.
    virtual int getMemoryLevelsCount() const = 0;

    std::string getRooflineOptions() const final { return m_core.getRooflineOptions(); }
    std::string getRooflineData(sptr_t<IDataset> dataset, const std::string& configuration) final {
        return getRooflineData(dataset, nullptr, configuration);
    }
    std::string getRooflineData(sptr_t<IDataset> dataset, sptr_t<IDataset> secondDataset,
                                const std::string& configuration) final;
    std::string getRoofs(const std::string& configuration, const RoofThreadingFeatures& features,
                         Perspective perspective) const final {
        return m_core.getRoofs(configuration, features, perspective);
    }
    std::string getRooflineConfigurationStr(const std::vector<std::string>& captions) const final {
        return m_core.getRooflineConfigurationStr(captions);
    }
    bool setCustomRoofValues(RoofId roof, unsigned long long value,
                             const RoofThreadingFeatures& features) final {
        return m_core.setCustomRoofValues(roof, value, features);
    }
    bool clearCustomRoofValues(const RoofThreadingFeatures& features) final {
        return m_core.clearCustomRoofValues(features);
    }

    // Unless a kind knows better, nothing is known of one row's types.
    int getDominatingOperationType(sptr_t<RowNode>) const override {
        return DominatingTypeHelper::kUnknownOperationType;
    }
    int getDominatingFloatType(sptr_t<RowNode>) const override {
        return DominatingTypeHelper::kUnknownFloatType;
    }
    int getDominatingIntType(sptr_t<RowNode>) const override { return DominatingTypeHelper::kUnknownIntType; }

protected:
    // `log` is the engine's own channel and outlives it.
    EngineFace(const AnalysisKind& kind, const roofline::LogChannel& log) : m_core(kind), m_log(log) {}

    void rebuildOptions() { m_core.rebuildOptions(getMemoryLevelsCount()); }
    void logLoad(IViewModelBase::LoadType type) const;

    EngineCore m_core;

private:
    const roofline::LogChannel& m_log;
};

}  // namespace data_models2
