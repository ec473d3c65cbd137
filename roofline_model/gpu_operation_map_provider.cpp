#include "roofline_model/gpu_operation_map_provider.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/row_data_access.h"

#include <boost/property_tree/ptree.hpp>

#include <deque>
#include <unordered_set>
#include <utility>

namespace data_models2 {

namespace {

constexpr auto kUnit = "roofline_model/gpu_operation_map_provider";

}  // namespace

GpuOperationMapProvider::GpuOperationMapProvider(sptr_t<RowNode> row, sptr_t<IDataset> dataset)
    : m_row(std::move(row)), m_dataset(std::move(dataset)) {
    if (m_row)
        initData();
    else
        reportAssertion("m_row != nullptr", kUnit, __LINE__);
}

// Level by level. A row that hangs below several others is counted once, however often its host makes a node
// for it.
void GpuOperationMapProvider::initData() {
    std::deque<sptr_t<RowNode>> open{m_row};
    std::unordered_set<std::uint64_t> seen{m_row->getId()};
    for (; !open.empty(); open.pop_front()) {
        for (auto children = dataset_helpers::getChildren(open.front()); !children.isEnd(); ++children) {
            const sptr_t<RowNode> child = *children;
            if (!child) {
                reportAssertion("false", kUnit, __LINE__);
                continue;
            }
            if (!seen.insert(child->getId()).second) continue;
            addRow(child);
            open.push_back(child);
        }
    }
}

// Only statistic rows have an instruction type.
void GpuOperationMapProvider::addRow(const sptr_t<RowNode>& row) {
    unsigned long long instructionType = 0;
    if (!requireData(FieldId::GpuInstructionType, instructionType, row, m_dataset)) return;
    const auto read = [&](FieldId field) { return checkData<unsigned long long>(field, 0, row, m_dataset); };
    // A number that doesn't fit is that of no class and no type.
    const auto arithType = read(FieldId::GpuArithType);
    const OperationKey key{
        .instructionType = std::in_range<int>(instructionType) ? static_cast<int>(instructionType) : 0,
        .arithType = std::in_range<std::uint32_t>(arithType) ? static_cast<ArithTypeDef>(arithType)
                                                             : ArithTypeDef::None,
        .width = read(FieldId::GpuArithWidth)};
    OperationValue& value = (*m_operationMap)[key];
    value.operationCount += checkData<double>(FieldId::GpuOperationCount, 0.0, row, m_dataset);
    value.instructionCount += checkData<double>(FieldId::GpuInstructionCount, 0.0, row, m_dataset);
}

GpuDominatingTypeHelper::GpuDominatingTypeHelper(const std::shared_ptr<ISurveyingViewModel>& viewModel)
    : m_dataset(viewModel ? viewModel->getDataset(DataType::GpuStatistics) : nullptr) {
    if (!m_dataset) reportAssertion("m_dataset", kUnit, __LINE__);
}

variant_bag_t GpuDominatingTypeHelper::handlePreVisit(const sptr_t<RowNode>& row, const variant_bag_t&,
                                                      bool&) {
    const auto specification = row ? row->getSpecification() : nullptr;
    if (specification && (specification->getRowType() & row_type::kGpuTask))
        mergeOperations(*m_operationMap, *GpuOperationMapProvider(row, m_dataset).getOperationMap());
    return {};
}

variant_bag_t GpuDominatingTypeHelper::handlePostVisit(const sptr_t<RowNode>&, const variant_bag_t&) {
    reportAssertion("false", kUnit, __LINE__);
    return {};
}

}  // namespace data_models2
