// `roofline template`: everything that a report tells of a program but its loops.
#include "cli/answer.h"
#include "cli/session.h"

namespace cli {

int runTemplate(const TemplateRequest& request, Console& console) {
    const auto session = openSession(request.source);
    waitForTasks();  // what dominates the program is selected
    const auto text = session.engine->getReportTemplate(nullptr);
    if (text.empty()) throw std::runtime_error(request.source.file + ": the library makes no template of it");
    Answer answer;
    answer.json = [&] { return text; };
    answer.jsonByDefault = true;
    deliver(answer, {}, console);
    return kDone;
}

}  // namespace cli
