#include "roofline_model/report_helpers.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/gpu_operation_map_provider.h"
#include "roofline_model/guard.h"
#include "roofline_model/rabbit.h"
#include "roofline_model/roof_names.h"
#include "roofline_model/row_data_access.h"

#include <boost/property_tree/ptree.hpp>

namespace data_models2::report_helpers {

namespace {

rabbit::array toJSON(const OperationMap& operations, rabbit::Allocator& allocator) {
    rabbit::array result(allocator);
    for (const auto& [key, value] : operations) {
        rabbit::object item(allocator);
        item.append("instructionType", key.instructionType);
        item.append("arithType", static_cast<std::uint32_t>(key.arithType));
        item.append("width", key.width);
        item.append("operationCount", value.operationCount);
        item.append("instructionCount", value.instructionCount);
        result.push(std::move(item));
    }
    return result;
}

// Writes the row that a walk leaves.
class FillOperationsMapRowVisitHandler final : public RefCounted<IVisitHandler<RowNode>> {
public:
    // The array lives as long as the walk.
    FillOperationsMapRowVisitHandler(rabbit::array& rows, const ISurveyingViewModel& viewModel,
                                     sptr_t<IDataset> dataset)
        : m_rows(rows),
          m_dataset(std::move(dataset)),
          m_statistics(viewModel.getDataset(DataType::GpuStatistics)),
          m_linker(viewModel.getRowLinker(DataType::Gpu, DataType::GpuStatistics)) {}

    variant_bag_t handlePreVisit(const sptr_t<RowNode>&, const variant_bag_t&, bool&) override { return {}; }
    variant_bag_t handlePostVisit(const sptr_t<RowNode>& row, const variant_bag_t&) override {
        if (!row) return {};
        auto& allocator = m_rows.allocator();
        rabbit::object item(allocator);
        item.append("id", roofline::helpers::getLoopId(row));
        item.append("name", checkData<std::string>(FieldId::FunctionName, {}, row, m_dataset));
        item.append("operations", toJSON(operationsOf(row), allocator));
        m_rows.push(std::move(item));
        return {};
    }

private:
    OperationMap operationsOf(const sptr_t<RowNode>& row) const {
        const auto linked = m_linker && m_statistics ? m_linker->getLinkedRow(row) : nullptr;
        return linked ? *GpuOperationMapProvider(linked, m_statistics).getOperationMap() : OperationMap();
    }

    rabbit::array& m_rows;
    sptr_t<IDataset> m_dataset;
    sptr_t<IDataset> m_statistics;
    std::shared_ptr<IDatasetRowLinker> m_linker;
};

}  // namespace

std::string getGpuOperationsMapsJson(const std::shared_ptr<ISurveyingViewModel>& viewModel) {
    return roofline::guarded(std::string(), [&]() -> std::string {
        const auto dataset = viewModel ? viewModel->getDataset(DataType::Gpu) : nullptr;
        const auto walker = createDatasetHelper(dataset);
        if (!walker) return {};
        return rabbit::writeArray([&](rabbit::array& rows) {
            const sptr_t<FillOperationsMapRowVisitHandler> handler(
                new FillOperationsMapRowVisitHandler(rows, *viewModel, dataset));
            walker->visit(handler, false);
        });
    });
}

}  // namespace data_models2::report_helpers
