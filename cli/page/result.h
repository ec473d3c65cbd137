// One result for the page: what its members hold, and the answers that a live page asks for one by one.
#pragma once

#include "cli/page/charts.h"
#include "cli/page/details.h"
#include "cli/page/rows.h"
#include "cli/session.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace cli::page {

// Told before each piece of work; throws to end it.
using Step = std::function<void()>;

// All calls belong to the thread of the session's engine. Shapes are those of docs/page_model.md; the answers
// throw UsageError for a configuration, operations or a row that the result hasn't got.
class Result {
public:
    // Reads the rows and waits for the library's tasks. `file` as the user has given it.
    Result(Session session, const std::string& file);

    const Session& session() const { return m_session; }
    const Rows& rows() const { return m_rows; }
    const std::string& fileName() const { return m_file; }  // without its folder
    // Complete ones with one memory level, the default first.
    const std::vector<std::string>& configurations() const { return m_configurations; }

    // The answers of `chart`, `roofs` and `details` of a served page.
    std::string chart(const std::string& configuration) const;
    std::string roofs(const std::string& operations) const;
    std::string details(const std::string& id) const;

    // The members of a Result but for `details`, the object left open. `isWhole`: with all charts and roofs.
    std::string open(bool isWhole, const Step& step) const;
    // Details of the rows with most time, at most so many: id and JSON text, the longest first.
    std::vector<std::pair<std::string, std::string>> longestDetails(std::size_t most, const Step& step) const;
    // How often `open` and `longestDetails` tell a step.
    std::size_t steps(bool isWhole, std::size_t detailed) const;

private:
    void writeHead(Writer& writer, Dictionary& dictionary) const;
    void writeRoofs(Writer& writer, const std::string& operations) const;
    void writeSetUps(Writer& writer, const std::string& configuration) const;

    Session m_session;
    std::string m_file;
    std::string m_summary;
    Rows m_rows;
    std::vector<std::string> m_configurations;
};

}  // namespace cli::page
