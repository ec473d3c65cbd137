// How long the search for what dominates a program takes, beside a walk that only reads the same cells.
#include "host_interfaces/host_functions.h"

#include "embedded_host/embedded_host.h"

#include "roofline_model/factories.h"

#include "benchmarks/benchmarks.h"
#include "benchmarks/synthetic_result.h"
#include "benchmarks/timing.h"

#include <boost/property_tree/ptree.hpp>
#include <fmt/format.h>

#include <stdexcept>
#include <string>

namespace {

using namespace data_models2;
using namespace std::chrono_literals;

class CellReader final : public RefCounted<IVisitHandler<RowNode>> {
public:
    explicit CellReader(sptr_t<IDataset> dataset) : m_dataset(std::move(dataset)) {}

    variant_bag_t handlePreVisit(const sptr_t<RowNode>& row, const variant_bag_t&, bool&) override {
        work += row->getSpecification()->getRowType();
        for (const auto field : {FieldId::SelfTime, FieldId::MainDataType}) {
            variant_t cell;
            work += m_dataset->getValue(row, m_dataset->getColumn(field), 0, cell);
        }
        std::string text;
        work += m_dataset->getString(row, m_dataset->getColumn(FieldId::DataTypes), 0, text) + text.size();
        return {};
    }
    variant_bag_t handlePostVisit(const sptr_t<RowNode>&, const variant_bag_t&) override { return {}; }

    std::size_t work = 0;  // keeps what is only done to be timed

private:
    sptr_t<IDataset> m_dataset;
};

}  // namespace

int runDominanceBenchmark() {
    fmt::print(
        "best of {}, milliseconds; the background task, start to completion, beside reading its cells\n",
        kRuns);
    fmt::print("{:>8}{:>10}{:>10}{:>10}\n", "rows", "task", "bare", "ratio");
    std::size_t work = 0;
    for (const std::size_t rows : {1000, 10000, 100000}) {
        const auto result = embedded_host::parseResult(
            makeSyntheticResult({.rows = rows, .depth = 1, .levels = false, .types = true}),
            "synthetic.json");
        const auto viewModel = result->viewModel();
        const auto dataset = viewModel->getDataset(DataType::Cpu);
        const double task = best([&] {
            const auto engine = createRooflineInfo(viewModel);
            const auto run = [&] {
                engine->getSelectedRoofs({}, IRooflineInfo::Perspective::Program);  // starts the task
                if (!embedded_host::pumpTasks(1min)) throw std::runtime_error("the task doesn't end");
            };
            return seconds(run);
        });
        const double bare = best([&] {
            const sptr_t<CellReader> reader(new CellReader(dataset));
            const auto run = [&] { createDatasetHelper(dataset)->visit(reader, true); };
            const double time = seconds(run);
            work += reader->work;
            return time;
        });
        fmt::print("{:>8}{:>10.3f}{:>10.3f}{:>10.2f}\n", rows, task * 1e3, bare * 1e3, task / bare);
    }
    return work == 0;
}
