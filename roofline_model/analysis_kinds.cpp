#include "roofline_model/analysis_kinds.h"

namespace data_models2 {

const AnalysisKind& cpuAnalysis() {
    static const AnalysisKind kind{
        .rows = DataType::Cpu,
        .totals = DataType::CpuTopDown,
        .tables = getCpuTables,
        .recipe = {},
        .totalLevels = {"L1", "DRAM"},
        .device = TargetDeviceType::Cpu,
    };
    return kind;
}

}  // namespace data_models2
