#include "results_comparer/exact_assignment.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace data_models2::results_comparer_algs {

namespace {

constexpr std::uint32_t kNobody = std::numeric_limits<std::uint32_t>::max();
constexpr double kFar = std::numeric_limits<double>::infinity();
constexpr double kMostWeight = 1e100;  // no sum of these overflows

// Prices for rows and columns, none negative, cover every pair: u + v >= weight, with equality where a pair
// is chosen, and 0 for what stays alone: then the total can't be raised. Rows enter one by one, each along
// the shortest path, which lowers the prices least: to a free column, or to a row that is better left alone.
class AugmentingPaths {
public:
    AugmentingPaths(const std::vector<Candidate>& list, const Meter& meter) : m_meter(meter) {
        const auto [rows, columns] = rowCounts(list, meter);
        m_edges.resize(rows);
        for (std::uint32_t i = 0; i < list.size(); ++i) {
            meter.pollAt(i);
            if (list[i].score > 0)
                m_edges[list[i].first].push_back({list[i].second, i, std::min(list[i].score, kMostWeight)});
        }
        m_rows.resize(rows);
        m_columns.resize(columns);
    }

    std::vector<OpenPairs::Pair> run() {
        for (std::uint32_t row = 0; row < m_rows.size(); ++row) enter(row);
        std::vector<OpenPairs::Pair> chosen;
        for (const auto& column : m_columns)
            if (column.row != kNobody) chosen.push_back(column.pair);
        std::sort(chosen.begin(), chosen.end());
        return chosen;
    }

private:
    struct Edge {
        std::uint32_t column;
        OpenPairs::Pair pair;
        double weight;
    };
    struct Row {
        double price = 0.0;
        std::uint32_t column = kNobody;
    };
    struct Column {
        double price = 0.0;
        std::uint32_t row = kNobody;
        OpenPairs::Pair pair = 0;
        // Of the path that is being looked for:
        double distance = kFar;
        std::uint32_t from = kNobody;
        OpenPairs::Pair by = 0;
    };

    void enter(std::uint32_t entering) {
        auto& price = m_rows[entering].price;
        for (const auto& edge : m_edges[entering])
            price = std::max(price, edge.weight - m_columns[edge.column].price);

        std::uint32_t alone = entering;
        double end = price;
        std::uint32_t row = entering;
        double distance = 0.0;
        std::uint32_t free = kNobody;
        while (true) {
            m_meter.poll();
            reach(row, distance);
            const auto nearest = takeNearest();
            if (nearest == kNobody || !(m_columns[nearest].distance < end)) break;
            distance = m_columns[nearest].distance;
            row = m_columns[nearest].row;
            if (row == kNobody) {
                free = nearest;
                end = distance;
                break;
            }
            m_done.push_back(nearest);
            if (distance + m_rows[row].price < end) {
                end = distance + m_rows[row].price;
                alone = row;
            }
        }
        settle(entering, end);
        if (free == kNobody && alone != entering) {
            free = m_rows[alone].column;
            m_rows[alone].column = kNobody;
        }
        shift(entering, free);
        for (const auto column : m_reached) m_columns[column].distance = kFar;
        m_reached.clear();
        m_waiting.clear();
        m_done.clear();
    }

    void reach(std::uint32_t row, double distance) {
        for (const auto& edge : m_edges[row]) {
            auto& column = m_columns[edge.column];
            const double slack = std::max(0.0, m_rows[row].price + column.price - edge.weight);
            if (!(distance + slack < column.distance)) continue;
            if (column.distance == kFar) {
                m_reached.push_back(edge.column);
                m_waiting.push_back(edge.column);
            }
            column.distance = distance + slack;
            column.from = row;
            column.by = edge.pair;
        }
    }

    // Of equally near ones a free one, which ends the path.
    std::uint32_t takeNearest() {
        if (m_waiting.empty()) return kNobody;
        const auto nearest = std::min_element(m_waiting.begin(), m_waiting.end(), [&](auto a, auto b) {
            const auto& left = m_columns[a];
            const auto& right = m_columns[b];
            if (left.distance != right.distance) return left.distance < right.distance;
            return left.row == kNobody && right.row != kNobody;
        });
        const auto column = *nearest;
        *nearest = m_waiting.back();
        m_waiting.pop_back();
        return column;
    }

    void settle(std::uint32_t entering, double end) {
        m_rows[entering].price -= end;
        for (const auto done : m_done) {
            auto& column = m_columns[done];
            column.price += end - column.distance;
            m_rows[column.row].price -= end - column.distance;
        }
    }

    // Every row on the path to `column` moves one column on.
    void shift(std::uint32_t entering, std::uint32_t column) {
        while (column != kNobody) {
            const auto row = m_columns[column].from;
            m_columns[column].row = row;
            m_columns[column].pair = m_columns[column].by;
            std::swap(m_rows[row].column, column);
            if (row == entering) return;
        }
    }

    const Meter& m_meter;
    std::vector<std::vector<Edge>> m_edges;
    std::vector<Row> m_rows;
    std::vector<Column> m_columns;
    std::vector<std::uint32_t> m_reached, m_waiting, m_done;  // columns of the path being looked for
};

}  // namespace

std::vector<OpenPairs::Pair> exactAssignment(const std::vector<Candidate>& list, const Meter& meter) {
    return AugmentingPaths(list, meter).run();
}

}  // namespace data_models2::results_comparer_algs
