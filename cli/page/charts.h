// The charts of all configurations, taken apart into columns that they share.
#pragma once

#include "cli/page/columns.h"
#include "cli/page/rows.h"

#include <map>
#include <string>
#include <vector>

namespace cli::page {

// What can be chosen, one value of each group of the option tree: complete configurations with one memory
// level, the default one first.
std::vector<std::string> chartConfigurations(const Session& session);
// The values of the group of operations, such as "f", "i".
std::vector<std::string> operationOptions(const Session& session);

// One chart of one memory level.
struct Chart {
    std::string document;                  // the library's without its records
    std::map<std::string, Column> values;  // of the records, by key
    RowMask placed;                        // the rows that have a record
    std::string placedKey;                 // the key that each record has
    bool hasParents = false;
    Column parents;                   // places of the calling rows
    std::vector<std::string> causes;  // of the rows without a record; empty when each row has one
    std::string selectedRoofs;
};

// Asks the engine; the tasks of the library are done. Throws std::runtime_error when it has no answer.
Chart readChart(const Session& session, const Rows& rows, const std::string& configuration);

class Charts {
public:
    explicit Charts(Dictionary& dictionary) : m_dictionary(dictionary) {}

    void add(const std::string& configuration, Chart chart);
    // The members "columns" and "charts".
    void write(Writer& writer) const;

private:
    struct Shared {
        std::string document, selectedRoofs, placedKey;
        std::map<std::string, std::size_t> loops;
        std::optional<std::size_t> parents;
        std::vector<std::optional<std::size_t>> causes;
    };
    Dictionary& m_dictionary;
    Columns m_columns;
    std::map<std::string, Shared> m_charts;
};

}  // namespace cli::page
