// Makes a result of the counters that a kernel profiler has written, one row a dispatch or one a kernel.
#include "embedded_host/embedded_host.h"
#include "embedded_host/result/csv_reader.h"
#include "embedded_host/result/import_text.h"
#include "embedded_host/result/importers/rocprof_counters.h"
#include "embedded_host/result/importers/rocprof_machine.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <set>
#include <unordered_map>
#include <utility>

namespace embedded_host {
namespace {
using namespace rocprof;

constexpr std::size_t kRowsBetweenReports = 4096;
constexpr std::string_view kName = "Kernel_Name";

// A name for people: without what the compiler says of the object file.
std::string_view plainName(std::string_view name) {
    for (const std::string_view ending : {" [clone .kd]", ".kd"})
        if (name.size() > ending.size() && name.ends_with(ending))
            return name.substr(0, name.size() - ending.size());
    return name;
}

// One row: the counters of all its dispatches.
struct Kernel {
    std::string_view name;
    Counts counts{};
    std::size_t dispatches = 0;
    std::size_t line = 0;  // of the first one
};

// The rows of the result, one a line: a change of one row is one line of a diff.
class RowWriter {
public:
    // What stands around each number is the same in every row: it is made once.
    RowWriter() {
        for (const auto& cell : cellFormulas()) m_cells.push_back(fmt::format(",\"{}\":", cell.field));
        for (const auto& each : statisticFormulas()) {
            m_statistics.push_back(fmt::format(R"({{"instruction":"{}","type":"{}","width":{},"operations":)",
                                               each.instruction, each.type, each.width));
            m_labels.push_back(
                fmt::format("the statistic {} {} {}", each.instruction, each.type, each.width));
        }
    }

    void begin(std::string head) { m_out = std::move(head); }
    // Makes room for what `left` bytes of the table give, going by those that were `read`: the text moves
    // once instead of many times. Lines would not do: a cell may hold any number of them.
    void expect(std::size_t read, std::size_t left) {
        constexpr double kSpare = 1.06;
        const double share = static_cast<double>(left) / static_cast<double>(read);
        m_out.reserve(static_cast<std::size_t>(static_cast<double>(m_out.size()) * (1.0 + share * kSpare)));
    }
    void write(std::string_view names, const Kernel& kernel) {
        put(m_rows == 0 ? "\n{\"id\":" : ",\n{\"id\":");
        putNumber(++m_rows);
        put(",\"cells\":{");
        put(names);
        put(",\"InstanceCount\":");
        putNumber(kernel.dispatches);
        for (std::size_t i = 0; i < m_cells.size(); ++i) writeCell(i, kernel.counts);
        put("},\"statistics\":[");
        bool isFirst = true;
        for (std::size_t i = 0; i < m_statistics.size(); ++i) {
            const auto& formula = statisticFormulas()[i];
            const double count = sumOf(kernel.counts, formula.counters);
            if (count < 0.0) m_negative.insert(m_labels[i]);
            if (!(count > 0.0) || !std::isfinite(formula.perInstruction * count)) continue;
            if (!std::exchange(isFirst, false)) put(",");
            m_hasHalfVectors |= formula.width == 16 && formula.countsInstructions;
            put(m_statistics[i]);
            putGiga(formula.perInstruction * count);
            if (formula.countsInstructions) {
                put(",\"instructions\":");
                putWhole(count);
            }
            put("}");
        }
        put("]}");
    }

    std::string end() {
        put("\n]\n}\n");
        return std::move(m_out);
    }
    // Fields and statistics that came out below 0.
    const std::set<std::string_view>& negativeSums() const { return m_negative; }
    // Whether some row has 16-bit floats that aren't those of matrices.
    bool hasHalfVectors() const { return m_hasHalfVectors; }

private:
    static constexpr double kExact = 9007199254740992.0;  // whole numbers up to here are exact
    static constexpr std::uint64_t kGiga = 1'000'000'000;

    void put(std::string_view text) { m_out.append(text); }
    template <class Number>
    void putNumber(Number number) {
        std::array<char, 32> digits;
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        m_out.append(digits.data(), end);
    }
    void putWhole(double value) {
        if (value < kExact && value == std::floor(value)) return putNumber(static_cast<std::uint64_t>(value));
        putNumber(value);
    }
    // In units of 1e9. Counts are whole, so that their nine decimals are exact and soon written.
    void putGiga(double value) {
        if (!(value < kExact && value == std::floor(value))) return putNumber(value / 1e9);
        const auto whole = static_cast<std::uint64_t>(value);
        putNumber(whole / kGiga);
        auto rest = whole % kGiga;
        if (rest == 0) return;
        std::array<char, 10> decimals;
        for (auto digit = decimals.rbegin(); digit != decimals.rend(); ++digit, rest /= 10)
            *digit = static_cast<char>('0' + rest % 10);
        decimals[0] = '.';
        const auto last = std::string_view(decimals.data(), decimals.size()).find_last_not_of('0');
        m_out.append(decimals.data(), last + 1);
    }

