// How long the choice among candidate pairs takes: without ties beside a sort of the same list, and on ties.
#include "embedded_host/embedded_host.h"

#include "benchmarks/benchmarks.h"
#include "benchmarks/synthetic_result.h"
#include "benchmarks/timing.h"
#include "results_comparer/factories.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace data_models2;

constexpr double kNoPairScoresThis = 1000.0;  // percent: the candidates handed in stay the only ones

struct Side {
    explicit Side(std::size_t rowCount)
        : result(embedded_host::parseResult(makeSyntheticResult({rowCount, 1, false}), "rows.json")),
          dataset(result->viewModel()->getDataset(DataType::Cpu)) {
        for (auto row = dataset->getRows(0); !row.isEnd(); ++row) rows.push_back(*row);
    }
    std::shared_ptr<embedded_host::Result> result;
    sptr_t<IDataset> dataset;
    std::vector<sptr_t<RowNode>> rows;
};

class Filter {
public:
    // Seconds; `chosen` becomes the number of pairs that are left.
    double operator()(const std::vector<RowMatchInfo>& candidates, std::size_t& chosen) {
        ComparisonData data{m_one.result->viewModel(), m_one.result->viewModel(), DataType::Cpu, candidates};
        const double time = seconds([&] { m_comparer->compare(data, kNoPairScoresThis, nullptr); });
        chosen = data.matches.size();
        return time;
    }

private:
    Side m_one{1};  // a comparison of its own needs a row on either side
    std::shared_ptr<IResultsComparer> m_comparer = createResultsComparer();
};

double sortTime(std::vector<RowMatchInfo> candidates) {
    return seconds([&] { std::sort(candidates.rbegin(), candidates.rend()); });
}

}  // namespace

int runFilterBenchmark() {
    const Side first(1000), second(1000);
    Filter filter;
    fmt::print("best of {}, milliseconds; the choice among candidates beside a sort of the list\n", kRuns);
    fmt::print("{:<28}{:>12}{:>8}{:>10}{:>10}{:>8}\n", "list", "candidates", "pairs", "choice", "sort",
               "ratio");
    const auto report = [&](const char* what, const std::vector<RowMatchInfo>& list) {
        std::size_t chosen = 0;
        const double choice = best([&] { return filter(list, chosen); }) * 1e3;
        const double sort = best([&] { return sortTime(list); }) * 1e3;
        fmt::print("{:<28}{:>12}{:>8}{:>10.2f}{:>10.2f}{:>8.2f}\n", what, list.size(), chosen, choice, sort,
                   choice / sort);
    };
    const auto block = [&](std::size_t rows, auto score) {
        std::vector<RowMatchInfo> list;
        for (std::size_t i = 0; i < rows; ++i)
            for (std::size_t j = 0; j < rows; ++j)
                if (const double value = score(i, j); value > 0)
                    list.push_back({value, first.rows[i], second.rows[j]});
        return list;
    };
    report("no ties", block(1000, [](auto i, auto j) {
               return 50 + static_cast<double>((i * 1000 + j) * 7919 % 1'000'003) * 5e-5;
           }));
    report("all equal", block(200, [](auto, auto) { return 66.6; }));
    report("all equal", block(1000, [](auto, auto) { return 66.6; }));
    report("alike in three functions",
           block(300, [](auto i, auto j) { return i / 100 == j / 100 ? 90.0 : 0; }));
    report("alike, some pairs missing",
           block(300, [](auto i, auto j) { return (i * 7 + j * 13) % 5 ? 90.0 : 0; }));

    double longest = 0.0;
    for (const unsigned rows : {40U, 60U, 100U})
        for (unsigned share = 2; share <= 6; ++share)
            for (unsigned seed = 1; seed <= 5; ++seed) {
                std::mt19937 random(seed);
                std::vector<RowMatchInfo> list;
                for (unsigned i = 0; i < share * rows; ++i) {
                    const auto& row = first.rows[random() % rows];
                    list.push_back({75.0, row, second.rows[random() % rows]});
                }
                std::size_t chosen = 0;
                longest = std::max(longest, filter(list, chosen));
                if (chosen == 0) return 1;
            }
    fmt::print("the longest of 75 lists of equal pairs with holes: {:.0f} ms\n", longest * 1e3);
    return 0;
}
