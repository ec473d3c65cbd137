// What is derived of the cells given: text in, text out. The rows run on 4 threads.
#include "tests/embedded_host/result_text.h"

#include <gtest/gtest.h>

namespace embedded_host::test {
namespace {
using namespace data_models2;

constexpr const char* kFourThreads = R"(, "program": {"usedThreads": 4})";

// The row under test stands between others, so that whole columns and single cells are filled alike.
TEST(Derivation, FillsWhatFollowsAndNothingElse) {
    std::string full;
    for (const auto& field : kFields) {
        const bool isText = field.type == FieldType::Text;
        full += fmt::format("{}\"{}\": {}", full.empty() ? "" : ", ", field.name, isText ? "\"t\"" : "1");
    }
    const std::pair<const char*, const char*> cases[] = {
        {R"("SelfTime": 8)", "SelfTime=8 TotalTime=8 SelfElapsedTime=2 TotalElapsedTime=2"},
        {R"("SelfTime": 8, "SelfElapsedTime": 5)",
         "SelfTime=8 TotalTime=8 SelfElapsedTime=5 TotalElapsedTime=5"},
        {R"("SelfL1Load": 3, "SelfL1Store": 1, "SelfDramStore": 2)",
         "SelfMemL1=4 TotalMem=4 SelfL1Load=3 SelfL1Store=1 TotalL1Load=3 TotalL1Store=1 SelfDramStore=2 "
         "SelfMemDram=2 TotalDramStore=2"},
        {R"("SelfFloatOps": 6, "SelfMemL1": 3, "SelfElapsedTime": 2)",
         "SelfTime=8 TotalTime=8 SelfFloatOps=6 SelfMemL1=3 SelfFloatAi=2 SelfGFlops=3 SelfElapsedTime=2 "
         "TotalFloatOps=6 TotalMem=3 TotalFloatAi=2 TotalGFlops=3 TotalElapsedTime=2 SelfMixedOps=6 "
         "SelfGMixedOps=3 SelfMixedAi=2 TotalMixedOps=6 TotalGMixedOps=3 TotalMixedAi=2"},
        {R"("SelfIntOps": 6, "SelfMixedOps": 6, "SelfElapsedTime": 2, "SelfGIntOps": 9)",
         "SelfTime=8 TotalTime=8 SelfIntOps=6 SelfElapsedTime=2 TotalIntOps=6 TotalElapsedTime=2 "
         "SelfGIntOps=9 TotalGIntOps=3 SelfMixedOps=6 SelfGMixedOps=3 TotalMixedOps=6 TotalGMixedOps=3"},
        {R"("SelfIntOps": 6, "SelfMemL1": 0, "SelfTime": 0)",
         "SelfTime=0 TotalTime=0 SelfIntOps=6 SelfMemL1=0 SelfElapsedTime=0 TotalIntOps=6 TotalMem=0 "
         "TotalElapsedTime=0 SelfMixedOps=6 TotalMixedOps=6"},
        {R"("SelfL1Load": 1.5e308, "SelfL1Store": 1.5e308, "SelfElapsedTime": 1e308)",
         "SelfElapsedTime=1e+308 TotalElapsedTime=1e+308 SelfL1Load=1.5e+308 SelfL1Store=1.5e+308 "
         "TotalL1Load=1.5e+308 TotalL1Store=1.5e+308"},
        {R"("FunctionName": "f")", "FunctionName=f MangledName=f"},
        {R"("FunctionName": "f", "MangledName": "_Z1f")", "FunctionName=f MangledName=_Z1f"},
    };
    for (const auto& [given, expected] : cases) {
        SCOPED_TRACE(given);
        const auto cells = fmt::format(R"("cells": {{{}}})", given);
        const auto alone = viewOf(R"({"id": 1, )" + cells + "}", kFourThreads)->getDataset(DataType::Cpu);
        EXPECT_EQ(cellsOf(alone, *alone->getRows(0)), expected);
        const auto rows = fmt::format(R"({{"id": 1, "cells": {{{0}}}}}, {{"id": 2, {1}, "children": []}},
                                         {{"id": 3}}, {{"id": 4, "children": [{{"id": 5, {1}}}]}})",
                                      full, cells);
        const auto among = viewOf(rows, kFourThreads)->getDataset(DataType::CpuTopDown);
        EXPECT_EQ(cellsOf(among, listOf(among->getRows(0))[1]), expected);
    }
}

TEST(Derivation, TakesIdAndThreadsFromRowAndProgramUnlessTheyAreGiven) {
    const auto dataset =
        viewOf(R"({"id": 12}, {"id": 13, "cells": {"RowKey": 4, "Rva": "0x10", "ThreadCount": 2}})",
               kFourThreads)
            ->getDataset(DataType::Cpu);
    std::string text;
    for (const auto& row : listOf(dataset->getRows(0)))
        for (const auto field : {FieldId::RowKey, FieldId::Rva, FieldId::ThreadCount})
            text += cell(dataset, row, field) + " ";
    EXPECT_EQ(text, "12 12 4 4 0x10 2 ");
}

TEST(Derivation, ProgramsElapsedTimeIsThatOfTheTopRowsUnlessItIsGiven) {
    constexpr const char* rows = R"({"id": 1, "cells": {"SelfTime": 4}, "children": [{"id": 2, "cells":
        {"SelfElapsedTime": 2}}]}, {"id": 3, "cells": {"SelfTime": 2}}, {"id": 4})";
    const auto view = viewOf(rows, R"(, "program": {"usedThreads": 2, "name": "p"})");
    EXPECT_EQ(view->getProgramInfo().elapsedTime, 5.0);
    EXPECT_EQ(view->getTotalTime(), 10.0);
    EXPECT_EQ(viewOf(rows, R"(, "program": {"elapsedTime": 0.5})")->getProgramInfo().elapsedTime, 0.5);
}

}  // namespace
}  // namespace embedded_host::test
