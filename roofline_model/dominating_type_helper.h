// Which data types dominate: of a row, by its instruction mix, its compiler's main type and its list of data
// types; of a program, by the time of its rows.
#pragma once

#include "host_interfaces/model.h"

#include <array>
#include <cstdint>

namespace data_models2 {

// What a program spends its time on. The defaults stand for what isn't known.
struct DominatingTypesInfo {
    bool vectorized = false;
    std::uint32_t operationsType = 2;  // 1: float work dominates, 0: it doesn't
    std::uint32_t floatType = 2;       // 0: single precision, 1: double
    std::uint32_t intType = 7;         // 0 to 6: 4, 8, 16 .. 256 bits

    bool operator==(const DominatingTypesInfo&) const = default;
};

// Shown the rows of a dataset by a walk, lets each vote with its self time.
class DominatingTypeHelper final : public RefCounted<IVisitHandler<RowNode>> {
public:
    static constexpr int kUnknownOperationType = 2;
    static constexpr int kUnknownFloatType = 2;
    static constexpr int kUnknownIntType = 7;

    // `totalTime` of the whole program in seconds; without it no row is asked for its operations.
    explicit DominatingTypeHelper(sptr_t<IDataset> dataset, double totalTime = 0.0)
        : m_dataset(std::move(dataset)), m_totalTime(totalTime) {}

    variant_bag_t handlePreVisit(const sptr_t<RowNode>& row, const variant_bag_t& parent,
                                 bool& skipChildren) override;
    variant_bag_t handlePostVisit(const sptr_t<RowNode>& row, const variant_bag_t& parent) override;

    // Whether float operations outweigh the others in the row's instruction mix; false without a mix.
    bool getDominatingOperationType(const sptr_t<RowNode>& row) const;
    // The width index of the row's integers: 0 to 6 for 4, 8, 16 .. 256 bits, 7 unknown.
    int getDominatingIntType(const sptr_t<RowNode>& row) const { return readTypes(row).intType; }
    // 0 single precision, 1 double precision, 2 unknown.
    int getDominatingFloatType(const sptr_t<RowNode>& row) const { return readTypes(row).floatType; }
    // Of the rows that were shown.
    DominatingTypesInfo getProgramDominatingTypes() const;

private:
    struct RowTypes {
        int floatType = kUnknownFloatType;
        int intType = kUnknownIntType;
    };
    using IntTimes = std::array<double, kUnknownIntType>;

    RowTypes readTypes(const sptr_t<RowNode>& row) const;
    void addVectorRow(double selfTime, RowTypes types, bool isFloatRow);
    void addScalarRow(double selfTime, RowTypes types, bool isFloatRow);

    sptr_t<IDataset> m_dataset;
    double m_totalTime;
    double m_scalarFloat32Time = 0.0;
    double m_scalarFloat64Time = 0.0;
    double m_vectorFloat32Time = 0.0;
    double m_vectorFloat64Time = 0.0;
    double m_vectorOther32Time = 0.0;
    double m_vectorOther64Time = 0.0;
    double m_vectorUnknownTime = 0.0;
    IntTimes m_scalarIntTime{};  // by width index
    IntTimes m_vectorIntTime{};
};

}  // namespace data_models2
