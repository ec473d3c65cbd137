// The loops that apply a rule to a whole column.
#include "embedded_host/result/derivation.h"

#include "embedded_host/result/kinds.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

FieldType typeOf(FieldId field) { return kFields[static_cast<std::size_t>(fieldSlot(field))].type; }

bool isEmpty(const Column& column) {
    return std::all_of(column.present.begin(), column.present.end(), [](auto word) { return word == 0; });
}

// A column may stand for several fields once it is filled; it is written to only by the rule of its own
// field, before any other field shares it.
class Deriver {
public:
    Deriver(RowTable& table, std::uint32_t usedThreads)
        : m_table(table), m_threads(usedThreads), m_words((table.size() + 63) / 64) {}

    void apply(const DerivationRule& rule) {
        auto& target = m_table.column(rule.target);
        if (!target && share(rule)) return;
        const bool isNew = !target;
        if (isNew) target = std::make_shared<Column>(typeOf(rule.target), m_table.size());
        fill(rule, *target);
        if (isNew && isEmpty(*target)) target.reset();
    }

private:
    static auto where(const Column& column) {
        return [&column](std::size_t word) { return column.present[word]; };
    }
    auto everyRow() const {
        return [this](std::size_t word) {
            const auto rows = m_table.size() - word * 64;
            return rows >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << rows) - 1;
        };
    }
    // `candidates(word)` gives the rows that have their operands, 64 at a time.
    template <class Candidates, class Visit>
    void forMissing(const Column& target, Candidates candidates, Visit visit) const {
        forEachBit(
            m_words, [&](std::size_t word) { return candidates(word) & ~target.present[word]; }, visit);
    }
    template <class Candidates, class Formula>
    void calculate(Column& target, Candidates candidates, Formula formula) const {
        auto* const values = std::get<std::vector<double>>(target.cells).data();
        forMissing(target, candidates, [&](std::size_t row) {
            const double value = formula(row);
            if (!std::isfinite(value)) return;
            values[row] = value;
            target.present[row / 64] |= std::uint64_t{1} << (row % 64);
        });
    }

    // Lets a field without cells have an existing column when that must hold the same: texts that are copied,
    // totals of a file without a tree, and the ratios of such totals. True when there is nothing left to do.
    bool share(const DerivationRule& rule) {
        auto& target = m_table.column(rule.target);
        const auto* const a = operand(rule.a);
        const auto* const b = operand(rule.b);
        switch (rule.operation) {
            case Derivation::Copy:
                target = m_table.column(rule.a);
                return true;
            case Derivation::Total:
                if (m_table.hasTree) return !a;
                target = m_table.column(rule.a);
                return true;
            case Derivation::Ratio: {
                if (!a || !b) return true;
                const auto made = std::find_if(m_ratios.begin(), m_ratios.end(), [&](const auto& ratio) {
                    return ratio.a == a && ratio.b == b;
                });
                if (made == m_ratios.end()) return false;
                target = m_table.column(made->target);
                return true;
            }
            case Derivation::PerThread:
            case Derivation::AllThreads:
            case Derivation::Giga:
                return !a;
            case Derivation::Sum:
                return !a && !b;
            default:
                return false;
        }
    }

    void fill(const DerivationRule& rule, Column& target) {
        const auto* const a = operand(rule.a);
        const auto* const b = operand(rule.b);
        switch (rule.operation) {
            case Derivation::RowId:
                forMissing(target, everyRow(), [&](auto row) { target.set(row, m_table.ids[row]); });
                return;
            case Derivation::RowIdText:
                forMissing(target, everyRow(), [&](auto row) {
                    target.set(row, Column::Text(new SharedText(std::to_string(m_table.ids[row]))));
                });
                return;
            case Derivation::UsedThreads:
                forMissing(target, everyRow(), [&](auto row) { target.set(row, m_threads); });
                return;
            case Derivation::Copy:
                if (!a) return;
                forMissing(target, where(*a), [&](auto row) { target.set(row, a->as<Column::Text>()[row]); });
                return;
            case Derivation::PerThread:
            case Derivation::AllThreads: {
                if (!a) return;
                const bool isPerThread = rule.operation == Derivation::PerThread;
                const double* const from = a->as<double>().data();
                calculate(target, where(*a), [&](auto row) {
                    return isPerThread ? from[row] / m_threads : from[row] * m_threads;
                });
                return;
            }
            case Derivation::Giga: {
                if (!a) return;
                const double* const from = a->as<double>().data();
                return calculate(target, where(*a), [&](auto row) { return from[row] / 1e9; });
            }
            case Derivation::Sum:
                return sum(a, b, target);
            case Derivation::Ratio: {
                if (!a || !b) return;
                const bool isNew = isEmpty(target);
                const double* const over = a->as<double>().data();
                const double* const under = b->as<double>().data();
                calculate(
                    target, [&](auto word) { return a->present[word] & b->present[word]; },
                    [&](auto row) { return over[row] / under[row]; });
                if (isNew) m_ratios.push_back({rule.target, a, b});
                return;
            }
            case Derivation::Total:
                return addUp(a, target);
        }
    }

    void sum(const Column* a, const Column* b, Column& target) {
        if (!a) std::swap(a, b);
        if (!a) return;
        const double* const first = a->as<double>().data();
        if (!b) return calculate(target, where(*a), [&](auto row) { return first[row]; });
        const double* const second = b->as<double>().data();
        calculate(
            target, [&](auto word) { return a->present[word] | b->present[word]; },
            [&](auto row) { return first[row] + second[row]; });
    }

    // From the last row to the first: the rows below a row are complete when it is reached. `totals` gathers
    // what the children have until a row's own turn.
    void addUp(const Column* self, Column& target) {
        const auto rows = m_table.size();
        std::vector<double> totals(rows);
        std::vector<char> known(rows);
        const double* const given = target.as<double>().data();
        for (std::size_t row = rows; row-- > 0;) {
            if (target.has(row)) {
                totals[row] = given[row];
                known[row] = 1;
            } else if (self && self->has(row)) {
                totals[row] += self->as<double>()[row];
                known[row] = 1;
            }
            const auto parent = m_table.parents[row];
            if (!known[row]) continue;
            if (std::isfinite(totals[row])) target.set(row, totals[row]);
            if (parent == RowTable::kNoParent) continue;
            totals[parent] += totals[row];
            known[parent] = 1;
        }
    }

    const Column* operand(FieldId field) const {
        return field == FieldId::None ? nullptr : m_table.find(field);
    }

    // A ratio column that holds nothing but the quotients of two columns.
    struct Made {
        FieldId target;
        const Column* a;
        const Column* b;
    };

    RowTable& m_table;
    const std::uint32_t m_threads;
    const std::size_t m_words;
    std::vector<Made> m_ratios;
};

}  // namespace

void derive(RowTable& table, ResultKind kind, std::uint32_t usedThreads) {
    Deriver deriver(table, usedThreads);
    for (const auto& rule : traitsOf(kind).derivationRules()) deriver.apply(rule);
}

}  // namespace embedded_host
