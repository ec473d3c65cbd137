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
    constexpr double kMax = std::numeric_limits<double>::max();
    static const auto values = [](auto... all) { return std::vector<variant_t>{variant_t(all)...}; }(
                                   1.0, 100.0, "name", 7u, 0.0, -0.0, -1.0, 1e-300, kMax, NAN, HUGE_VAL,
                                   -HUGE_VAL, "", "FMA", 8u, "\"\\'\n\x01\x7F%1%%", std::string("a\0b", 3),
                                   "\xFF\xC3('", std::string(10'000, '\''), variant_t::literal("it's"),
                                   std::numeric_limits<std::int64_t>::min(), ~0ULL, -1, true, 1e30f,
                                   variant_t(), variant_t::object(new SharedText("object")));
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
    for (int i = pick(0, 4); i > 0; --i)
        viewModel->roofs->roofs.push_back(
            {.id = static_cast<RoofId>(*rc::gen::arbitrary<int>()),
             .name = std::string((*rc::gen::elementOf(hostileValues())).text()),
             .value = *rc::gen::arbitrary<std::uint64_t>(),
             .typeBits = *rc::gen::arbitrary<std::uint64_t>(),
             .memoryLevel = static_cast<MemoryLevel>(*rc::gen::arbitrary<std::uint64_t>()),
             .roofOpType = {},
             .arithType = static_cast<ArithTypeExtDef>(*rc::gen::arbitrary<unsigned>())});
    if (pick(0, 4) == 0) viewModel->roofs = nullptr;
    return viewModel;
}

std::shared_ptr<IRooflineInfo> hostileEngine(std::shared_ptr<ViewModel> viewModel) {
    const int kind = pick(0, 3);
    if (kind == 0) return createRooflineInfo(viewModel);
    if (kind == 1) return createGpuRooflineInfo(viewModel);
    viewModel->datasets[DataType::Offload] = viewModel->datasets[DataType::Cpu];
    viewModel->targetMemory = *rc::gen::element("HBM", "DRAM", "L1", "", "\xFF\"");
    return createOffloadRooflineInfo(viewModel);
}

// An answer is an empty text or parses; an exception that leaves fails the property.
void check(const std::string& answer) {
    if (!answer.empty()) RC_ASSERT(faultOf(answer) == std::string());
}

// Every operation of a row, whatever its dataset is.
void sweepRow(IRowRooflineInfo& row) {
    check(row.getRooflineData());
    const std::vector<variant_bag_t> bags{row.getRooflineVariantBag(), row.getMemoryMetricsVariantBag(),
                                          row.getBotteleneckVariantBag({"\xFF", "more"})};
    for (const auto& bag : bags) RC_ASSERT(faultOf(saveBag(bag)) == std::string());
    for (const int type : {0, 1, 2, 3, -1}) {
        row.getComputeRoof(static_cast<OperationsType>(type));
        const auto values = row.getMemoryValues(static_cast<RooflineMemoryValuesType>(type));
        RC_ASSERT(values.size() <= row.getMemLevelPoints().size());
        row.getLimitingRoof(type > 0);
    }
    auto roofs = row.getMemoryRoofs();
    row.extendMemoryRoofs(roofs);
    RC_ASSERT(row.getPoint().operationsType != OperationsType::Undefined || !row.isValid());
}

// A result whose rows have most of what they need.
variant_t mostlyGood() {
    return pick(0, 3) ? *rc::gen::element<variant_t>(1.0, 50.0) : *rc::gen::elementOf(hostileValues());
}

