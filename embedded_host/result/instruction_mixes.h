// Instruction counts by row and class. A row without a mix takes no space.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace embedded_host {

class InstructionMixes {
public:
    // Rows come in ascending order; a row's classes come together, each once.
    void add(std::size_t row, int instructionClass, std::int64_t count) {
        if (m_rows.empty() || m_rows.back() != row) {
            m_rows.push_back(static_cast<std::uint32_t>(row));
            m_starts.push_back(m_counts.size());
        }
        m_classes.push_back(instructionClass);
        m_counts.push_back(count);
    }

    // Calls `take(class, count)` for each class of the row, in the order in which they came.
    template <class Take>
    void forEach(std::size_t row, Take take) const {
        const auto found = std::lower_bound(m_rows.begin(), m_rows.end(), row);
        if (found == m_rows.end() || *found != row) return;
        const auto place = static_cast<std::size_t>(found - m_rows.begin());
        const auto end = place + 1 < m_starts.size() ? m_starts[place + 1] : m_counts.size();
        for (auto i = m_starts[place]; i < end; ++i) take(m_classes[i], m_counts[i]);
    }

private:
    std::vector<std::uint32_t> m_rows;  // that have a mix
    std::vector<std::size_t> m_starts;  // where a row's counts start
    std::vector<int> m_classes;
    std::vector<std::int64_t> m_counts;
};

}  // namespace embedded_host
