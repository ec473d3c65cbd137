// Numbers of a file become the nearest doubles, in whatever form they stand.
#include "host_interfaces/model.h"

#include "embedded_host/embedded_host.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace data_models2;

// The value of a cell that stands in a file as `number`.
double readNumber(const std::string& number) {
    const std::string start = R"({"format": "roofline-result", "version": 1, "kind": "cpu",)";
    const std::string row = R"("rows": [{"id": 1, "cells": {"SelfTime": )" + number + "}}]}";
    const auto result = embedded_host::parseResult(start + row, "numbers.json");
    const auto dataset = result->viewModel()->getDataset(DataType::Cpu);
    variant_t cell;
    EXPECT_TRUE(dataset->getValue(*dataset->getRows(0), dataset->getColumn(FieldId::SelfTime), 0, cell))
        << number;
    return cell.toDouble();
}

TEST(NumberReading, GivesTheNearestDoubleWhateverTheForm) {
    EXPECT_EQ(readNumber("2.2250738585072011e-308"), 2.2250738585072011e-308);
    EXPECT_EQ(readNumber("9007199254740993"), 9007199254740992.0);
    EXPECT_EQ(readNumber("179769313486231570000e288"), 1.7976931348623157e308);
    EXPECT_EQ(readNumber("0e232"), 0.0);
    EXPECT_EQ(readNumber("0." + std::string(330, '0') + "6151611032038197712"), 0.0);
    EXPECT_EQ(readNumber("0." + std::string(330, '0') + "6151611032038197712e330"), 0.6151611032038197712);
}

}  // namespace
