// Results of kind gpu: kernels, the statistics below them, what bounds them, their device and its roofs.
#include "tests/embedded_host/result_text.h"

#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>

namespace embedded_host::test {
namespace {
using namespace data_models2;

std::shared_ptr<ISurveyingViewModel> gpuViewOf(const std::string& rows, const std::string& members = "") {
    return parseResult(gpuText(rows, members), "test.json")->viewModel();
}

// A row and all below it, one a line: depth as blanks, the id where a file gives it, type bits, cells.
std::string treeOf(const sptr_t<IDataset>& dataset, RowIterator rows, const std::string& indent = "") {
    std::string text;
    for (const auto& row : listOf(std::move(rows))) {
        const auto id = row->getId() >> 63 ? std::string("*") : std::to_string(row->getId());
        text += fmt::format("{}{} {:x} {}\n", indent, id, row->getSpecification()->getRowType(),
                            cellsOf(dataset, row));
        text += treeOf(dataset, dataset_helpers::getChildren(row), indent + "  ");
    }
    return text;
}

const std::string kRows = R"(
    {"id": 7, "kind": "region", "cells": {"FunctionName": "step"}, "children": [
        {"id": 9, "cells": {"FunctionName": "axpy", "GpuElapsedTime": 0.5, "SelfFloatOps": 4, "SelfIntOps": 1,
                            "GpuCarmTraffic": 8, "GpuL3Traffic": 2, "GpuSlmTraffic": 0},
         "boundedBy": ["L3_BW", "Latencies"],
         "statistics": [
            {"instruction": "fma", "type": "float", "width": 32, "operations": 3.5, "instructions": 70},
            {"instruction": "load", "instructions": 9}]},
        {"id": 8, "cells": {"FunctionName": "copy", "GpuElapsedTime": 0.25, "GpuMemTraffic": 3}}]},
    {"id": 3, "cells": {"FunctionName": "sum"}, "boundedBy": "Compute",
     "statistics": [{"instruction": "bit", "type": "int", "width": 64, "operations": 2}]})";

TEST(GpuResult, ShowsKernelsAndTheSameRowsWithStatistics) {
    const auto view = gpuViewOf(kRows);
    EXPECT_FALSE(view->getDataset(DataType::Cpu));
    const auto kernels = view->getDataset(DataType::Gpu);
    EXPECT_EQ(kernels->getDataType(), DataType::Gpu);
    // Nothing of totals: whether a row has total metrics decides which of its cells are read.
    EXPECT_EQ(treeOf(kernels, kernels->getRows(0)),
              "7 0 FunctionName=step MangledName=step\n"
              "  9 1000000 FunctionName=axpy MangledName=axpy SelfFloatOps=4 SelfIntOps=1 SelfFloatAi=0.5"
              " SelfGFlops=8 SelfGIntOps=2 SelfIntAi=0.125 GpuL3Traffic=2 GpuSlmTraffic=0"
              " GpuElapsedTime=0.5 GpuL3Bandwidth=4 GpuCarmTraffic=8\n"
              "  8 1000000 FunctionName=copy MangledName=copy GpuMemTraffic=3 GpuElapsedTime=0.25\n"
              "3 1000000 FunctionName=sum MangledName=sum\n");
    const auto statistics = view->getDataset(DataType::GpuStatistics);
    EXPECT_EQ(treeOf(statistics, statistics->getRows(0)),
              "7 0 FunctionName=step\n"
              "  9 1000000 FunctionName=axpy\n"
              "    * 0 GpuArithType=3 GpuArithWidth=32 GpuInstructionType=3 GpuOperationCount=3.5"
              " GpuInstructionCount=70\n"
              "    * 0 GpuInstructionType=7 GpuInstructionCount=9\n"
              "  8 1000000 FunctionName=copy\n"
              "3 1000000 FunctionName=sum\n"
              "  * 0 GpuArithType=2 GpuArithWidth=64 GpuInstructionType=17 GpuOperationCount=2\n");
    EXPECT_EQ(view->getTotalTime(), 0.75);
    EXPECT_EQ(view->getProgramInfo().elapsedTime, 0.75);
}

TEST(GpuResult, LinksItsRowsToThoseWithStatistics) {
    const auto view = gpuViewOf(kRows);
    EXPECT_FALSE(view->getRowLinker(DataType::Cpu, DataType::GpuStatistics));
    const auto linker = view->getRowLinker(DataType::Gpu, DataType::GpuStatistics);
    const auto statistics = view->getDataset(DataType::GpuStatistics);
    EXPECT_FALSE(linker->getLinkedRow({}));
    const auto top = listOf(view->getDataset(DataType::Gpu)->getRows(0));
    for (const auto& row : {top[0], top[1], listOf(dataset_helpers::getChildren(top[0]))[0]}) {
        const auto linked = linker->getLinkedRow(row);
        ASSERT_TRUE(linked);
        EXPECT_EQ(linked->getId(), row->getId());
        EXPECT_NE(cell(statistics, linked, FieldId::FunctionName), "-") << "a row of the other dataset";
    }
    const auto other = gpuViewOf(R"({"id": 4})")->getDataset(DataType::Gpu);
    EXPECT_FALSE(linker->getLinkedRow(*other->getRows(0)));
}

TEST(GpuResult, SaysWhatBoundsARow) {
    const auto rows = listOf(gpuViewOf(kRows)->getDataset(DataType::Gpu)->getRows(0));
    const auto axpy = *dataset_helpers::getChildren(rows[0]);
    EXPECT_EQ(saveBag(issue_helpers::getRowIssues(axpy)), R"({"bounded_by":["L3_BW","Latencies"]})");
    EXPECT_EQ(saveBag(issue_helpers::getRowIssues(rows[1])), R"({"bounded_by":["Compute"]})");
    EXPECT_TRUE(issue_helpers::getRowIssues(rows[0]).empty());
    EXPECT_TRUE(issue_helpers::getRowIssues({}).empty());
}

TEST(GpuResult, TakesTheDeviceOfTheResultElseOfTheMachine) {
    const std::string ofMachine =
        R"(, "machine": )" + machineText("", R"(, "packages": 4, "device": {"name": "M", "memory": "XLI"})");
    const std::string ofResult = R"(, "device": {"name": "R", "memory": "HBM", "subDevices": 2})";
    const std::tuple<std::string, const char*, const char*, int> cases[] = {
        {"", "-", "DRAMgpu", 1},
        {ofMachine, "M", "XLIgpu", 4},
        {ofResult, "R", "HBMgpu", 2},
        {ofMachine + ofResult, "R", "HBMgpu", 2},
        {R"(, "device": {})", "", "DRAMgpu", 1},
    };
    for (const auto& [members, name, memory, subDevices] : cases) {
        const auto view = gpuViewOf("", members);
        EXPECT_FALSE(view->getDeviceInfo(TargetDeviceType::Cpu)) << members;
        EXPECT_EQ(view->getDeviceInfo(TargetDeviceType::Gpu).value_or(DeviceInfo{"-"}).name, name) << members;
        EXPECT_EQ(view->getMemoryLevelNames().back(), memory) << members;
        EXPECT_EQ(view->getPackageCount(), subDevices) << members;
    }
    for (const std::string uncharted : {"GDDR6", "EDRAM", "LLC"})
        EXPECT_EQ(refusalOf(gpuText("", R"(, "device": {"memory": ")" + uncharted + "\"}")),
                  R"(test.json: /device/memory: expected "DRAM" for a memory that no chart of a device )"
                  R"(has a level for, found the text ")" +
                      uncharted + '"');
}

