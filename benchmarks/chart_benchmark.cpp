// How long a result takes to load and to become a chart document, beside what rapidjson alone needs for the
// same texts.
#include "embedded_host/embedded_host.h"

#include "roofline_model/factories.h"

#include "benchmarks/benchmarks.h"
#include "benchmarks/synthetic_result.h"
#include "benchmarks/timing.h"

#include <fmt/format.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace data_models2;

constexpr unsigned kLoaderFlags = rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag;

// Keeps a text that is only made to be timed.
std::size_t g_written = 0;

struct Timing {
    double parse, load, metrics, firstDocument, secondDocument, write;
};

Timing measure(const SyntheticShape& shape, const std::string& configuration) {
    const std::string text = makeSyntheticResult(shape);
    Timing timing{};
    timing.parse = best([&] {
        return seconds([&] {
            rapidjson::Document document;
            document.Parse<kLoaderFlags>(text.data(), text.size());
            g_written += document.MemberCount();
        });
    });
    timing.load = best([&] { return seconds([&] { embedded_host::parseResult(text, "synthetic.json"); }); });

    const auto result = embedded_host::parseResult(text, "synthetic.json");
    const auto viewModel = result->viewModel();
    const auto self = viewModel->getDataset(DataType::Cpu);
    const auto total = viewModel->getDataset(DataType::CpuTopDown);
    std::string document;
    timing.metrics = timing.firstDocument = timing.secondDocument = std::numeric_limits<double>::max();
    for (int i = 0; i < kRuns; ++i) {
        const auto engine = createRooflineInfo(viewModel);
        const auto chart = [&] { document = engine->getRooflineData(self, total, configuration); };
        timing.metrics =
            std::min(timing.metrics, seconds([&] { result->load(IViewModelBase::LoadType::Result); }));
        timing.firstDocument = std::min(timing.firstDocument, seconds(chart));
        timing.secondDocument = std::min(timing.secondDocument, seconds(chart));
    }

    rapidjson::Document parsed;
    parsed.Parse(document.data(), document.size());
    timing.write = best([&] {
        return seconds([&] {
            rapidjson::StringBuffer buffer;
            rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
            parsed.Accept(writer);
            g_written += buffer.GetSize();
        });
    });
    return timing;
}

}  // namespace

int runChartBenchmark() {
    embedded_host::setUpLogging(false);
    struct Case {
        const char* name;
        int depth;
        bool levels;
        const char* configuration;
    };
    const std::vector<Case> cases{{"flat", 1, false, "f-1"},
                                  {"nested", 4, false, "f-1"},
                                  {"nested, total data", 4, false, "f-0"},
                                  {"flat, levels", 1, true, "f-1-L1-all"},
                                  {"nested, levels", 4, true, "f-1-L1-all"}};
    fmt::print("best of {}, microseconds a row; ratios to rapidjson in the same run\n", kRuns);
    fmt::print("{:<20}{:>8}{:>9}{:>9}{:>9}{:>9}{:>9}{:>9}{:>12}{:>11}{:>11}{:>14}\n", "shape", "rows",
               "parse", "load", "metrics", "first", "second", "write", "load/parse", "first/wr.",
               "second/wr.", "rows/s, all");
    for (const Case& shape : cases) {
        for (const std::size_t rows : {1000, 10000, 100000}) {
            const Timing t = measure({rows, shape.depth, shape.levels}, shape.configuration);
            const double perRow = 1e6 / static_cast<double>(rows);
            fmt::print(
                "{:<20}{:>8}{:>9.3f}{:>9.3f}{:>9.3f}{:>9.3f}{:>9.3f}{:>9.3f}{:>12.2f}{:>11.2f}{:>11.2f}{:>14."
                "0f}\n",
                shape.name, rows, t.parse * perRow, t.load * perRow, t.metrics * perRow,
                t.firstDocument * perRow, t.secondDocument * perRow, t.write * perRow, t.load / t.parse,
                t.firstDocument / t.write, t.secondDocument / t.write,
                static_cast<double>(rows) / (t.load + t.metrics + t.firstDocument));
        }
    }
    return g_written == 0;
}
