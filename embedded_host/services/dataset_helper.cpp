// Walking the rows of a dataset without recursion.
#include "host_interfaces/host_functions.h"

#include <boost/property_tree/ptree.hpp>

#include <stack>

namespace data_models2 {
namespace {

using Handler = IVisitHandler<RowNode>;

// A row whose children are being visited; the outermost one has no row and lists the top rows. Built in
// place: a bag can't be moved, only copied.
struct Level {
    explicit Level(RowIterator topRows) : rest(std::move(topRows)) {}
    Level(Handler& handler, const sptr_t<RowNode>& visited, const variant_bag_t& parent)
        : row(visited), bag(handler.handlePreVisit(row, parent, skipChildren)) {
        if (!skipChildren && row->getChildren(rest, 0, 1) <= 0) rest = {};
    }

    bool skipChildren = false;
    sptr_t<RowNode> row;
    variant_bag_t bag;
    RowIterator rest;
};

class DatasetHelper final : public RefCounted<IDatasetHelper> {
public:
    explicit DatasetHelper(sptr_t<IDataset> dataset) : m_dataset(std::move(dataset)) {}

    void visit(const sptr_t<Handler>& handler, bool preVisitOnly) override {
        if (!handler) return;
        std::stack<Level> levels;
        levels.emplace(m_dataset->getRows(0));
        while (true) {
            auto& level = levels.top();
            if (!level.rest.isEnd()) {
                const auto row = *level.rest;
                ++level.rest;
                if (row) levels.emplace(*handler, row, level.bag);
                continue;
            }
            if (!level.row) return;
            const auto row = level.row;
            levels.pop();
            if (!preVisitOnly) handler->handlePostVisit(row, levels.top().bag);
        }
    }

private:
    sptr_t<IDataset> m_dataset;
};

}  // namespace

sptr_t<IDatasetHelper> createDatasetHelper(const sptr_t<IDataset>& dataset) {
    return dataset ? sptr_t<IDatasetHelper>(new DatasetHelper(dataset)) : nullptr;
}

RowIterator dataset_helpers::getChildren(const sptr_t<RowNode>& row) {
    RowIterator children;
    return row && row->getChildren(children, 0, 1) > 0 ? children : RowIterator();
}

}  // namespace data_models2
