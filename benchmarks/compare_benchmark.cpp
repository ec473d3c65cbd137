// How long a comparison takes: scoring all pairs, beside a pass that compares ready integers of each pair.
#include "embedded_host/embedded_host.h"

#include "benchmarks/benchmarks.h"
#include "benchmarks/timing.h"
#include "results_comparer/factories.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <malloc.h>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace data_models2;

constexpr int kIndicators = 9;
constexpr std::size_t kRows = 3000;

std::size_t g_work = 0;  // keeps what is only done to be timed

std::size_t heldBytes() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// Loops that are all different or all alike; `seed` moves lines a little, as another build does.
std::string makeResult(int seed, bool areAlike) {
    std::mt19937 random(static_cast<unsigned>(seed));
    std::string text = R"({"format":"roofline-result","version":1,"kind":"cpu","rows":[)";
    for (std::size_t row = 0; row < kRows; ++row) {
        const auto kind = areAlike ? 0 : row % 37;
        text += fmt::format(
            R"({}{{"id":{},"type":{},"cells":{{"FunctionName":"f","MangledName":"_Z{}kernel{}at line {} ",)"
            R"("SourceLocation":"src/file_{}.cpp:12","SourceLine":{},"NestingLevel":{},)"
            R"("ComparisonMetric":{},"DataTypes":"{}","SelfElapsedTime":1,"SelfFloatOps":1,"SelfMemL1":1}})",
            row ? ",\n" : "", row * 2, 4 + 256 * (kind % 2), kind % 7, areAlike ? 0 : row, random() % 1000,
            kind, areAlike ? 10 : row * 10 + random() % 3, kind % 3 + 1, kind % 5,
            kind % 3 ? "Float64" : "<b>Float64</b>; Int32");
        text += fmt::format(R"(,"children":[{{"id":{},"type":2048,"executed":false,)"
                            R"("cells":{{"Isa":"AVX2","UnrollFactor":{}}}}}]}})",
                            row * 2 + 1, kind % 4 + 1);
    }
    return text + "]}";
}

// Ends a comparison when its candidates are complete, before a choice is made among them.
class StopAfterScoring : public IProgress {
public:
    void start(const std::string&, std::uint64_t) override {}
    void message(const std::string&) override {}
    void advance(std::uint64_t) override {}
    void finish() override { m_isScored = true; }
    std::uint64_t getTotalSteps() const override { return 0; }
    void cancel() override {}
    bool isCancelled() const override { return m_isScored; }

private:
    bool m_isScored = false;
};

// Looks at the heap after each row.
class WatchHeap final : public StopAfterScoring {
public:
    void advance(std::uint64_t) override { peak = std::max(peak, heldBytes()); }
    std::size_t peak = 0;
};

std::size_t countEqual() {
    std::mt19937 random(1);
    using Record = std::array<int, kIndicators>;
    std::vector<Record> first(kRows), second(kRows);
    for (auto* const records : {&first, &second})
        for (auto& record : *records)
            for (auto& value : record) value = static_cast<int>(random() % 5);
    std::size_t equal = 0;
    for (const auto& a : first)
        for (const auto& b : second)
            for (int i = 0; i < kIndicators; ++i) equal += a[i] == b[i];
    return equal;
}

}  // namespace

int runCompareBenchmark() {
    constexpr double kNanoseconds = 1e9 / (static_cast<double>(kRows) * kRows);
    const double bare = best([] { return seconds([] { g_work += countEqual(); }); }) * kNanoseconds;
    fmt::print("{0} x {0} rows, best of {1}, nanoseconds a pair; nine ready integers: {2:.2f}\n", kRows,
               kRuns, bare);
    fmt::print("{:<10}{:>10}{:>10}{:>12}{:>16}{:>16}\n", "rows", "scoring", "ratio", "candidates", "their MB",
               "other heap, MB");
    for (const bool areAlike : {false, true}) {
        const auto first = embedded_host::parseResult(makeResult(1, areAlike), "first.json");
        const auto second = embedded_host::parseResult(makeResult(2, areAlike), "second.json");
        const auto comparer = createResultsComparer();
        ComparisonData data{first->viewModel(), second->viewModel(), DataType::Cpu, {}};
        const double time = best([&] {
            std::vector<RowMatchInfo>().swap(data.matches);
            StopAfterScoring progress;
            return seconds([&] { g_work += comparer->compare(data, &progress); });
        });
        std::vector<RowMatchInfo>().swap(data.matches);
        WatchHeap heap;
        const auto before = heldBytes();
        g_work += comparer->compare(data, &heap) + data.matches.size();
        const double found = static_cast<double>(data.matches.size() * sizeof(RowMatchInfo));
        fmt::print("{:<10}{:>10.2f}{:>10.2f}{:>12}{:>16.2f}{:>16.2f}\n", areAlike ? "alike" : "mixed",
                   time * kNanoseconds, time * kNanoseconds / bare, data.matches.size(), found / 1e6,
                   (static_cast<double>(heap.peak - before) - found) / 1e6);
    }
    return g_work == 0;
}
