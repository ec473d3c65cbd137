// Writing of a result's members.
#include "cli/page/result.h"

#include "cli/page/texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <utility>

namespace cli::page {
namespace {

constexpr std::size_t kDetailsAtOnce = 50;
const std::string kNoDetails = "null";  // of a row of which the library tells nothing

std::string lower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

template <class Range, class Text>
bool contains(const Range& range, const Text& text) {
    return std::find(range.begin(), range.end(), text) != range.end();
}

}  // namespace

Result::Result(Session session, const std::string& file)
    : m_session(std::move(session)),
      m_file(std::filesystem::path(file).filename().string()),
      m_summary(loadSummary(m_session).value_or(std::string())),
      m_rows(readRowsOf(m_session)),
      m_configurations(chartConfigurations(m_session)) {}

std::string Result::chart(const std::string& configuration) const {
    if (!contains(m_configurations, configuration))
        throw UsageError(fmt::format("there is no configuration '{}'", configuration));
    Dictionary dictionary;
    Charts charts(dictionary);
    charts.add(configuration, readChart(m_session, m_rows, configuration));
    Writer writer;
    writer.object([&] {
        charts.write(writer);
        writer.key("dictionary");
        dictionary.write(writer);
    });
    return writer.take();
}

std::string Result::roofs(const std::string& operations) const {
    if (!contains(operationOptions(m_session), operations))
        throw UsageError(fmt::format("there are no operations '{}'", operations));
    Writer writer;
    writeRoofs(writer, operations);
    return writer.take();
}

std::string Result::details(const std::string& id) const {
    const auto place = m_rows.places.find(id);
    if (place == m_rows.places.end()) throw UsageError(fmt::format("there is no row '{}'", id));
    const auto found = readDetails(m_session, m_rows, {place->second});
    return found.empty() ? kNoDetails : found.begin()->second;
}

void Result::writeRoofs(Writer& writer, const std::string& operations) const {
    const auto& engine = *m_session.engine;
    const auto configuration = completeConfiguration(m_session, operations);
    const RoofChoice choice;
    const auto asRun = engine.getRoofs(configuration, threadingOf(m_session, choice), perspectiveOf(choice));
    writer.object([&] {
        writer.key("asRun");
        writer.rounded(asRun.empty() ? "[]" : asRun);
        writer.key("setUps");
        writeSetUps(writer, configuration);
    });
}

// Of a device the library lists a choice of sub-devices in place of set-ups: an option's value stands for
// packages.
void Result::writeSetUps(Writer& writer, const std::string& configuration) const {
    const auto& engine = *m_session.engine;
    const auto text = engine.getThreadsInfo();
    const auto info = json::parse(text.empty() ? "{}" : text, "the library's sub-devices");
    const auto* const group = json::member(info, "group");
    if (!group) {
        const auto setUps = engine.getAllRoofs(configuration);
        return writer.rounded(setUps.empty() ? "[]" : setUps);
    }
    writer.array(json::items(*group, "options"), [&](const json::Value& option) {
        RoofChoice choice;
        choice.packages = static_cast<int>(json::number(option, "value").value_or(0));
        const auto roofs =
            engine.getRoofs(configuration, threadingOf(m_session, choice), perspectiveOf(choice));
        writer.object([&] {
            writer.member("caption", json::text(option, "caption"));
            writer.key("packageCount");
            writer.Int(choice.packages);
            writer.key("roofs");
            writer.rounded(roofs.empty() ? "[]" : roofs);
        });
    });
}

void Result::writeHead(Writer& writer, Dictionary& dictionary) const {
    const auto& engine = *m_session.engine;
    const auto& kind = *m_session.kind;
    const auto& models = m_session.models;
    writer.member("program", programOf(m_session, m_file));
    writer.member("file", m_file);
    writer.member("machine", m_session.result->machineName());
    writer.member("place", say(kind.place(threadingOf(m_session, {}), models)));
    writer.member("kind", lower(kind.name));
    writer.key("isProjected");
    writer.Bool(m_session.result->isProjected());
    writer.key("hasSummary");
    writer.Bool(models.survey != nullptr);
    const auto seconds = models.all->getProgramInfo().elapsedTime;
    writer.key("seconds");
    writer.number(seconds > 0 ? std::optional(seconds) : std::nullopt);
    const auto frame = engine.getReportTemplate(nullptr);
    writer.key("template");
    writer.rounded(frame.empty() ? "{}" : frame);
    writer.key("options");
    writer.rounded(engine.getRooflineOptions());
    writer.member("configuration", m_configurations.front());
    writer.key("threads");
    writer.rounded(engine.getThreadsInfo());
    writer.key("summary");
    writer.rounded(m_summary);
    writer.key("rows");
    writeRows(writer, m_rows, dictionary);
    writer.key("levels");
    writeLevels(writer, m_rows, m_session, dictionary);
}

std::string Result::open(bool isWhole, const Step& step) const {
    Writer writer;
    Dictionary dictionary;
    Charts charts(dictionary);
    writer.StartObject();
    step();
    writeHead(writer, dictionary);
    if (isWhole)
        for (const auto& configuration : m_configurations) {
            step();
            charts.add(configuration, readChart(m_session, m_rows, configuration));
        }
    charts.write(writer);
    writer.key("dictionary");
    dictionary.write(writer);
    writer.key("roofs");
    writer.object([&] {
        if (!isWhole) return;
        for (const auto& operations : operationOptions(m_session)) {
            writer.key(operations);
            writeRoofs(writer, operations);
        }
    });
    return writer.take();
}

std::vector<std::pair<std::string, std::string>> Result::longestDetails(std::size_t most,
                                                                        const Step& step) const {
    const auto places = m_rows.longest(most);
    std::vector<std::pair<std::string, std::string>> details;
    for (std::size_t from = 0; from < places.size(); from += kDetailsAtOnce) {
        step();
        const auto to = std::min(places.size(), from + kDetailsAtOnce);
        const std::vector<std::size_t> some(places.begin() + static_cast<std::ptrdiff_t>(from),
                                            places.begin() + static_cast<std::ptrdiff_t>(to));
        auto found = readDetails(m_session, m_rows, some);
        for (const auto place : some) {
            const auto& id = m_rows.lines[place].id;
            const auto each = found.find(id);
            details.emplace_back(id, each == found.end() ? kNoDetails : std::move(each->second));
        }
    }
    return details;
}

std::size_t Result::steps(bool isWhole, std::size_t detailed) const {
    if (!isWhole) return 1;
    return 1 + m_configurations.size() +
           (std::min(detailed, m_rows.size()) + kDetailsAtOnce - 1) / kDetailsAtOnce;
}

}  // namespace cli::page
