// Results of kind offload: regions on a target, what is derived for them, the target and its roofs.
#include "host_interfaces/signals.h"

#include "tests/embedded_host/result_text.h"

#include <gtest/gtest.h>

namespace embedded_host::test {
namespace {
using namespace data_models2;

std::shared_ptr<Result> openOffload(const std::string& rows, const std::string& members = "") {
    return parseResult(offloadText(rows, members), "test.json");
}

TEST(OffloadResult, DerivesTotalsFromBytesAndOperationsByWidth) {
    const auto result = openOffload(R"(
        {"id": 4, "cells": {"FunctionName": "axpy", "OffloadElapsedTime": 0.5, "OffloadFloat32Ops": 1,
                            "OffloadFloat64Ops": 3, "OffloadInt64Ops": 2, "OffloadL1Bytes": 8e9,
                            "OffloadHbmBytes": 4e9}},
        {"id": 7, "cells": {"OffloadElapsedTime": 0.25, "OffloadFloat64Ops": 3, "TotalFloatOps": 5,
                            "OffloadXliBytes": 1e9}},
        {"id": 9, "cells": {"OffloadL1Bytes": 0, "OffloadInt32Ops": 2}})");
    EXPECT_EQ(result->kind(), ResultKind::Offload);
    EXPECT_FALSE(result->viewModel());
    const auto view = result->projection();
    EXPECT_FALSE(view->getDataset(DataType::Cpu));
    const auto regions = view->getDataset(DataType::Offload);
    EXPECT_EQ(regions->getDataType(), DataType::Offload);
    std::string lines;
    for (const auto& row : listOf(regions->getRows(0))) lines += cellsOf(regions, row) + "\n";
    EXPECT_EQ(lines,
              "FunctionName=axpy MangledName=axpy TotalFloatOps=4 TotalIntOps=2 TotalMem=8 TotalFloatAi=0.5"
              " TotalGFlops=8 TotalGIntOps=4 TotalIntAi=0.25 TotalMixedOps=6 TotalGMixedOps=12"
              " TotalMixedAi=0.75 OffloadInt64Ops=2 OffloadFloat32Ops=1 OffloadFloat64Ops=3"
              " OffloadElapsedTime=0.5 OffloadL1Bytes=8e+09 OffloadL1Bandwidth=1.6e+10"
              " OffloadHbmBytes=4e+09 OffloadHbmBandwidth=8e+09\n"
              "TotalFloatOps=5 TotalGFlops=20 TotalMixedOps=5 TotalGMixedOps=20 OffloadFloat64Ops=3"
              " OffloadElapsedTime=0.25 OffloadXliBytes=1e+09 OffloadXliBandwidth=4e+09\n"
              "TotalIntOps=2 TotalMem=0 TotalMixedOps=2 OffloadInt32Ops=2 OffloadL1Bytes=0\n");
    EXPECT_EQ(view->getProgramInfo().elapsedTime, 0.75);

    struct : subscriber_base_t {
        int loads = 0;
    } subscriber;
    view->onResultLoaded().connect(subscriber,
                                   [&](IViewModelBase::LoadType, const std::string&) { ++subscriber.loads; });
    result->load(IViewModelBase::LoadType::Result);
    EXPECT_EQ(subscriber.loads, 1);
}

TEST(OffloadResult, TakesTheTargetOfTheResultElseTheDeviceOfTheMachine) {
    const std::string ofMachine =
        R"(, "machine": )" + machineText(R"({"id": 25, "value": 30, "unit": "GB/s"})",
                                         R"(, "device": {"name": "M", "memory": "HBM", "subDevices": 2})");
    const std::tuple<std::string, const char*, const char*> cases[] = {
        {"", "", ""},
        {ofMachine, "M", "HBM"},
        {R"(, "target": {"name": "T", "memory": "L3"})" + ofMachine, "T", "L3"},
        {R"(, "target": {"name": "T"})" + ofMachine, "T", "HBM"},
    };
    for (const auto& [members, name, memory] : cases) {
        const auto result = openOffload("", members);
        EXPECT_EQ(result->targetName(), name) << members;
        EXPECT_EQ(result->projection()->getTargetMemoryName(), memory) << members;
    }
    const auto roofs = openOffload("", ofMachine)->projection()->getRoofManager(DataType::Offload);
    const auto roofOf = [&](TileUsage usage) {
        return (*roofs->getRoofs(roof::getGpuRoofConfiguration(usage, OperationsType::Undefined))).value;
    };
    EXPECT_EQ(roofOf(TileUsage::Single), 30'000'000'000U);
    EXPECT_EQ(roofOf(TileUsage::Multi), 60'000'000'000U);

    EXPECT_FALSE(parseResult(resultText(""), "test.json")->projection());
}

}  // namespace
}  // namespace embedded_host::test
