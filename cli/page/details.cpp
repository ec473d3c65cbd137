// Asking for details: the library's own, the instruction mix and what is concluded.
#include "cli/page/details.h"

#include "host_interfaces/host_functions.h"

#include "cli/page/texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace cli::page {
namespace {

using json::Value;

// How the program says what the library concludes; %1 is the conclusion's first attribute.
std::string conclusionText(const Value& conclusion) {
    const auto id = json::text(conclusion, "id");
    std::string attribute;
    if (const auto* const params = json::member(conclusion, "params"); params && !params->ObjectEmpty())
        attribute = json::text(*params, params->MemberBegin()->name.GetString());
    return say("page_" + id, attribute.empty() ? id : id + ": %1", {attribute});
}

void writeConclusions(Writer& writer, const Value& answer) {
    writer.array(json::items(answer, "conclusions"),
                 [&](const Value& conclusion) { writer.text(conclusionText(conclusion)); });
}

struct Counted {
    std::string group, name, type;
    std::optional<double> instructions, operations;
};

std::optional<double> countIn(const Value& instruction, const char* name) {
    const auto* const count = json::member(instruction, name);
    return count ? json::number(*count, "value") : std::nullopt;
}

// The classes of the result file that decide something, by what they hold; %1 is the number.
struct InstructionClass {
    int number;
    const char *message, *english;
};
constexpr InstructionClass kAnyClass{0, "page_class", "class %1"};
constexpr InstructionClass kClasses[]{
    {3, "page_class_single", "single precision (class %1)"},
    {11, "page_class_vector", "vector (class %1)"},
    {12, "page_class_vector", "vector (class %1)"},
    {49, "page_class_vector", "vector (class %1)"},
    {63, "page_class_other", "other arithmetic (class %1)"},
    {64, "page_class_other", "other arithmetic (class %1)"},
    {65, "page_class_other", "other arithmetic (class %1)"},
    {74, "page_class_fma", "fused multiply-add (class %1)"},
};

template <class Number>
std::string className(Number number) {
    const auto* const found = std::find_if(std::begin(kClasses), std::end(kClasses), [&](const auto& each) {
        return each.number == static_cast<int>(number);
    });
    const auto& known = found == std::end(kClasses) ? kAnyClass : *found;
    return say(known.message, known.english, {std::to_string(number)});
}

// Of a kernel by instruction, of a loop by class.
std::vector<Counted> mixOf(const Value& answer, const data_models2::InstructionMix& classes) {
    std::vector<Counted> mix;
    if (const auto* const summary = json::member(answer, "opsAndBandwidth"))
        for (const auto& group : json::items(*summary, "instructionMix"))
            for (const auto& each : json::items(group, "instructions")) {
                const auto* const type = json::member(each, "dataType");
                mix.push_back({json::text(group, "name"), json::text(each, "instruction"),
                               type ? json::text(*type, "title") : std::string(),
                               countIn(each, "instructionCount"), countIn(each, "operationCount")});
            }
    for (const auto& [number, count] : classes)
        mix.push_back({{}, className(number), {}, count.toDouble(), {}});
    return mix;
}

void writeMix(Writer& writer, const std::vector<Counted>& mix) {
    if (mix.empty()) return void(writer.Null());
    writer.array(mix, [&](const Counted& each) {
        writer.object([&] {
            writer.member("group", each.group);
            writer.member("name", each.name);
            writer.member("type", each.type);
            writer.key("instructions");
            writer.number(each.instructions);
            writer.key("operations");
            writer.number(each.operations);
        });
    });
}

class DetailReader {
public:
    DetailReader(const Session& session, const Rows& rows)
        : m_rows(rows), m_rooflines(session, kSelfData, {}) {}

    std::string read(const Value& details, std::size_t place) const {
        const auto& row = m_rows.nodes[place];
        const auto text = m_rooflines.of(row)->getRooflineData();
        const auto answer = json::parse(text.empty() ? "{}" : text, "the library's row");
        Writer writer;
        writer.object([&] {
            for (const auto& member : details.GetObject()) {
                member.name.Accept(writer);
                member.value.Accept(writer);
            }
            writer.key("mix");
            writeMix(writer, mixOf(answer, data_models2::getInstructionMixMap(row, m_rooflines.dataset())));
            writer.key("conclusions");
            writeConclusions(writer, answer);
        });
        return writer.take();
    }

private:
    const Rows& m_rows;
    RowRooflines m_rooflines;
};

// The library warns of a row whose kind of operations isn't the chart's: each row is asked for in its own.
std::string configurationFor(const RowLine& line) {
    return line.operations == "int" ? "i-1" : line.operations == "float" ? "f-1" : "";
}

}  // namespace

std::map<std::string, std::string> readDetails(const Session& session, const Rows& rows,
                                               const std::vector<std::size_t>& places) {
    std::map<std::string, std::string> details;
    std::map<std::string, std::vector<std::string>> ids;  // by configuration
    for (const auto place : places) ids[configurationFor(rows.lines[place])].push_back(rows.lines[place].id);
    const DetailReader reader(session, rows);
    for (const auto& [configuration, own] : ids) {
        const auto text = session.engine->getLoopAdditionalInfo(
            fmt::format(R"({{"arrayOf":"item","item":["{}"]}})", fmt::join(own, R"(",")")), nullptr,
            completeConfiguration(session, configuration));
        if (text.empty()) continue;
        const auto answers = json::parse(text, "the library's details");
        for (const auto& answer : json::items(answers)) {
            const auto id = json::text(answer, "id");
            if (const auto place = rows.places.find(id); place != rows.places.end())
                details.emplace(id, reader.read(answer, place->second));
        }
    }
    return details;
}

}  // namespace cli::page