std::shared_ptr<ViewModel> hostileResult() {
    const int sparseness = *rc::gen::element(0, 1, 3, 20);
    const auto dataset = [&](DataType type) {
        Table table{{}, type};
        table.rows.resize(static_cast<std::size_t>(pick(1, 4)));
        for (auto& row : table.rows) {
            if (pick(0, 5) == 0) row.type.reset();
            for (const auto& field : kFields)
                if (pick(0, sparseness + 1) == 0 && (field.id < FieldId::TripCounts || pick(0, 2)))
                    row.cells[field.id] = mostlyGood();
        }
        return sptr_t<IDataset>(new Dataset(table));
    };
    const auto view = makeViewModel(dataset(DataType::Cpu), dataset(DataType::CpuTopDown), pick(0, 6));
    auto& roofs = view->roofs->roofs;
    for (int i = 0; i < 25; ++i) {  // each of the ids, some of them twice
        const int id = 1 + i % 17;
        if (!pick(0, 3)) continue;
        roofs.push_back(makeRoof(RoofId(id), pick(0, 9) ? "roof" : "\xFF\"", 40, MemoryLevel(id < 7 ? id : 0),
                                 id < 13 ? ArithTypeExtDef::Float64 : ArithTypeExtDef::Int32));
        if (!pick(0, 3)) roofs.back().value = *rc::gen::element<std::uint64_t>(0, 1, ~0ULL);
    }
    view->used = *rc::gen::element(0, 1, 7, -3, std::numeric_limits<int>::max());
    view->physical = *rc::gen::element(0, 16, std::numeric_limits<int>::max(), -1);
    return view;
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
    EXPECT_TRUE(rc::check([&] {
        const auto viewModel = hostileViewModel();
        const auto engine = hostileEngine(viewModel);
        const sptr_t<IDataset> foreign(new Dataset(hostileTable()));
        const std::vector<sptr_t<IDataset>> datasets{nullptr, viewModel->datasets[DataType::Cpu],
                                                     viewModel->datasets[DataType::CpuTopDown], foreign};
        const auto configuration = *rc::gen::element<std::string>(
            "", "f-1", "f-i-b-0-1-L1-L2-L3-L4-DRAM-load-all", "b-0-DRAM-store", "i-0",
            "i-CARMgpu-L3gpu-XLIgpu", "\xFF\"\\-L9--", std::string(10'000, 'f'));
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
            if (const auto region =
                    createOffloadRowRooflineInfo(row, dataset, viewModel->roofs, pick(0, 2) == 0)) {
                sweepRow(*region);
                RC_ASSERT(region->getMemoryRoofs().empty() || viewModel->roofs);
            }
        RC_ASSERT(!createOffloadRowRooflineInfo(nullptr, dataset, viewModel->roofs, false)->isValid());
    }));
}

TEST(HostileData, OfARowIsAnsweredWithTextsThatParse) {
    const Assertions quiet;
    int valid = 0;
    EXPECT_TRUE(rc::check([&] {
        const auto view = hostileResult();
        for (const auto& [type, dataset] : view->datasets)
            for (const auto& node : rowsOf(dataset)) {
                const InstructionMix mix{{11, mostlyGood()}, {3, mostlyGood()}, {74, mostlyGood()}};
                const auto row = createRowRooflineInfo(node, dataset, view->roofs, mix, pick(-1, 5),
                                                       std::make_shared<RoofThreadingFeatures>());
                RC_ASSERT(row != nullptr);
                sweepRow(*row);
                RC_ASSERT(faultOf(row->getRooflineData()) == std::string());
                valid += row->isValid();
            }
        const std::string configuration = *rc::gen::element("", "f-1", "i-1", "b-0", "f-0-L1-DRAM-load", "x");
        const auto request =
            *rc::gen::element(R"({"item": [1, 2, 3]})", R"({"item": ["1"], "threadCount": 4294967295})");
        const ComparisonData pair{view, view, DataType::Cpu, {}};
        const auto engine = createRooflineInfo(view);
        const auto loops = engine->getLoopAdditionalInfo(request, nullptr, configuration);
        check(loops);
        RC_ASSERT(!loops.empty() || configuration == "x" || configuration.empty());
        const auto compared = engine->getComparisonData(pair, R"({"first": 1, "second": 9})", configuration);
        RC_ASSERT(faultOf(compared) == "");
    }));
    EXPECT_GT(valid, 20) << "rows that have all";
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
