// Which data types dominate: of a row, by its instruction mix, its compiler's main type and its list of data
// types.
#pragma once

#include "host_interfaces/model.h"

namespace data_models2 {

class DominatingTypeHelper {
public:
    static constexpr int kUnknownOperationType = 2;
    static constexpr int kUnknownFloatType = 2;
    static constexpr int kUnknownIntType = 7;

    explicit DominatingTypeHelper(sptr_t<IDataset> dataset) : m_dataset(std::move(dataset)) {}

    // Whether float operations outweigh the others in the row's instruction mix; false without a mix.
    bool getDominatingOperationType(const sptr_t<RowNode>& row) const;
    // The width index of the row's integers: 0 to 6 for 4, 8, 16 .. 256 bits, 7 unknown.
    int getDominatingIntType(const sptr_t<RowNode>& row) const;
    // 0 single precision, 1 double precision, 2 unknown.
    int getDominatingFloatType(const sptr_t<RowNode>& row) const;

private:
    int getMainIntTypeFromCompiler(const sptr_t<RowNode>& row) const;
    int getMainFloatTypeFromCompiler(const sptr_t<RowNode>& row) const;
    int getMaxIntWidthStaticAnalysis(const sptr_t<RowNode>& row) const;
    int getMaxFloatWidthStaticAnalysis(const sptr_t<RowNode>& row) const;

    sptr_t<IDataset> m_dataset;
};

}  // namespace data_models2
