// A naive model of what limits a row, for rows of every kind of analysis.
#pragma once

#include "tests/roofline_model/row_test_host.h"

#include <cmath>
#include <map>
#include <optional>
#include <string>

namespace data_models2::row_test {

// Heights of roofs in giga units a second. Powers of two keep every tie exact in both the model and the
// engine.
struct Machine {
    double compute = 64.0;
    std::map<MemoryLevel, double> memory{
        {MemoryLevel::L1, 32.0}, {MemoryLevel::L2, 16.0}, {MemoryLevel::L3, 16.0}, {MemoryLevel::Dram, 8.0}};
};

struct Verdict {
    std::string roof;
    double height = 0.0;
    int point = -1;  // of a memory-level verdict: which point it is for

    bool operator==(const Verdict& other) const {
        const bool isSame =
            height == other.height || std::abs(height - other.height) <= 1e-12 * std::abs(height);
        return roof == other.roof && isSame && point == other.point;
    }
    friend std::ostream& operator<<(std::ostream& out, const Verdict& v) {
        return out << "'" << v.roof << "' at " << v.height << " of point " << v.point;
    }
};

inline std::string nameOf(MemoryLevel level) { return "memory " + std::to_string(static_cast<int>(level)); }

inline Verdict verdictOf(const CRowRooflineEngine& engine, bool total) {
    const LimitingRoof roof = engine.getLimitingRoof(total);
    Verdict verdict{roof.name, roof.limitValue, -1};
    const auto points = engine.getMemLevelPoints();
    for (int i = 0; !total && i < static_cast<int>(points.size()); ++i)
        if (points[i].limitingRoofId != RoofId::None) {
            EXPECT_EQ(verdict.point, -1) << "two points are limited";
            EXPECT_EQ(points[i].limitingRoofId, roof.id);
            verdict.point = i;
        }
    EXPECT_EQ(roof.boundCategory == BoundCategory::None, roof.name.empty());
    return verdict;
}

// The lowest memory roof not below the point, or the compute roof when it is above the point and lower there.
inline Verdict totalModel(const Machine& machine, double performance, double ai) {
    std::optional<MemoryLevel> lowest;
    for (const auto& [level, giga] : machine.memory)
        if (ai > 0.0 && giga * ai >= performance && (!lowest || giga < machine.memory.at(*lowest)))
            lowest = level;
    if (!lowest) return {};
    const double height = machine.memory.at(*lowest) * ai;
    if (machine.compute > performance && machine.compute < height) return {"compute", machine.compute};
    return {nameOf(*lowest), height};
}

// `ai`: pairs of level and intensity, ascending from the core. Of the ceilings over each level's point the
// lowest that is truly above the row's performance.
template <class Intensities>
Verdict levelModel(const Machine& machine, double performance, const Intensities& ai) {
    Verdict nearest;
    int index = 0;
    for (const auto& [level, intensity] : ai) {
        const double memory = machine.memory.at(level) * intensity;
        const bool isCompute = machine.compute > performance && machine.compute < memory;
        const Verdict ceiling{isCompute ? "compute" : nameOf(level), isCompute ? machine.compute : memory,
                              index++};
        const bool isAbove = ceiling.height - performance > 1e-12;
        if (isAbove && (nearest.point < 0 || ceiling.height < nearest.height)) nearest = ceiling;
    }
    return nearest;
}

}  // namespace data_models2::row_test
