// The operation map of a kernel: what the statistic rows below it counted.
#pragma once

#include "host_interfaces/model.h"

#include "roofline_model/operation_map.h"

namespace data_models2 {

class GpuOperationMapProvider final : public IGpuOperationMapProvider {
public:
    // `dataset` holds the statistic rows; a null row is asserted and gives an empty map.
    GpuOperationMapProvider(sptr_t<RowNode> row, sptr_t<IDataset> dataset);

    std::shared_ptr<const OperationMap> getOperationMap() const override { return m_operationMap; }

private:
    void initData();
    void addRow(const sptr_t<RowNode>& row);

    sptr_t<RowNode> m_row;
    sptr_t<IDataset> m_dataset;
    std::shared_ptr<OperationMap> m_operationMap = std::make_shared<OperationMap>();
};

// Sums up the operation maps of the kernels that a walk shows it.
class GpuDominatingTypeHelper final : public RefCounted<IVisitHandler<RowNode>>,
                                      public IGpuOperationMapProvider {
public:
    // A missing dataset of statistic rows is asserted and gives an empty map.
    explicit GpuDominatingTypeHelper(const std::shared_ptr<ISurveyingViewModel>& viewModel);

    variant_bag_t handlePreVisit(const sptr_t<RowNode>& row, const variant_bag_t& parent,
                                 bool& skipChildren) override;
    variant_bag_t handlePostVisit(const sptr_t<RowNode>& row, const variant_bag_t& parent) override;
    std::shared_ptr<const OperationMap> getOperationMap() const override { return m_operationMap; }

private:
    sptr_t<IDataset> m_dataset;
    std::shared_ptr<OperationMap> m_operationMap = std::make_shared<OperationMap>();
};

}  // namespace data_models2
