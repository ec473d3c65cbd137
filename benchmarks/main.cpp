// Runs all benchmarks, or the one named: chart, dominance, rows, compare, filter, rocprof.
#include "embedded_host/embedded_host.h"

#include "benchmarks/benchmarks.h"

#include <string_view>

int main(int argc, char** argv) {
    embedded_host::setUpLogging(false);
    const std::string_view only = argc > 1 ? argv[1] : "";
    int failures = 0;
    if (only.empty() || only == "chart") failures += runChartBenchmark();
    if (only.empty() || only == "dominance") failures += runDominanceBenchmark();
    if (only.empty() || only == "rows") failures += runRowBenchmark();
    if (only.empty() || only == "compare") failures += runCompareBenchmark();
    if (only.empty() || only == "filter") failures += runFilterBenchmark();
    if (only.empty() || only == "rocprof") failures += runRocprofBenchmark();
    return failures;
}