    void writeCell(std::size_t i, const Counts& counts) {
        const auto& cell = cellFormulas()[i];
        const double sum = sumOf(counts, cell.terms);
        if (!std::isfinite(sum)) return;
        if (sum < 0.0) {
            m_negative.insert(cell.field);
            return;
        }
        put(m_cells[i]);
        putGiga(sum);
    }

    std::vector<std::string> m_cells;       // by formula: what stands before the number
    std::vector<std::string> m_statistics;  // the same
    std::vector<std::string> m_labels;      // of statistics, for people
    std::set<std::string_view> m_negative;
    bool m_hasHalfVectors = false;
    std::size_t m_rows = 0;
    std::string m_out;
};

class RocprofImporter {
public:
    explicit RocprofImporter(const std::string& folder)
        : m_table(readFile(tablePath(folder)), tablePath(folder)),
          m_name(requireColumn(m_table, kName)),
          m_reader(m_table) {}

    // `head` and the rows of the table, with what ends them and the file.
    std::string run(std::string head, bool merges, const Progress& progress) {
        m_writer.begin(std::move(head));
        const std::size_t all = m_table.linesLeft();
        std::size_t done = 0;
        std::vector<Kernel> kernels;
        std::unordered_map<std::string_view, std::size_t> places;
        Kernel kernel;
        for (std::vector<std::string_view> cells; m_table.next(cells); ++done) {
            if (progress && done % kRowsBetweenReports == 0 && !progress(done, all))
                throw FileError("cancelled");
            if (done == kRowsBetweenReports && !merges)
                m_writer.expect(m_table.bytesRead(), m_table.bytesLeft());
            kernel.name = cells[m_name];
            kernel.line = m_table.line();
            kernel.dispatches = 1;
            m_reader.read(cells, kernel.counts);
            if (!merges) {
                m_writer.write(names(kernel), kernel);
                continue;
            }
            const auto [place, isNew] = places.emplace(kernel.name, kernels.size());
            if (isNew) {
                kernels.push_back(kernel);
                continue;
            }
            auto& sum = kernels[place->second];
            ++sum.dispatches;
            for (std::size_t i = 0; i < kCounterCount; ++i) sum.counts[i] += kernel.counts[i];
        }
        for (const auto& each : kernels) m_writer.write(names(each), each);
        if (done == 0) throw FileError(m_table.file() + ": no rows below the header");
        if (progress) progress(done, done);
        return m_writer.end();
    }

    std::vector<std::string> warnings() const {
        auto texts = m_reader.warnings();
        for (const auto sum : m_writer.negativeSums()) {
            texts.push_back(fmt::format("{}: {} would be negative in some rows and is missing there",
                                        m_table.file(), sum));
        }
        return texts;
    }
    bool hasHalfVectors() const { return m_writer.hasHalfVectors(); }

private:
    static std::string tablePath(const std::string& folder) {
        return (std::filesystem::path(folder) / "pmc_perf.csv").string();
    }
    // The members with the kernel's name. Names come again and again.
    std::string_view names(const Kernel& kernel) {
        const auto name = kernel.name;
        const auto [known, isNew] = m_names.try_emplace(name);
        if (isNew) {
            const auto what = fmt::format("{}: line {}: the kernel's name", m_table.file(), kernel.line);
            const auto plain = plainName(name);
            known->second = "\"FunctionName\":" + jsonText(plain, what);
            if (plain != name) known->second += ",\"MangledName\":" + jsonText(name, what);
        }
        return known->second;
    }

    CsvReader m_table;
    std::size_t m_name;
    CounterReader m_reader;
    std::unordered_map<std::string_view, std::string> m_names;
    RowWriter m_writer;
};

}  // namespace

RocprofTexts importRocprof(const RocprofImport& import, const Progress& progress) {
    RocprofTexts texts;
    RocprofImporter importer(import.folder);
    auto machine = makeMachine(import.folder, texts.warnings);
    auto program = import.programName.empty() ? machine.programName : import.programName;
    if (program.empty()) program = std::filesystem::weakly_canonical(import.folder).filename().string();
    const auto named =
        import.machineFile.empty() ? machine.text : jsonText(import.machineFile, "the machine file's name");
    auto head = fmt::format(
        "{{\n\"format\": \"roofline-result\",\n\"version\": 1,\n\"kind\": \"gpu\",\n"
        "\"program\": {{\"name\": {}}},\n\"machine\": {},\n\"rows\": [",
        jsonText(program, "the program's name"), trimmed(named));
    texts.result = importer.run(std::move(head), import.mergeKernels, progress);
    if (importer.hasHalfVectors() && !machine.halfPeakWarning.empty())
        texts.warnings.push_back(std::move(machine.halfPeakWarning));
    const auto warnings = importer.warnings();
    texts.warnings.insert(texts.warnings.end(), warnings.begin(), warnings.end());
    texts.machine = std::move(machine.text);
    return texts;
}

}  // namespace embedded_host
