// The program's subcommands on projections, and a projection beside what was measured.
#include "cli/json.h"
#include "tests/cli/program_run.h"

#include <boost/property_tree/xml_parser.hpp>
#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <tuple>

namespace cli {
namespace {

using test::run;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Arguments = std::vector<std::string>;

const std::string kExample = OMBRIX_SOURCE_DIR "/examples/offload_v100/";
const std::string kHost = kExample + "host.json", kProjected = kExample + "projected.json",
                  kMeasured = kExample + "measured.json";

struct Projection : test::FolderTest {
    // A row bound by memory, one bound by arithmetic, and one that can't be projected.
    const std::string host = file("host.json", R"({"format": "roofline-result", "version": 1, "kind": "cpu",
        "program": {"name": "<p>"}, "rows": [
        {"id": 1, "cells": {"FunctionName": "stream", "SelfElapsedTime": 2,
             "SelfFloatOps": 10, "SelfMemL1": 80}},
        {"id": 2, "cells": {"FunctionName": "gemm", "SelfElapsedTime": 4,
             "SelfFloatOps": 400, "SelfMemL1": 1}},
        {"id": 3, "cells": {"FunctionName": "copy", "SelfElapsedTime": 1, "SelfMemL1": 5}}]})");
    const std::string card = file("card.json", R"({"format": "roofline-machine", "version": 1, "name": "card",
        "device": {"name": "c1", "memory": "HBM"}, "roofs": [{"id": 1, "value": 400, "unit": "GB/s"},
        {"id": 25, "value": 100, "unit": "GB/s"}, {"id": 8, "value": 1000, "unit": "GFLOP/s"}]})");
    const std::string target = path("target.json");

    Projection() {
        const auto done = run({"project", host, "--target", card, "--fill-levels", "-o", target});
        EXPECT_EQ(done.code, kDone);
        EXPECT_THAT(done.err, HasSubstr("not projected: 3 copy: its operations aren't known\n"));
    }
    Arguments beside(Arguments form, std::string configuration = "f") const {
        form.insert(form.begin(), {"chart", host, "--with", target, "--config", std::move(configuration)});
        return form;
    }
};

TEST_F(Projection, StandsBesideWhatWasMeasured) {
    // A projected time is 1e-12 of itself above its bound.
    EXPECT_EQ(
        run(beside({"--csv", "-"})).out,
        "side,id,name,location,speedup_factor,bounded_by,measured_elapsed_time_s,"
        "measured_intensity_op_per_byte,measured_performance_gop_per_s,measured_cause,"
        "projected_elapsed_time_s,projected_intensity_op_per_byte,projected_performance_gop_per_s,"
        "projected_cause\n"
        "both,2,gemm,,9.999999999989999,Compute,4,400,100,,0.40000000000040004,400,999.9999999989999,\n"
        "both,1,stream,,2.4999999999974998,HBM_BW,2,0.125,5,,0.8000000000008001,0.125,12.4999999999875,\n"
        "measured,3,copy,,,,1,,,no float operations,,,,\n");
    const auto text = run(beside({}));
    EXPECT_THAT(text.err, IsEmpty());
    for (const char* part : {"2 rows with 6 s measured, 1.2 s projected, 5 times as fast",
                             "3 measured rows, 2 projected: 2 in both; measured only: 1, 1 s",
                             "bound by compute 1, HBM bandwidth 1", " 12.5 "})
        EXPECT_THAT(text.out, HasSubstr(part));
    const auto document = run(beside({"--json", "-"})).out;
    const auto root = json::parse(document, "projection");
    const auto rows = json::items(root, "rows");
    ASSERT_EQ(rows.Size(), 2u);
    EXPECT_NEAR(json::number(*json::member(rows[1], "projected"), "performance_gop_per_s").value(), 12.5,
                1e-9);
    EXPECT_NEAR(json::number(*json::member(root, "totals"), "speedup_factor").value(), 5.0, 1e-9);
    EXPECT_EQ(json::text(*json::member(root, "target"), "device"), "c1");
    EXPECT_THAT(run(beside({}, "i")).out, HasSubstr("no integer operations")) << "rows stay, without points";
}

