// What importing kernel counters costs beside splitting the same text into fields.
#include "embedded_host/embedded_host.h"

#include "benchmarks/benchmarks.h"
#include "benchmarks/timing.h"

#include <fmt/format.h>

#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {
namespace fs = std::filesystem;

constexpr int kDispatches = 100'000;
constexpr int kKernels = 200;

std::vector<std::string> counterNames() {
    std::vector<std::string> names;
    for (const char* const precision : {"F16", "F32", "F64"})
        for (const char* const kind : {"ADD", "MUL", "FMA", "TRANS"})
            names.push_back(fmt::format("SQ_INSTS_VALU_{}_{}", kind, precision));
    for (const char* const name :
         {"SQ_INSTS_VALU_INT32", "SQ_INSTS_VALU_INT64", "SQ_INSTS_VALU_MFMA_MOPS_F16",
          "SQ_INSTS_VALU_MFMA_MOPS_BF16", "SQ_INSTS_VALU_MFMA_MOPS_F32", "SQ_INSTS_VALU_MFMA_MOPS_F64",
          "SQ_INSTS_VALU_MFMA_MOPS_I8", "SQ_LDS_IDX_ACTIVE", "SQ_LDS_BANK_CONFLICT",
          "TCP_TOTAL_CACHE_ACCESSES_sum", "TCP_TCC_READ_REQ_sum", "TCP_TCC_WRITE_REQ_sum",
          "TCP_TCC_ATOMIC_WITH_RET_REQ_sum", "TCP_TCC_ATOMIC_WITHOUT_RET_REQ_sum", "TCC_EA_RDREQ_32B_sum",
          "TCC_EA_RDREQ_sum", "TCC_EA_WRREQ_64B_sum", "TCC_EA_WRREQ_sum"})
        names.emplace_back(name);
    return names;
}

// As the profiler writes it: most counts of operations are 0, those of the caches end in ".0".
std::string makeTable() {
    std::mt19937 random(3);
    const auto names = counterNames();
    std::string text = "Dispatch_ID,Kernel_Name,grd,Workgroup_Size";
    for (const auto& name : names) text += "," + name;
    text += ",Start_Timestamp,End_Timestamp\n";
    for (int i = 0; i < kDispatches; ++i) {
        text += fmt::format("{},\"void kernel_{}<float, 256, 8u>(float, float*) [clone .kd]\",4194304,256", i,
                            random() % kKernels);
        for (const auto& name : names) {
            const bool isCache = name.starts_with("TC");
            const bool isZero = !isCache && random() % 4 != 0;
            text += fmt::format(",{}{}", isZero ? 0 : random() % 100'000'000, isCache ? ".0" : "");
        }
        const auto start = 14'234'006'575'542 + i * 1'000'000LL;
        text += fmt::format(",{},{}\n", start, start + 1 + random() % 1'000'000);
    }
    return text;
}

// Views of the fields, line by line; the size keeps the work from being left out.
std::size_t split(std::string_view text) {
    std::vector<std::string_view> fields;
    std::size_t sum = 0;
    for (std::size_t at = 0; at < text.size();) {
        fields.clear();
        for (bool isLast = false; !isLast; ++at) {
            const bool isQuoted = text[at] == '"';
            const auto begin = at;
            at = isQuoted ? text.find('"', at + 1) + 1 : text.find_first_of(",\n", at);
            fields.push_back(text.substr(begin, at - begin));
            isLast = text[at] == '\n';
        }
        sum += fields.size() + fields.back().size();
    }
    return sum;
}

std::size_t g_sum = 0;

}  // namespace

int runRocprofBenchmark() {
    const fs::path folder = fs::temp_directory_path() / fmt::format("rocprof_benchmark_{}", getpid());
    fs::create_directory(folder);
    const auto table = makeTable();
    embedded_host::writeFile((folder / "pmc_perf.csv").string(), table, true);
    const double reading = best([&] {
        return seconds([&] { g_sum += embedded_host::readFile((folder / "pmc_perf.csv").string()).size(); });
    });
    const double splitting = best([&] { return seconds([&] { g_sum += split(table); }); });
    fmt::print("{} dispatches, {:.1f} MB; best of {}\n", kDispatches, static_cast<double>(table.size()) / 1e6,
               kRuns);
    fmt::print("read {:.0f} ms, split {:.0f} ms\n", reading * 1e3, splitting * 1e3);
    for (const bool merge : {false, true}) {
        std::size_t size = 0;
        const double importing = best([&] {
            return seconds([&] {
                size = embedded_host::importRocprof({folder.string(), merge, "", ""}).result.size();
            });
        });
        fmt::print("import{} {:.0f} ms ({:.1f} MB), {:.1f} times splitting\n", merge ? ", merged" : "",
                   importing * 1e3, static_cast<double>(size) / 1e6, importing / splitting);
    }
    fs::remove_all(folder);
    return g_sum == 0;
}