TEST(GpuRoofTable, ScalesByTheSubDevicesAskedFor) {
    // Two sub-devices. Roof 1 was measured on one of them, 25 on both, 7 on each and on both, 23 is a link.
    const auto roofs =
        gpuViewOf("", R"(, "device": {"subDevices": 2}, "machine": )" +
                          machineText(
                              R"(
        {"id": 1, "value": 100, "unit": "GB/s"},
        {"id": 25, "value": 30, "unit": "GB/s", "packages": 2},
        {"id": 7, "value": 55, "unit": "GFLOP/s"}, {"id": 7, "value": 100, "unit": "GFLOP/s", "packages": 2},
        {"id": 16, "value": 9, "unit": "GINTOP/s", "how": "assumed"},
        {"id": 23, "value": 5, "unit": "GB/s"},
        {"id": 90, "name": "Matrix", "value": 500, "unit": "GFLOP/s", "arith": "float16",
         "opKind": "matrix"})",
                              R"(, "custom": [{"id": 16, "value": 20, "unit": "GINTOP/s", "packages": 2}])"))
            ->getRoofManager(DataType::Gpu);
    using enum OperationsType;
    using enum TileUsage;
    using roof::getGpuRoofConfiguration;
    const std::tuple<std::string, const char*> cases[] = {
        {getGpuRoofConfiguration(Single, Undefined), "1=100 7=55 16=9 23=5 25=15 90=500"},
        {getGpuRoofConfiguration(Multi, Undefined), "1=200 7=100 16=20 23=5 25=30 90=1000"},
        {getGpuRoofConfiguration(Multi, Float), "1=200 7=100 23=5 25=30 90=1000"},
        {getGpuRoofConfiguration(Multi, Int), "1=200 16=20 23=5 25=30"},
        {"", "1=200 7=100 16=20 23=5 25=30 90=1000"},
        {"tiles=3;operations=0", ""},
        {roof::getCpuRoofConfiguration({}, OperationsType::Mixed, IRooflineInfo::Perspective::Program), ""},
    };
    for (const auto& [configuration, expected] : cases)
        EXPECT_EQ(roofsOf(roofs->getRoofs(configuration)), expected) << configuration;
    EXPECT_EQ(listOf(roofs->getRoofs("")).back().roofOpType, RoofOpType::Matrix);
}

}  // namespace
}  // namespace embedded_host::test