TEST_F(Projection, IsDrawnAsAnArrowARowUnderTheRoofsOfTheTarget) {
    const auto svg = run(beside({"--svg", "-"})).out;
    boost::property_tree::ptree tree;
    std::istringstream stream(svg);
    ASSERT_NO_THROW(boost::property_tree::read_xml(stream, tree));
    for (const char* part : {"&lt;p&gt;: measured, and projected on c1", "Roofs of the target, card",
                             "HBM Bandwidth  100 GB/s", "HBM bandwidth (1)", "compute (1)", "gemm  10x",
                             "2 pairs: 2 drawn", "1 measured only: 0 drawn, 1 without a point"})
        EXPECT_THAT(svg, HasSubstr(part));
}

TEST_F(Projection, IsRefusedWhereThereIsNoAnswer) {
    const auto other = file("other.json", R"({"format": "roofline-result", "version": 1, "kind": "offload",
        "machine": "card.json", "rows": [{"id": 77, "cells": {"FunctionName": "x"}}]})");
    const std::tuple<Arguments, int, const char*> rows[] = {
        {{"summary", kProjected}, kNoAnswer, "an offload result has no summary"},
        {{"threads", kProjected}, kNoAnswer, "no choice of threads"},
        {{"roofs", kProjected, "--all"}, kNoAnswer, "no list of thread set-ups"},
        {{"operations", kProjected}, kUsage, "an offload result"},
        {{"compare", kProjected, kMeasured}, kUsage, "can't be compared"},
        {{"roofs", kProjected, "--threads", "2"}, kUsage, "--threads"},
        {{"chart", host, "--with", target, "--threads", "2"}, kUsage, "--threads"},
        {{"chart", host, "--with", host}, kUsage, "a CPU result"},
        {{"chart", host, "--with", other}, kNoAnswer, "projection of it"},
    };
    for (const auto& [arguments, code, reason] : rows) test::expectRefused(arguments, code, reason);
    const auto unlike = run({"chart", kHost, "--with", kMeasured});
    EXPECT_EQ(unlike.code, kDone);
    EXPECT_THAT(unlike.err, HasSubstr("another name")) << "ids of another program";
}

TEST(ProjectionAlone, SubcommandsAnswer) {
    const std::tuple<Arguments, const char*> rows[] = {
        {{"options", kProjected, "--table"}, "HBMgpu  HBM                default"},
        {{"roofs", kProjected, "--csv", "-"}, "HBM Bandwidth,memory,828.758,GB/s,25"},
        {{"roofs", kProjected, "--selected", "--csv", "-"}, "HBM Bandwidth,yes,no"},
        {{"rows", kMeasured}, "63 rows: 49 below a roof, 14 neither: 11 no operations, 3 no traffic"},
        {{"row", kProjected, "2"}, R"("operationCount":{"value":8.38861)"},
        {{"loop", kProjected, "--id", "2"}, R"([{"id":"2")"},
        {{"chart", kMeasured}, "1 row above HBM Bandwidth, by up to 0.1409 %"},
        {{"chart", kMeasured, "--config", "f-L3gpu"}, "63 rows: 52 drawn, 11 not: 11 no float operations"},
    };
    for (const auto& [arguments, expected] : rows) {
        const auto result = run(arguments);
        EXPECT_EQ(result.code, kDone) << arguments[0];
        EXPECT_THAT(result.out, HasSubstr(expected)) << arguments[0];
        EXPECT_THAT(result.err, IsEmpty()) << arguments[0];
    }
}

TEST(ProjectionAlone, IsChartedWhereItsCellsSay) {
    const auto text = embedded_host::readFile(kMeasured);
    const auto root = json::parse(text, "measured");
    std::map<std::string, std::pair<double, double>> points;
    for (const auto& row : json::items(root, "rows")) {
        const auto& cells = *json::member(row, "cells");
        const auto cell = [&](const char* name) { return json::number(cells, name).value_or(0.0); };
        const double operations = cell("OffloadFloat64Ops");
        if (operations > 0.0)
            points[std::to_string(row["id"].GetUint64())] = {
                std::log10(operations / (cell("OffloadHbmBytes") / 1e9)),
                std::log10(operations / cell("OffloadElapsedTime"))};
    }
    const auto chart = run({"chart", kMeasured, "--json", "-"}).out;
    const auto document = json::parse(chart, "chart");
    const auto loops = json::items(document, "loops");
    EXPECT_EQ(loops.Size(), points.size());
    for (const auto& loop : loops) {
        const auto& [x, y] = points.at(json::text(loop, "id"));
        EXPECT_NEAR(json::number(loop, "x").value(), x, 1e-9);
        EXPECT_NEAR(json::number(loop, "y").value(), y, 1e-9);
    }
}

}  // namespace
}  // namespace cli
