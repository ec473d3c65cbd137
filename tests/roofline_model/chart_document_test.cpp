// The chart document: its members, its points recomputed from the cells, its tree of records, and why there
// is none.
#include "roofline_model/factories.h"
#include "roofline_model/translation.h"

#include "tests/roofline_model/test_host.h"

#include <gtest/gtest.h>

#include <cmath>

namespace data_models2::test {
namespace {

rapidjson::Document chartOf(const sptr_t<IDataset>& self, const sptr_t<IDataset>& total,
                            const std::string& configuration, int levels = 5, double elapsedTime = 0.0) {
    const auto viewModel = makeViewModel(self, total, levels);
    viewModel->elapsedTime = elapsedTime;
    return parse(createRooflineInfo(viewModel)->getRooflineData(self, configuration));
}
rapidjson::Document chartOf(const std::string& rows, const std::string& configuration) {
    const auto dataset = makeDataset(rows);
    return chartOf(dataset, dataset, configuration);
}
std::string allOf(const Json& object) { return lineOf(object, membersOf(object)); }

TEST(ChartDocument, HasItsMembersInOrder) {
    const auto dataset = makeDataset(
        "it's SelfGFlops=10 SelfFloatAi=100 SelfFloatOps=40 SelfMemL1=0.2 SelfTime=4 SelfElapsedTime=4"
        " RowKey=-3l LoopType=\"Scalar\" TypeDetail=\"Versions: 2\" DataTypes=\"Float32\" Vectorized=1u "
        "object=9");
    const auto chart = chartOf(dataset, nullptr, "f-1", 1, 2.0);
    EXPECT_EQ(boost::join(membersOf(chart), " "),
              "attrs nameX nameY measureX measureY memoryLevelPref withCallstacks minX minY maxX maxY roofs "
              "loopTypes"
              " selfElapsedTime selfTime totalElapsedTime totalTime selfMem totalMem programTotal loops");
    EXPECT_EQ(lineOf(chart, {"memoryLevelPref", "withCallstacks", "minX", "minY", "maxX", "maxY", "roofs",
                             "loopTypes", "totalTime", "selfMem"}),
              "memoryLevelPref=L1- withCallstacks=0 minX=2 minY=1 maxX=2.30103 maxY=1.30103 roofs=[]"
              " loopTypes={\"0\":\"Scalar Versions: 2 (Float32)\"} totalTime=4 selfMem=0.2");
    ASSERT_EQ(chart["programTotal"].Size(), 1u);
    EXPECT_EQ(allOf(chart["programTotal"][0]),
              "name=L1 descr=" + roofline::translate("roofline_summary_total_point_descr", "L1") +
                  " memoryLevelPref=L1- x=2.30103 y=1.30103 selfElapsedTime=2 selfTime=4 totalElapsedTime=2"
                  " totalTime=4 selfMem=0.2 totalMem=0.2");
    ASSERT_EQ(chart["loops"].Size(), 1u);
    EXPECT_EQ(allOf(chart["loops"][0]),
              "id=1 key=-3 name=it`s objId=9 selfElapsedTime=4 selfMem=0.2 selfTime=4 type=0 vec=1 x=2 y=1");
}

TEST(ChartDocument, HasAProgramPointAtTheFirstLevelAndAtMainMemory) {
    const char* const rows =
        "a SelfGFlops=1 SelfFloatAi=1 SelfFloatOps=100 SelfL1Load=1 SelfMemL1=1 SelfMemDram=10 SelfTime=1"
        " SelfElapsedTime=2\n"
        "b SelfIntOps=1000 SelfMixedOps=10 SelfMemL1=9 SelfTime=1 SelfElapsedTime=8 TotalGFlops=1";
    const auto totalsOf = [&](const char* configuration, int levels, double elapsedTime) {
        return linesOf(
            chartOf(makeDataset(rows), nullptr, configuration, levels, elapsedTime)["programTotal"],
            {"name", "memoryLevelPref", "x", "y", "selfMem", "totalElapsedTime"});
    };
    EXPECT_EQ(totalsOf("f-load", 5, 0.0), R"(
name=L1 memoryLevelPref=L1- x=1 y=1 selfMem=10 totalElapsedTime=10
name=DRAM memoryLevelPref=DRAM- x=1 y=1 selfMem=10 totalElapsedTime=10)");
    EXPECT_EQ(totalsOf("f", 1, 1.0), "\nname=L1 memoryLevelPref=L1- x=1 y=2 selfMem=10 totalElapsedTime=1");
}

// Enough for a point at every level whose traffic a row has.
const std::string kPoint =
    " SelfTime=1 SelfElapsedTime=1 SelfGFlops=10 SelfFloatAi=1 SelfFloatOps=100 SelfL1Load=1";

TEST(ChartDocument, NumbersTheTypesOfLoopsAndLeavesOutWhatHangsUnderNoPoint) {
    const auto chart = chartOf("a LoopType=\"outer\"" + kPoint + "\n  b LoopType=\"inner\"" + kPoint +
                                   "\n    d" + kPoint + "\n  c LoopType=\"inner\"" + kPoint +
                                   "\nhidden type=0x8 TypeDetail=\"\" DataTypes=\"\"\nlost\n  never" + kPoint,
                               "f-1-L1-load");
    EXPECT_EQ(linesOf(chart["loops"], {"name", "type"}),
              "\nname=a type=0\nname=b type=1\nname=c type=1\nname=d");
    EXPECT_EQ(lineOf(chart, {"loopTypes"}), R"(loopTypes={"1":"inner","0":"outer"})");
}

// A naive model of the points of one row: "level: x y x1 y1 caption", one line a record.
const std::vector<std::string> kLevels{"L1", "L2", "DRAM"};

std::optional<double> logOf(const TestRow& row, const std::string& ops, const std::string& traffic = "") {
    const auto dividend = row.cells.find(fieldOf(ops));
    if (dividend == row.cells.end()) return {};
    double value = dividend->second.toDouble();
    if (!traffic.empty()) {
        const auto divisor = row.cells.find(fieldOf(traffic));
        if (divisor == row.cells.end()) return {};
        value = divisor->second.toDouble() > 1e-12 ? value / divisor->second.toDouble() : 0.0;
    }
    return value > 0.0 && std::isfinite(value) ? std::optional(std::log10(value)) : std::nullopt;
}

// Nothing when the row has no point at the level.
std::optional<std::string> naivePoint(const TestRow& row, const std::string& level, bool total) {
    std::string text;
    for (const std::string data : {"Self", "Total"}) {
        if (data == "Total" && !total) break;
        const auto plain = logOf(row, data + "FloatAi"), y = logOf(row, data + "GFlops");
        const auto x = logOf(row, data + "FloatOps", data + (level == "DRAM" ? "Dram" : level) + "Load");
        // Self data may be missing beside total data; then the intensity without a level stays.
        const bool isNeeded = !total || data == "Total";
        if (isNeeded && (!plain || !x || !y)) return {};
        const char* const suffix = data == "Total" ? "1" : "";
        if (x || plain) text += fmt::format(" x{}={:.6g}", suffix, x ? *x : *plain);
        if (y) text += fmt::format(" y{}={:.6g}", suffix, *y);
    }
    return text;
}

struct NaiveRecord {
    std::string level, point, caption;
};
std::vector<NaiveRecord> naiveRecords(const TestRow& row, bool total) {
    std::vector<NaiveRecord> records;
    std::string seen;
    for (const auto& level : kLevels) {
        const auto point = naivePoint(row, level, total);
        if (!point) continue;
        seen += level + "-";
        if (!records.empty() && records.back().point == *point)
            records.back().caption = seen;
        else
            records.push_back({level, *point, level == kLevels.front() ? "" : level + "-"});
    }
    return records;
}

Table randomTable(bool total) {
    Table table;
    for (int count = pick(1, 15); count > 0; --count) {
        TestRow row;
        row.parent = pick(-1, static_cast<int>(table.rows.size()));
        row.type = pick(0, 12) ? 0x100 : 0x4;
        row.cells = {{FieldId::SelfTime, 1.0}, {FieldId::SelfElapsedTime, 1.0}};
        for (const std::string data : {"Self", "Total"}) {
            for (const char* name : {"FloatAi", "GFlops", "FloatOps", "L1Load", "L2Load", "DramLoad"}) {
                const double values[]{1.0, 2.0, 4.0, 8.0, 0.0, -1.0, std::nan(""), HUGE_VAL};
                if (pick(0, 12)) row.cells[fieldOf(data + name)] = values[pick(0, pick(0, 4) ? 3 : 8)];
            }
        }
        table.rows.push_back(row);
    }
    table.rows.front().type = 0;
    table.type = total ? DataType::CpuTopDown : DataType::Cpu;
    return table;
}

// One record a line: row, point, caption and the record that it hangs under, counted among its parent row's.
std::string naiveChart(const Table& table, bool total) {
    std::string text;
    std::vector<std::vector<NaiveRecord>> records;
    for (const auto& row : table.rows) {
        auto& own = records.emplace_back();
        const auto* const above = row.parent < 0 ? nullptr : &records[row.parent];
        if (*row.type & 0xE || (above && above->empty())) continue;
        own = naiveRecords(row, total);
        for (const auto& [level, point, caption] : own) {
            text += fmt::format("\n{}{} {}", records.size(), point, caption);
            if (!above) continue;
            const auto isOfLevel = [&, wanted = level](const auto& r) {
                return r.caption.find(wanted) != std::string::npos;
            };
            const auto found = std::find_if(above->begin(), above->end(), isOfLevel);
            const bool isFirst = level == kLevels.front() || found == above->end();
            text += fmt::format(" under {}", isFirst ? 0 : found - above->begin());
        }
    }
    return text;
}

std::string linesOfChart(const Table& table, const Json& chart) {
    std::map<int, std::vector<int>> recordsOf;  // by the row's id
    const auto& loops = chart["loops"];
    for (int i = 0; i < static_cast<int>(loops.Size()); ++i)
        recordsOf[std::stoi(textOf(loops[i]["id"]))].push_back(i);
    std::string text;
    for (const auto& [id, records] : recordsOf)
        for (const int i : records) {
            const auto caption = lineOf(loops[i], {"memoryLevelPref"});
            text += fmt::format("\n{}", id);
            for (const char* name : {"x", "y", "x1", "y1"})
                if (loops[i].HasMember(name)) text += " " + lineOf(loops[i], {name});
            text += " " + caption.substr(caption.find('=') + 1);
            if (!loops[i].HasMember("parent")) continue;
            const auto& above = recordsOf[table.rows[id - 1].parent + 1];
            const auto found = std::find(above.begin(), above.end(), loops[i]["parent"].GetInt());
            text +=
                found == above.end() ? " under another row" : fmt::format(" under {}", found - above.begin());
        }
    return text;
}

// Parents and children name each other, a parent has a state, and complete points are inside the bounds.
std::string brokenRules(const Json& chart, bool total) {
    std::string broken;
    std::size_t children = 0, parents = 0;
    for (const auto& record : chart["loops"].GetArray()) {
        parents += record.HasMember("parent");
        const bool isParent = record.HasMember("children");
        if ((isParent ? textOf(record["state"]) : "") != (isParent ? total ? "-" : "+" : ""))
            broken += " state";
        if (isParent)
            for (const auto& child : record["children"].GetArray()) {
                const auto& below = chart["loops"][child.GetUint()];
                children += &chart["loops"][below["parent"].GetUint()] == &record;
            }
        for (const std::string suffix : {"", "1"}) {
            const auto x = record.FindMember(("x" + suffix).c_str()),
                       y = record.FindMember(("y" + suffix).c_str());
            if (x == record.MemberEnd() || y == record.MemberEnd()) continue;
            const double atX = x->value.GetDouble(), atY = y->value.GetDouble();
            if (atX < chart["minX"].GetDouble() || atX > chart["maxX"].GetDouble() ||
                atY < chart["minY"].GetDouble() || atY > chart["maxY"].GetDouble())
                broken += " bounds";
        }
    }
    return broken + (children == parents ? "" : " children");
}

TEST(ChartDocument, HasThePointsAndTheTreeOfANaiveModel) {
    for (const bool total : {false, true}) {
        int drawn = 0;
        EXPECT_TRUE(rc::check([&] {
            const auto table = randomTable(total);
            const sptr_t<IDataset> dataset(new Dataset(table));
            const auto chart =
                chartOf(dataset, dataset, total ? "f-0-L1-L2-DRAM-load" : "f-1-L1-L2-DRAM-load");
            const auto expected = naiveChart(table, total);
            if (expected.empty()) {
                RC_ASSERT(membersOf(chart) == std::vector<std::string>{"noDataMessage"});
                return;
            }
            ++drawn;
            RC_ASSERT(linesOfChart(table, chart) == expected);
            RC_ASSERT(brokenRules(chart, total) == "");
            RC_ASSERT(chart["withCallstacks"].GetInt() == (total ? 1 : 0));
        }));
        EXPECT_GT(drawn, 50);
    }
}

TEST(ChartDocument, WithoutPointsSaysWhy) {
    const std::string ops = "a SelfTime=1 SelfElapsedTime=1 SelfFloatOps=1 SelfGFlops=1 SelfGIntOps=0";
    const std::string time = "a SelfTime=1 SelfElapsedTime=1";
    // What is missing, the rows, the configuration, the id of the message and its ending.
    const std::tuple<const char*, std::string, const char*, std::string, std::string> cases[]{
        {"no configuration", ops, "", "no_data_generic_error", ""},
        {"no rows", "", "f-1", "no_data_generic_error", ""},
        {"no time", ops + " SelfTime=0", "f-1", "no_data_generic_error", ""},
        {"levels of total data", ops, "f-0-DRAM", "no_data_mem_levels", ""},
        {"nothing counted", time, "f-1-L2", "collect_trc", ""},
        {"nothing counted in total", time, "f-0-L1", "collect_trc", "_topdown"},
        {"counted on a hidden row", time + "\nb SelfGFlops=1 type=0x8", "f-1", "collect_trc", ""},
        {"no float", time + " SelfGIntOps=1 SelfIntOps=1", "f-1", "no_data", ""},
        {"no integers", ops, "i-1", "no_data", "_int"},
        {"no operations at all", time + " SelfGFlops=0", "b-1", "no_data", ""},
        {"operations without time", time + "\nb SelfGFlops=1 SelfFloatOps=1", "f-1", "no_data", ""},
        {"a library's", ops + " VectorTraits=\"a Library\"", "f-1", "pure_tessel", ""},
        {"no traffic", ops, "f-1", "filtered_out", ""},
    };
    for (const auto& [name, rows, configuration, id, ending] : cases) {
        const auto chart = chartOf(rows, configuration);
        ASSERT_EQ(membersOf(chart), std::vector<std::string>{"noDataMessage"}) << name;
        const auto title = "roofline_" + id + "_title" + (ending == "_int" ? "" : ending);
        EXPECT_EQ(textOf(chart["noDataMessage"]["title"]), roofline::translate(title)) << name;
        EXPECT_EQ(textOf(chart["noDataMessage"]["descr"]),
                  roofline::translate("roofline_" + id + "_descr" + ending))
            << name;
    }
}

}  // namespace
}  // namespace data_models2::test
