#include "roofline_model/analysis_kinds.h"

#include "roofline_model/cpu_roof_choice.h"

namespace data_models2 {

namespace {

roofline::DominatingRoofs cpuDominatingRoofs(const DominatingRoofsTask& task, const ISurveyingViewModel&,
                                             const std::shared_ptr<const CMemoryLevelMetrics>&) {
    return roofline::getCpuDominatingRoofs(task.getProgramDominatingTypes());
}

}  // namespace

const AnalysisKind& cpuAnalysis() {
    static const AnalysisKind kind{
        .rows = DataType::Cpu,
        .totals = DataType::CpuTopDown,
        .tables = getCpuTables,
        .recipe = {},
        .totalLevels = {"L1", "DRAM"},
        .dominance = DataType::Cpu,
        .dominatingRoofs = cpuDominatingRoofs,
        .device = TargetDeviceType::Cpu,
    };
    return kind;
}

}  // namespace data_models2
