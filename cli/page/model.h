// The whole data of the page, as docs/page_model.md has it.
#pragma once

#include "cli/comparison.h"
#include "cli/page/result.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cli::page {

inline constexpr std::size_t kMostDetails = 500;  // rows of a result in a report

struct ModelRequest {
    std::vector<const Result*> results;  // one, or the base and the new one
    std::optional<Comparison> comparison;
    std::string language;
    std::string live;  // JSON of that member; empty: a report, which holds all answers
};

// A model in pieces, so that the rows with details can be fewer.
class Model {
public:
    // Asks the engines for everything; tells a step for each piece of `steps`.
    Model(const ModelRequest& request, const Step& step);
    static std::size_t steps(const ModelRequest& request);

    // The JSON text with details of at most so many rows of each result.
    std::string text(std::size_t detailed) const;

    std::size_t rowCount() const { return m_rowCount; }
    std::size_t chartCount() const { return m_chartCount; }
    // Rows with details in a text of that limit.
    std::size_t detailCount(std::size_t detailed) const;

private:
    struct Part {
        std::string head;
        std::vector<std::pair<std::string, std::string>> details;
        std::size_t rows;
        std::string name;  // of the program and its file
    };
    std::string m_head;  // all but results and notes, the object left open
    std::vector<Part> m_parts;
    std::size_t m_rowCount = 0;
    std::size_t m_chartCount = 0;
    bool m_isWhole;
};

}  // namespace cli::page
