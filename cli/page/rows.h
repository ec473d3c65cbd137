// The rows of the page: what the library says of each as a whole, in columns.
#pragma once

#include "cli/page/columns.h"
#include "cli/row_lines.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace cli::page {

// The option of a row's own data, without what it calls.
inline constexpr auto kSelfData = "1";

struct Rows {
    using Node = data_models2::sptr_t<data_models2::RowNode>;

    // Aligned: every row that a chart could draw, in the dataset's order, with its self data.
    std::vector<RowLine> lines;
    std::vector<Node> nodes;
    std::vector<std::string> types;
    std::vector<std::optional<double>> calls;
    std::vector<std::optional<bool>> vectorised;

    std::unordered_map<std::string, std::size_t> places;  // by id

    std::size_t size() const { return lines.size(); }
    // The places of the rows with most time, the longest first.
    std::vector<std::size_t> longest(std::size_t most) const;
};

// The verdicts need a machine: without one every row has the cause "no roofs".
Rows readRowsOf(const Session& session);
void writeRows(Writer& writer, const Rows& rows, Dictionary& dictionary);
// An element for each memory level that rows have, in the order of the options.
void writeLevels(Writer& writer, const Rows& rows, const Session& session, Dictionary& dictionary);

}  // namespace cli::page
