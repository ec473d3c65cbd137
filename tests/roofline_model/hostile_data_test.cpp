// Every operation over sparse, huge, missing and hostile data: each answer parses and no exception leaves.
#include "host_interfaces/comparison.h"

#include "roofline_model/factories.h"

#include "tests/roofline_model/test_host.h"

#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace data_models2::test {
namespace {

// What no operation should take badly; the kinds that a field usually has come first.
const std::vector<variant_t>& hostileValues() {
    static const std::vector<variant_t> values{1.0,
                                               100.0,
                                               "name",
                                               7u,
                                               0.0,
                                               -1.0,
                                               1e-300,
                                               std::numeric_limits<double>::max(),
                                               std::nan(""),
                                               HUGE_VAL,
                                               -HUGE_VAL,
                                               "",
                                               "\"\\'\n\x01\x7F%1%%",
                                               std::string("a\0b", 3),
                                               "\xFF\xC3('",
                                               std::string(10'000, '\''),
                                               variant_t::literal("it's"),
                                               std::numeric_limits<std::int64_t>::min(),
                                               std::numeric_limits<std::uint64_t>::max(),
                                               -1,
                                               true,
                                               1e30f,
                                               variant_t(),
                                               variant_t::object(new SharedText("object"))};
    return values;
}

Table hostileTable() {
    Table table;
    table.type = static_cast<DataType>(*rc::gen::element(1, 2, 27, 28, 35, 0, -7));
    if (pick(0, 10) == 0) table.readsBeforeThrow = pick(0, 300);
    const int friendliness = *rc::gen::element(0, 2, 10, 50);
    for (int count = *rc::gen::element(0, 1, 3, 20); count > 0; --count) {
        TestRow row;
        row.parent = pick(-1, static_cast<int>(table.rows.size()));
        row.isNull = pick(0, 15) == 0;
        row.object = static_cast<std::uint64_t>(pick(0, 4));
        row.type = *rc::gen::element<std::uint64_t>(0, 0, 0x100, 0x400, ~std::uint64_t{0xE}, 0x4, ~0ull);
        if (pick(0, 10) == 0) row.type.reset();
        for (const auto& field : kFields) {
            if (pick(0, friendliness + 1) && field.type == FieldType::Double)
                row.cells[field.id] = hostileValues()[pick(0, 2)];
            else if (pick(0, 3))
                row.cells[field.id] = *rc::gen::elementOf(hostileValues());
        }
        table.rows.push_back(row);
    }
    return table;
}

// Machines of a few thousand cores at most: an answer grows with them.
std::shared_ptr<ViewModel> hostileViewModel() {
    const auto dataset = [] { return pick(0, 5) ? sptr_t<IDataset>(new Dataset(hostileTable())) : nullptr; };
    const auto self = dataset();
    auto viewModel = makeViewModel(self, pick(0, 3) ? dataset() : self, *rc::gen::element(0, 1, 2, 5, 1000));
    viewModel->datasets[DataType::Gpu] = self;
    viewModel->datasets[DataType::GpuStatistics] = viewModel->datasets[DataType::CpuTopDown];
    for (int* const count :
         {&viewModel->physical, &viewModel->logical, &viewModel->packages, &viewModel->used})
        *count = *rc::gen::element(0, 1, 8, 64, -3, std::numeric_limits<int>::min());
    viewModel->elapsedTime = (*rc::gen::elementOf(hostileValues())).toDouble();
    viewModel->throws = pick(0, 5) == 0;
    if (pick(0, 4) == 0) return viewModel;
    const auto roofs = std::make_shared<RoofTable>();
    for (int i = pick(0, 4); i > 0; --i)
        roofs->roofs.push_back({.id = static_cast<RoofId>(*rc::gen::arbitrary<int>()),
                                .name = std::string((*rc::gen::elementOf(hostileValues())).text()),
                                .value = *rc::gen::arbitrary<std::uint64_t>(),
                                .typeBits = *rc::gen::arbitrary<std::uint64_t>(),
                                .memoryLevel = static_cast<MemoryLevel>(*rc::gen::arbitrary<std::uint64_t>()),
                                .roofOpType = {},
                                .arithType = static_cast<ArithTypeExtDef>(*rc::gen::arbitrary<unsigned>())});
    viewModel->roofs = roofs;
    return viewModel;
}

// The same hostile answers as those of a program on a target.
class Projection final : public IPerfProjectionViewModel {
public:
    Projection(std::shared_ptr<ViewModel> host, std::string memory)
        : m_host(std::move(host)), m_memory(std::move(memory)) {}
    sptr_t<IDataset> getDataset(DataType) const override { return m_host->getDataset(DataType::Cpu); }
    std::shared_ptr<IRoofManager> getRoofManager(DataType type) const override {
        return m_host->getRoofManager(type);
    }
    ProgramInfo getProgramInfo() const override { return m_host->getProgramInfo(); }
    std::string getResultDirectory() const override { return {}; }
    LoadSignal& onResultLoaded() override { return m_host->loaded; }
    std::string getTargetMemoryName() const override {
        return m_host->throws ? throw std::runtime_error("no answer") : m_memory;
    }

private:
    const std::shared_ptr<ViewModel> m_host;
    const std::string m_memory;
};

std::shared_ptr<IRooflineInfo> hostileEngine(const std::shared_ptr<ViewModel>& viewModel) {
    const int kind = pick(0, 3);
    if (kind == 0) return createRooflineInfo(viewModel);
    if (kind == 1) return createGpuRooflineInfo(viewModel);
    const std::string memory = *rc::gen::element("HBM", "DRAM", "L1", "", "\xFF\"");
    return createOffloadRooflineInfo(std::make_shared<Projection>(viewModel, memory));
}

// An answer is an empty text or parses; an exception that leaves fails the property.
void check(const std::string& answer) {
    if (!answer.empty()) RC_ASSERT(faultOf(answer) == std::string());
}

// Every operation of a region, whatever its dataset is.
void sweepRegion(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset,
                 const std::shared_ptr<IRoofManager>& roofs) {
    const auto region = createOffloadRowRooflineInfo(row, dataset, roofs, pick(0, 2) == 0);
    if (!region) return;
    check(region->getRooflineData());
    const std::vector<variant_bag_t> bags{region->getRooflineVariantBag(),
                                          region->getMemoryMetricsVariantBag(),
                                          region->getBotteleneckVariantBag(std::vector<std::string>{"\xFF"})};
    for (const auto& bag : bags) RC_ASSERT(faultOf(saveBag(bag)) == std::string());
    for (const auto type : {RooflineMemoryValuesType::Traffic, RooflineMemoryValuesType::Time})
        RC_ASSERT(region->getMemoryValues(type).size() <= region->getMemLevelPoints().size());
    const bool isKnown = region->getPoint().operationsType != OperationsType::Undefined;
    RC_ASSERT(isKnown || !region->isValid());
    for (const bool total : {true, false}) region->getLimitingRoof(total);
    RC_ASSERT(region->getMemoryRoofs().empty() || roofs);
}

void sweep(IRooflineInfo& engine, const std::vector<sptr_t<IDataset>>& datasets,
           const std::string& configuration) {
    check(engine.getRooflineOptions());
    check(engine.getThreadsInfo());
    for (const int number : {1, 2, 3, 77, -1}) {
        const auto perspective = static_cast<IRooflineInfo::Perspective>(number);
        const auto strategy = static_cast<RoofThreadingFeatures::Strategy>(number);
        check(engine.getRoofs(configuration, {number, strategy, -1}, perspective));
        check(engine.getSelectedRoofs(configuration, perspective));
        engine.clearHighlighting(static_cast<DataType>(number));
    }
    check(engine.getAllRoofs(configuration));
    check(engine.getLoopAdditionalInfo(configuration, nullptr, configuration));
    check(engine.getComparisonData({}, configuration, configuration));
    check(engine.getReportTemplate(nullptr));
    engine.getRooflineConfigurationStr({configuration, "i", ""});
    for (const auto& dataset : datasets) {
        check(engine.getRooflineData(dataset, configuration));
        check(engine.getRooflineData(dataset, *rc::gen::elementOf(datasets), configuration));
        for (const auto& row : dataset ? rowsOf(dataset) : std::vector<sptr_t<RowNode>>{nullptr}) {
            engine.getDominatingOperationType(row);
            engine.getDominatingFloatType(row);
            engine.getDominatingIntType(row);
        }
    }
    engine.loadSummaryData(0, {});  // another kind with an empty callback is the one call that throws
    for (const int kind : {0, 1, -1}) engine.loadSummaryData(kind, check);
    engine.setCustomRoofValues(RoofId::None, ~0ULL, {});
    engine.clearCustomRoofValues({});
}

TEST(HostileData, IsAnsweredWithTextsThatParse) {
    const Assertions quiet;
    const std::vector<std::string> configurations{"",
                                                  "f-1",
                                                  "f-i-b-0-1-L1-L2-L3-L4-DRAM-load-all",
                                                  "b-0-DRAM-store",
                                                  "i-0",
                                                  "i-CARMgpu-L3gpu-XLIgpu",
                                                  "\xFF\"\\-L9--",
                                                  std::string(10'000, 'f')};
    EXPECT_TRUE(rc::check([&] {
        const auto viewModel = hostileViewModel();
        const auto engine = hostileEngine(viewModel);
        const sptr_t<IDataset> foreign(new Dataset(hostileTable()));
        const std::vector<sptr_t<IDataset>> datasets{nullptr, viewModel->datasets[DataType::Cpu],
                                                     viewModel->datasets[DataType::CpuTopDown], foreign};
        const std::string configuration = *rc::gen::elementOf(configurations);
        sweep(*engine, datasets, configuration);
        viewModel->throws = !viewModel->throws;
        viewModel->load();
        sweep(*engine, datasets, configuration);
    }));
}

TEST(HostileData, OfARegionIsAnsweredWithTextsThatParse) {
    const Assertions quiet;
    EXPECT_TRUE(rc::check([] {
        const auto viewModel = hostileViewModel();
        const auto dataset = viewModel->datasets[DataType::Cpu];
        for (const auto& row : dataset ? rowsOf(dataset) : std::vector<sptr_t<RowNode>>{nullptr})
            sweepRegion(row, dataset, viewModel->roofs);
        sweepRegion(nullptr, dataset, viewModel->roofs);
    }));
}

TEST(HostileData, OfAFailedReadLeavesTheNextChartAsItWas) {
    const std::string row = "a SelfTime=1 SelfElapsedTime=1 SelfGFlops=10 SelfFloatAi=1";
    const auto good = makeDataset(row);
    const auto viewModel = makeViewModel(good, good);
    const auto expected = createRooflineInfo(viewModel)->getRooflineData(good, good, "f-1");
    ASSERT_TRUE(parse(expected).HasMember("loops"));
    int reads = 0;
    for (std::string answer; reads < 1000 && answer != expected; ++reads) {
        auto table = tableOf(row);
        table.readsBeforeThrow = reads;
        const sptr_t<IDataset> bad(new Dataset(table));
        const auto engine = createRooflineInfo(viewModel);
        answer = engine->getRooflineData(bad, bad, "f-1");
        EXPECT_EQ(engine->getRooflineData(good, good, "f-1"), expected) << reads;
    }
    EXPECT_TRUE(reads > 5 && reads < 1000);
}

TEST(HostileData, OfATreeOfAnyDepthNeedsNoStack) {
    auto table = tableOf(
        "a SelfTime=1 SelfElapsedTime=1 SelfGFlops=10 SelfFloatAi=1 TotalGFlops=10 TotalFloatAi=1"
        " SelfFloatOps=1 SelfL1Load=1 SelfDramLoad=2 TotalFloatOps=1 TotalL1Load=1 TotalDramLoad=2");
    for (int depth = 1; depth < 10'000; ++depth) {
        table.rows.push_back(table.rows.front());
        table.rows.back().parent = depth - 1;
    }
    const sptr_t<IDataset> dataset(new Dataset(table));
    const auto engine = createRooflineInfo(makeViewModel(dataset, dataset, 5));
    const auto chart = parse(engine->getRooflineData(dataset, "f-0-L1-DRAM-load"));
    ASSERT_EQ(chart["loops"].Size(), 20'000u);
    EXPECT_EQ(chart["loops"][19'999]["parent"].GetInt(), 19'997);
}

}  // namespace
}  // namespace data_models2::test
