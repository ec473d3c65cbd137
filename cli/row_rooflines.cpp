// The library reads a row's threads from the row's cells: to choose them is to show it the dataset with other
// cells.
#include "cli/row_rooflines.h"

#include "cli/unplaced_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace cli {
namespace {

using namespace data_models2;

class ThreadColumn final : public RefCounted<ColumnNode> {
public:
    std::uint64_t getId() const override { return static_cast<std::uint64_t>(FieldId::ThreadCount); }
    sptr_t<IColumnSpecification> getSpecification() const override { return {}; }
    sptr_t<ColumnNode> getParent() const override { return {}; }
    int getChildren(generic_iterator_t<sptr_t<ColumnNode>>&, int, int) const override { return -1; }
};

class ChosenData final : public RefCounted<IDataset> {
public:
    // `threads` 0: each row's own.
    ChosenData(sptr_t<IDataset> dataset, int threads)
        : m_dataset(std::move(dataset)),
          m_threads(threads > 0 ? new ThreadColumn : nullptr),
          m_threadCount(static_cast<std::uint32_t>(threads)) {}

    DataType getDataType() const override { return m_dataset->getDataType(); }
    sptr_t<ColumnNode> getColumn(FieldId field) const override {
        if (m_threads && field == FieldId::ThreadCount) return m_threads;
        return m_dataset->getColumn(field);
    }
    bool getValue(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column, int aggregation,
                  variant_t& out) const override {
        if (!m_threads || column != m_threads) return m_dataset->getValue(row, column, aggregation, out);
        if (row) out = m_threadCount;
        return row != nullptr;
    }
    bool getString(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column, int aggregation,
                   std::string& out) const override {
        if (!m_threads || column != m_threads) return m_dataset->getString(row, column, aggregation, out);
        if (row) out = std::to_string(m_threadCount);
        return row != nullptr;
    }
    RowIterator getRows(int from) const override { return m_dataset->getRows(from); }
    std::uint64_t getObjectId(const sptr_t<RowNode>& row) const override {
        return m_dataset->getObjectId(row);
    }

private:
    const sptr_t<IDataset> m_dataset;
    const sptr_t<ColumnNode> m_threads;
    const std::uint32_t m_threadCount;
};

bool isSelf(const std::string& configuration) {
    return ('-' + configuration + '-').find("-1-") != std::string::npos;
}

// Rows with rows below them, whose total data aren't their own.
std::set<std::uint64_t> callersOf(const sptr_t<IDataset>& tree) {
    std::set<std::uint64_t> callers;
    forEachRow(tree, [&](const sptr_t<RowNode>& row) {
        if (const auto parent = row->getParent()) callers.insert(parent->getId());
    });
    return callers;
}

}  // namespace

RowRooflines::RowRooflines(const Session& session, const std::string& configuration, const RoofChoice& choice)
    : m_isTotal(session.tree && !isSelf(configuration)),
      m_dataset(m_isTotal ? session.tree : session.rows),
      m_features(threadingOf(session, choice)),
      m_kind(*session.kind),
      m_models(session.models) {
    if (!m_dataset) throw std::runtime_error("the result has no rows");
    m_chosen = new ChosenData(m_dataset, choice.threads);
    if (session.tree && !m_isTotal) m_callers = callersOf(session.tree);
    if (!m_models.all->getRoofManager(m_dataset->getDataType()))
        throw std::runtime_error("the result knows no roofs: give a machine with --machine FILE");
}

std::shared_ptr<IRowRooflineInfo> RowRooflines::of(const Row& row) const {
    auto info = m_kind.createRow({row, m_chosen, m_models, m_features});
    if (!info) throw std::runtime_error(fmt::format("the library has no answer for row {}", row->getId()));
    return info;
}

bool RowRooflines::isWithCallees(const Row& row, const IRowRooflineInfo& info) const {
    return !m_isTotal && info.areTotalMetricsAvailable() && m_callers.count(row->getId());
}

void warnOfOddThreads(const Session& session, const RoofChoice& choice, Console& console) {
    if (!session.kind->usedThreads || choice.single) return;
    const int threads = choice.threads > 0 ? choice.threads : session.kind->usedThreads(session.models);
    if (threads < 2 || threads % 2 == 0) return;
    console.err << fmt::format("note: a row's roofs are set up for 1 or an even number of threads: {} here\n",
                               threads + 1);
}

}  // namespace cli
