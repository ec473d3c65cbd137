#include "roofline_model/offload_operation_map.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/row_data_access.h"

#include <boost/property_tree/ptree.hpp>

#include <array>

namespace data_models2 {

namespace {

struct Count {
    ArithTypeDef type;
    std::uint64_t width;  // bits
    FieldId field;        // giga operations
};

constexpr auto kCounts = std::to_array<Count>({
    {ArithTypeDef::Int, 32, FieldId::OffloadInt32Ops},
    {ArithTypeDef::Int, 64, FieldId::OffloadInt64Ops},
    {ArithTypeDef::Float, 32, FieldId::OffloadFloat32Ops},
    {ArithTypeDef::Float, 64, FieldId::OffloadFloat64Ops},
});

class OperationCounter final : public RefCounted<IVisitHandler<RowNode>> {
public:
    explicit OperationCounter(sptr_t<IDataset> dataset) : m_dataset(std::move(dataset)) {}

    variant_bag_t handlePreVisit(const sptr_t<RowNode>& row, const variant_bag_t&, bool&) override {
        constexpr double kMeasurable = 1e-12;
        if (row && row->getSpecification() &&
            checkData<double>(FieldId::OffloadElapsedTime, 0.0, row, m_dataset) > kMeasurable)
            mergeOperations(operations, getOffloadOperations(row, m_dataset));
        return {};
    }
    variant_bag_t handlePostVisit(const sptr_t<RowNode>&, const variant_bag_t&) override { return {}; }

    OperationMap operations;

private:
    const sptr_t<IDataset> m_dataset;
};

}  // namespace

OperationMap getOffloadOperations(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) {
    OperationMap operations;
    for (const auto& [type, width, field] : kCounts) {
        const double count = checkData<double>(field, 0.0, row, dataset);
        if (!(count > 0.0)) continue;
        operations[{static_cast<int>(GpuInstruction::Basic), type, width}].operationCount = count;
    }
    return operations;
}

std::shared_ptr<const OperationMap> getOffloadProgramOperations(const sptr_t<IDataset>& dataset) {
    const auto helper = createDatasetHelper(dataset);
    if (!helper) return nullptr;
    const sptr_t<OperationCounter> counter = new OperationCounter(dataset);
    helper->visit(counter, true);
    return std::make_shared<const OperationMap>(std::move(counter->operations));
}

}  // namespace data_models2
