// Writing of answers.
#include "cli/answer.h"

#include "embedded_host/embedded_host.h"

#include <algorithm>
#include <array>

namespace cli {
namespace {

struct Output {
    const std::string& path;
    const Answer::Form& form;
};

void write(const Output& output, Console& console) {
    if (output.path.empty() || !output.form) return;
    const auto text = output.form();
    if (output.path != "-") {
        embedded_host::writeFile(output.path, text, true);
        console.err << "wrote " << output.path << '\n';
        return;
    }
    console.out << text;
    if (console.outIsTerminal && !text.empty() && text.back() != '\n') console.out << '\n';
}

}  // namespace

void checkOutputs(const Outputs& outputs) {
    const std::array<std::string, 4> places{outputs.json, outputs.csv, outputs.svg, outputs.table ? "-" : ""};
    for (auto place = places.begin(); place != places.end(); ++place) {
        if (place->empty() || std::find(std::next(place), places.end(), *place) == places.end()) continue;
        throw UsageError(*place == "-" ? "only one answer can go to stdout"
                                       : "two answers can't go to the same file: " + *place);
    }
}

void deliver(const Answer& answer, const Outputs& outputs, Console& console) {
    static const std::string kStdout = "-";
    deliverFilesOnly(answer, outputs, console);
    const bool nothingAsked = outputs.json.empty() && outputs.csv.empty() && outputs.svg.empty();
    if (!outputs.table && !nothingAsked) return;
    write({kStdout, !outputs.table && answer.jsonByDefault ? answer.json : answer.table}, console);
}

void deliverFilesOnly(const Answer& answer, Outputs outputs, Console& console) {
    for (const auto& output : {Output{outputs.json, answer.json}, Output{outputs.csv, answer.csv},
                               Output{outputs.svg, answer.svg}})
        write(output, console);
}

}  // namespace cli
