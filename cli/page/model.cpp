// Putting the model together.
#include "cli/page/model.h"

#include "cli/page/texts.h"

#include <fmt/format.h>

#include <algorithm>

namespace cli::page {
namespace {

constexpr int kFormat = 1;

std::optional<double> timeOf(const RowLine& line) { return line.seconds; }

void writePair(Writer& writer, const ModelRequest& request, const ComparedPair& pair) {
    const auto& base = request.results[0]->rows().places;
    const auto& other = request.results[1]->rows().places;
    const auto before = base.find(pair.before.id), after = other.find(pair.after.id);
    if (before == base.end() || after == other.end()) return;  // a row that no chart draws
    writer.object([&] {
        writer.key("base");
        writer.Uint64(before->second);
        writer.key("new");
        writer.Uint64(after->second);
        writer.key("match");
        writer.Double(pair.match);
        writer.member("change", kChangeNames[static_cast<std::size_t>(request.comparison->changeOf(pair))]);
        writer.key("timeBase");
        writer.number(timeOf(pair.before));
        writer.key("timeNew");
        writer.number(timeOf(pair.after));
        writer.key("speedUp");
        writer.number(pair.speedUp());
    });
}

void writeComparison(Writer& writer, const ModelRequest& request) {
    const auto& comparison = *request.comparison;
    const auto alone = [&](const char* name, const std::vector<RowLine>& lines, const Result& result) {
        writer.key(name);
        writer.StartArray();
        for (const auto& line : lines)
            if (const auto found = result.rows().places.find(line.id); found != result.rows().places.end())
                writer.Uint64(found->second);
        writer.EndArray();
    };
    auto pairs = comparison.pairs;
    sortPairs(pairs, PairOrder::Delta);
    writer.object([&] {
        writer.key("noise");
        writer.Double(comparison.noise);
        writer.key("pairs");
        writer.array(pairs, [&](const ComparedPair& pair) { writePair(writer, request, pair); });
        alone("baseOnly", comparison.beforeOnly, *request.results[0]);
        alone("newOnly", comparison.afterOnly, *request.results[1]);
        const auto ofPairs = comparison.pairTimes(), ofAll = comparison.allTimes();
        writer.key("totals");
        writer.object([&] {
            const std::pair<const char*, std::optional<double>> sums[] = {
                {"pairsBase", ofPairs.before},
                {"pairsNew", ofPairs.after},
                {"allBase", ofAll.before},
                {"allNew", ofAll.after},
                {"meanSpeedUp", comparison.meanSpeedUp()}};
            for (const auto& [name, sum] : sums) {
                writer.key(name);
                writer.number(sum);
            }
        });
    });
}

}  // namespace

Model::Model(const ModelRequest& request, const Step& step) : m_isWhole(request.live.empty()) {
    Writer writer;
    writer.StartObject();
    writer.key("format");
    writer.Int(kFormat);
    writer.member("language", request.language.empty() ? "en" : request.language);
    writer.key("texts");
    writeTexts(writer);
    writer.key("live");
    writer.raw(request.live);
    writer.key("comparison");
    request.comparison ? writeComparison(writer, request) : void(writer.Null());
    m_head = writer.take();
    for (const auto* const result : request.results) {
        auto& part = m_parts.emplace_back();
        part.head = result->open(m_isWhole, step);
        if (m_isWhole) part.details = result->longestDetails(kMostDetails, step);
        part.rows = result->rows().size();
        part.name =
            fmt::format("{} ({})", programOf(result->session(), result->fileName()), result->fileName());
        m_rowCount += part.rows;
        m_chartCount += m_isWhole ? result->configurations().size() : 0;
    }
}

std::size_t Model::steps(const ModelRequest& request) {
    std::size_t all = 0;
    for (const auto* const result : request.results) all += result->steps(request.live.empty(), kMostDetails);
    return all;
}

std::size_t Model::detailCount(std::size_t detailed) const {
    std::size_t count = 0;
    for (const auto& part : m_parts) count += std::min(detailed, part.details.size());
    return count;
}

std::string Model::text(std::size_t detailed) const {
    auto text = m_head + R"(,"results":[)";
    for (std::size_t i = 0; i < m_parts.size(); ++i) {
        const auto& details = m_parts[i].details;
        text += (i > 0 ? "," : "") + m_parts[i].head + R"(,"details":{)";
        for (std::size_t row = 0; row < std::min(detailed, details.size()); ++row)
            text += (row > 0 ? ",\"" : "\"") + details[row].first + "\":" + details[row].second;
        text += "}}";
    }
    Writer notes;
    notes.StartArray();
    for (const auto& part : m_parts) {
        const auto count = std::min(detailed, part.details.size());
        if (!m_isWhole || count == part.rows) continue;
        const std::vector<std::string> values{std::to_string(count), std::to_string(part.rows), part.name};
        notes.text(
            m_parts.size() == 1
                ? say("page_note_details", "Details are there for the %1 rows with most time, of %2.", values)
                : say("page_note_details_of", "%3: details are there for the %1 rows with most time, of %2.",
                      values));
    }
    notes.EndArray();
    return text + R"(],"notes":)" + notes.take() + '}';
}

}  // namespace cli::page
