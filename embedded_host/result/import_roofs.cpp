// Makes a machine file of a table of roofs, one line a roof and thread count.
#include "embedded_host/embedded_host.h"
#include "embedded_host/result/csv_reader.h"
#include "embedded_host/result/import_text.h"
#include "embedded_host/result/units.h"
#include "embedded_host/services/roof_captions.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <sstream>
#include <tuple>

namespace embedded_host {

namespace {

constexpr auto kColumns =
    std::to_array<std::string_view>({"threads", "roof", "unit", "value", "how", "packages", "strategy"});
constexpr std::size_t kRequiredColumns = 4;  // the first of `kColumns`
constexpr auto kHows = std::to_array<std::string_view>({"measured", "theoretical", "user"});
constexpr auto kStrategies = std::to_array<std::string_view>({"multi", "single"});
constexpr std::uint32_t kMostThreads = 1'000'000;  // of a machine file

// Benchmarks word the captions differently: "MEM load bandwidth" is the DRAM bandwidth, "scalar add" the
// Scalar Add Peak. What is left of a name tells the roofs apart.
std::string plainRoofName(std::string_view name) {
    constexpr auto kWords = std::to_array<std::pair<std::string_view, std::string_view>>(
        {{"load", ""}, {"peak", ""}, {"integer", "int"}, {"mem", "dram"}, {"memory", "dram"}});
    std::string lower(name);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    std::istringstream words(lower);
    std::string plain;
    for (std::string word; words >> word;) {
        const auto other =
            std::find_if(kWords.begin(), kWords.end(), [&](const auto& row) { return row.first == word; });
        plain += other == kWords.end() ? std::string_view(word) : other->second;
    }
    return plain;
}

// A device's roofs are named with "gpu" in front where a CPU has one of the same caption.
const RoofCaption* findRoof(std::string_view name) {
    const std::string plain = plainRoofName(name);
    const auto found = std::find_if(kRoofCaptions.begin(), kRoofCaptions.end(), [&](const RoofCaption& roof) {
        const std::string caption = plainRoofName(roof.caption);
        return plain == caption || (roof.owner == RoofOwner::Device && plain == "gpu" + caption);
    });
    return found == kRoofCaptions.end() ? nullptr : &*found;
}

class RoofImporter {
public:
    explicit RoofImporter(const std::string& file) : m_table(readFile(file), file) {
        for (const std::string_view name : m_table.header())
            if (std::find(kColumns.begin(), kColumns.end(), name) == kColumns.end())
                throw FileError(fmt::format("{}: unknown column {}{}", file, inQuotes(name),
                                            nearColumns(name, kColumns)));
        for (std::size_t i = 0; i < kColumns.size(); ++i) {
            const bool isRequired = i < kRequiredColumns;
            m_columns[i] = isRequired ? requireColumn(m_table, kColumns[i]) : m_table.findColumn(kColumns[i]);
        }
    }

    std::string run(const std::string& machineName) {
        std::string roofs;
        while (m_table.next(m_cells)) roofs += (roofs.empty() ? "\n" : ",\n") + roof();
        if (roofs.empty()) throw FileError(fmt::format("{}: no roofs below the header", m_table.file()));
        return fmt::format(
            "{{\n\"format\": \"roofline-machine\",\n\"version\": 1,\n\"name\": {},\n"
            "\"cores\": {{\"physical\": {}}},\n\"packages\": {},\n\"roofs\": [{}\n]\n}}\n",
            jsonText(machineName, "the machine's name"), m_mostThreads, m_mostPackages, roofs);
    }

private:
    std::string roof() {
        const RoofCaption* const caption = findRoof(cell("roof"));
        if (!caption) failUnknownRoof();
        const std::uint32_t threads = count("threads");
        const std::uint32_t packages = cell("packages").empty() ? 1 : count("packages");
        const std::string_view strategy = word("strategy", kStrategies).value_or(kStrategies[0]);
        if (!m_seen.emplace(caption->id, threads, packages, strategy).second)
            fail("roof", fmt::format("the {} stands above for the same threads", caption->caption));
        m_mostThreads = std::max(m_mostThreads, threads);
        m_mostPackages = std::max(m_mostPackages, packages);

        const double value = valueIn(unit(caption->isMemory));
        std::string text =
            fmt::format(R"({{"id":{},"name":"{}","value":{},"unit":"{}","threads":{})",
                        static_cast<int>(caption->id), caption->caption, value, cell("unit"), threads);
        if (m_columns[indexOf("packages")]) text += fmt::format(R"(,"packages":{})", packages);
        if (m_columns[indexOf("strategy")]) text += fmt::format(R"(,"strategy":"{}")", strategy);
        if (const auto how = word("how", kHows)) text += fmt::format(R"(,"how":"{}")", *how);
        return text + '}';
    }

