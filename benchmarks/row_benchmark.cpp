// How long the roofline of one row takes, beside the bare reading of its cells and copying of its roofs.
#include "host_interfaces/host_functions.h"

#include "embedded_host/embedded_host.h"

#include "roofline_model/factories.h"

#include "benchmarks/benchmarks.h"
#include "benchmarks/synthetic_result.h"
#include "benchmarks/timing.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace {

using namespace data_models2;

std::size_t g_work = 0;  // keeps what is only done to be timed

// Twelve roofs that are handed out as they are.
class Roofs final : public IRoofManager {
public:
    Roofs() {
        const auto add = [this](RoofId id, const char* name, double giga, RoofItem::Type type,
                                MemoryLevel level, ArithTypeExtDef arith) {
            m_roofs.push_back(
                {id, name, static_cast<std::uint64_t>(giga * 1e9), type, level, RoofOpType::Basic, arith, 0});
        };
        using enum ArithTypeExtDef;
        add(RoofId::L1Bandwidth, "L1 Bandwidth", 1600, RoofItem::Memory, MemoryLevel::L1,
            ArithTypeExtDef::None);
        add(RoofId::L2Bandwidth, "L2 Bandwidth", 700, RoofItem::Memory, MemoryLevel::L2,
            ArithTypeExtDef::None);
        add(RoofId::L3Bandwidth, "L3 Bandwidth", 300, RoofItem::Memory, MemoryLevel::L3,
            ArithTypeExtDef::None);
        add(RoofId::DramBandwidth, "DRAM Bandwidth", 40, RoofItem::Memory, MemoryLevel::Dram,
            ArithTypeExtDef::None);
        add(RoofId::ScalarAddPeak, "Scalar Add Peak", 40, RoofItem::Compute, MemoryLevel::None, Float64);
        add(RoofId::SpVectorAddPeak, "SP Vector Add Peak", 400, RoofItem::Compute, MemoryLevel::None,
            Float32);
        add(RoofId::DpVectorAddPeak, "DP Vector Add Peak", 200, RoofItem::Compute, MemoryLevel::None,
            Float64);
        add(RoofId::SpVectorFmaPeak, "SP Vector FMA Peak", 800, RoofItem::Compute, MemoryLevel::None,
            Float32);
        add(RoofId::DpVectorFmaPeak, "DP Vector FMA Peak", 400, RoofItem::Compute, MemoryLevel::None,
            Float64);
        add(RoofId::IntScalarAddPeak, "Integer Scalar Add Peak", 60, RoofItem::Compute, MemoryLevel::None,
            Int64);
        add(RoofId::Int32VectorAddPeak, "Int32 Vector Add Peak", 300, RoofItem::Compute, MemoryLevel::None,
            Int32);
        add(RoofId::Int64VectorAddPeak, "Int64 Vector Add Peak", 150, RoofItem::Compute, MemoryLevel::None,
            Int64);
    }
    generic_iterator_t<RoofItem> getRoofs(const std::string&) const override {
        class Source final : public generic_iterator_t<RoofItem>::ISource {
        public:
            explicit Source(const std::vector<RoofItem>& roofs) : m_roofs(roofs) {}
            std::unique_ptr<ISource> clone() const override { return std::make_unique<Source>(*this); }
            bool atEnd() const override { return m_index == m_roofs.size(); }
            void next() override { ++m_index; }
            RoofItem current() const override { return m_roofs[m_index]; }

        private:
            const std::vector<RoofItem>& m_roofs;
            std::size_t m_index = 0;
        };
        return generic_iterator_t<RoofItem>(std::make_unique<Source>(m_roofs));
    }
    bool setCustomRoofValues(const std::map<RoofId, std::uint64_t>&, const std::string&) override {
        return false;
    }
    bool clearCustomRoofValues(const std::string&) override { return false; }

private:
    std::vector<RoofItem> m_roofs;
};

// What the engine of a vectorised row with total data reads, in its order.
std::vector<FieldId> readFields(bool levels) {
    std::vector<FieldId> fields{FieldId::NestingLevel,  FieldId::TotalGFlops,  FieldId::TotalFloatAi,
                                FieldId::TotalFloatOps, FieldId::TotalGIntOps, FieldId::TotalIntAi,
                                FieldId::TotalIntOps,   FieldId::Vectorized,   FieldId::VectorTraits,
                                FieldId::MainDataType,  FieldId::DataTypes,    FieldId::ThreadCount};
    if (!levels) return fields;
    const std::pair<FieldId, FieldId> traffic[]{{FieldId::TotalL1Load, FieldId::TotalL1Store},
                                                {FieldId::TotalL2Load, FieldId::TotalL2Store},
                                                {FieldId::TotalL3Load, FieldId::TotalL3Store},
                                                {FieldId::TotalDramLoad, FieldId::TotalDramStore}};
    for (const auto& [load, store] : traffic)
        for (const auto field :
             {FieldId::TotalFloatOps, load, store, FieldId::TotalIntOps, load, store, load, store})
            fields.push_back(field);
    return fields;
}

struct Timing {
    double engine;
    double bare;
};

Timing measure(std::size_t rowCount, bool levels) {
    const auto result =
        embedded_host::parseResult(makeSyntheticResult({rowCount, 1, levels}), "synthetic.json");
    const auto dataset = result->viewModel()->getDataset(DataType::Cpu);
    const auto roofs = std::make_shared<Roofs>();
    const auto threading = std::make_shared<RoofThreadingFeatures>();
    const auto fields = readFields(levels);
    std::vector<sptr_t<RowNode>> rows;
    for (auto row = dataset->getRows(0); !row.isEnd(); ++row) rows.push_back(*row);

    Timing timing{};
    timing.engine = best([&] {
        return seconds([&] {
            for (const auto& row : rows)
                g_work +=
                    createRowRooflineInfo(row, dataset, roofs, {}, levels ? 4 : 1, threading)->isValid();
        });
    });
    timing.bare = best([&] {
        return seconds([&] {
            for (const auto& row : rows) {
                for (const auto field : fields) {
                    variant_t cell;
                    g_work += dataset->getValue(row, dataset->getColumn(field), 0, cell);
                }
                std::vector<RoofItem> copies;
                for (auto roof = roofs->getRoofs({}); !roof.isEnd(); ++roof) copies.push_back(*roof);
                g_work += copies.size();
            }
        });
    });
    return timing;
}

}  // namespace

int runRowBenchmark() {
    fmt::print("best of {}, microseconds a row; the roofline of one row beside its bare reads and copies\n",
               kRuns);
    fmt::print("{:<16}{:>8}{:>10}{:>10}{:>10}\n", "levels", "rows", "engine", "bare", "ratio");
    for (const bool levels : {false, true})
        for (const std::size_t rows : {1000, 10000, 100000}) {
            const Timing t = measure(rows, levels);
            const double perRow = 1e6 / static_cast<double>(rows);
            fmt::print("{:<16}{:>8}{:>10.3f}{:>10.3f}{:>10.2f}\n", levels ? "four" : "none", rows,
                       t.engine * perRow, t.bare * perRow, t.engine / t.bare);
        }
    return g_work == 0;
}
