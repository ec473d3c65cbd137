// Where an answer goes: files, stdout, or a readable table.
#pragma once

#include "cli/requests.h"

#include <functional>
#include <string>

namespace cli {

// The forms of one answer, each made only when it is asked for. A form that a subcommand hasn't got is empty.
struct Answer {
    using Form = std::function<std::string()>;
    Form json;
    Form csv;
    Form svg;
    Form table;
    bool jsonByDefault = false;  // else the table, when nothing was asked for
};

// Throws UsageError when two outputs want the same place.
void checkOutputs(const Outputs& outputs);
// JSON goes out to the byte; only a terminal is given a line end behind it. Named files are replaced.
void deliver(const Answer& answer, const Outputs& outputs, Console& console);
// The same without the table: for an answer that says why there is none.
void deliverFilesOnly(const Answer& answer, Outputs outputs, Console& console);

}  // namespace cli