    static std::size_t indexOf(std::string_view column) {
        return static_cast<std::size_t>(std::find(kColumns.begin(), kColumns.end(), column) -
                                        kColumns.begin());
    }

    // Empty for a column that the table lacks.
    std::string_view cell(std::string_view column) const {
        const auto index = m_columns[indexOf(column)];
        return index ? trimmed(m_cells[*index]) : std::string_view{};
    }

    RoofUnit unit(bool isMemory) const {
        const auto parsed = parseRoofUnit(cell("unit"));
        if (!parsed)
            fail("unit", fmt::format("expected {}, found {}", kRoofUnitForm, inQuotes(cell("unit"))));
        if (parsed->isMemory != isMemory)
            fail("unit", isMemory ? "expected bytes per second for a memory roof"
                                  : "expected operations per second for a compute roof");
        return *parsed;
    }

    // As given; within what a machine file may hold.
    double valueIn(const RoofUnit& unit) const {
        const auto number = parseNumber<double>(cell("value"));
        if (!number || *number * unit.factor < 1.0 || *number * unit.factor > 1e19)
            fail("value",
                 fmt::format("expected a number, 1 to 1e19 per second, found {}", inQuotes(cell("value"))));
        return *number;
    }

    std::uint32_t count(std::string_view column) const {
        const auto number = parseNumber<std::uint32_t>(cell(column));
        if (!number || *number < 1 || *number > kMostThreads)
            fail(column, fmt::format("expected a whole number from 1 to {}, found {}", kMostThreads,
                                     inQuotes(cell(column))));
        return *number;
    }

    // The first word of the cell; what follows it is a remark.
    std::optional<std::string_view> word(std::string_view column,
                                         std::span<const std::string_view> words) const {
        const std::string_view text = cell(column);
        if (text.empty()) return std::nullopt;
        const auto found = std::find(words.begin(), words.end(), text.substr(0, text.find_first_of(" :;,(")));
        if (found == words.end())
            fail(column, fmt::format("expected one of {}, found {}", fmt::join(words, ", "), inQuotes(text)));
        return *found;
    }

    [[noreturn]] void fail(std::string_view column, std::string_view what) const {
        throw FileError(
            fmt::format("{}: line {}, column \"{}\": {}", m_table.file(), m_table.line(), column, what));
    }
    [[noreturn]] void failUnknownRoof() const {
        std::vector<std::string_view> captions;
        for (const RoofCaption& row : kRoofCaptions)
            if (row.owner == RoofOwner::Cpu) captions.push_back(row.caption);
        fail("roof", fmt::format("unknown roof {}; expected one of \"{}\"", inQuotes(cell("roof")),
                                 fmt::join(captions, "\", \"")));
    }

    CsvReader m_table;
    std::array<std::optional<std::size_t>, kColumns.size()> m_columns;
    std::vector<std::string_view> m_cells;
    std::set<std::tuple<data_models2::RoofId, std::uint32_t, std::uint32_t, std::string_view>> m_seen;
    std::uint32_t m_mostThreads = 1;
    std::uint32_t m_mostPackages = 1;
};

}  // namespace

std::string importRoofs(const std::string& csvFile, const std::string& machineName) {
    return RoofImporter(csvFile).run(machineName);
}

}  // namespace embedded_host
