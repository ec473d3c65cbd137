// A row for tests: its cells, a strategy that answers as told, and bags and JSON as values by path.
#pragma once

#include "roofline_model/row_roofline_engine.h"

#include "tests/roofline_model/test_host.h"

#include <boost/property_tree/ptree.hpp>

#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace data_models2::row_test {

using Cells = std::map<FieldId, variant_t>;

// A dataset of one row, of no row type but the one that is given.
inline sptr_t<IDataset> oneRow(const Cells& cells, DataType type = DataType::Cpu,
                               std::optional<std::uint64_t> rowType = {}) {
    return new test::Dataset({.rows = {{.cells = cells, .type = rowType}}, .type = type});
}

using test::makeRoof;

// What a test says of its row; gigabytes per second and giga operations per second.
struct RowCase {
    Cells cells = {};
    DataType type = DataType::Cpu;
    std::map<MemoryLevel, double> traffic = {};  // empty: no memory-level metrics
    bool isAccepted = true;
    bool isBoundByFactor = false;  // another bound takes the limiting roof's place
    bool isThrowing = false;
    std::map<MemoryLevel, unsigned> levelNumbers = {};  // where they aren't the levels' own
    std::vector<RoofItem> memoryRoofs = {
        makeRoof(RoofId::DramBandwidth, "DRAM Bandwidth", 20, MemoryLevel::Dram),
        makeRoof(RoofId::L3Bandwidth, "L3 Bandwidth", 150, MemoryLevel::L3),
        makeRoof(RoofId::L2Bandwidth, "L2 Bandwidth", 400, MemoryLevel::L2),
        makeRoof(RoofId::L1Bandwidth, "L1 Bandwidth", 800, MemoryLevel::L1)};
    std::vector<RoofItem> computeRoofs = {
        makeRoof(RoofId::ScalarAddPeak, "Scalar Add Peak", 100, MemoryLevel::None, ArithTypeExtDef::Float64),
        makeRoof(RoofId::IntScalarAddPeak, "Integer Scalar Add Peak", 50, MemoryLevel::None,
                 ArithTypeExtDef::Int32)};
};

class Strategy final : public IRowRooflineHelper {
public:
    explicit Strategy(RowCase setup) : m_setup(std::move(setup)) {}
    void init(const sptr_t<RowNode>&, const sptr_t<IDataset>&) override {}
    bool isValid(bool) const override {
        if (m_setup.isThrowing) throw std::runtime_error("no answer");
        return m_setup.isAccepted;
    }
    bool areMemLevelMetricsCollected() const override { return !m_setup.traffic.empty(); }
    void findRoofs(std::vector<RoofItem>& memory, std::vector<RoofItem>& compute) const override {
        memory = m_setup.memoryRoofs;
        compute = m_setup.computeRoofs;
    }
    unsigned getMemoryLevelNumber(MemoryLevel level) const override {
        const auto number = m_setup.levelNumbers.find(level);
        return number == m_setup.levelNumbers.end() ? static_cast<unsigned>(level) : number->second;
    }
    ValueGetter getTrafficGetter(MemoryLevel level, bool) const override {
        return m_setup.traffic.count(level) ? fakeGetter(m_setup.traffic.at(level)) : nullptr;
    }
    void dumpInstructionMixSummary(rabbit::object& object) const override { object.append("mix", 1); }
    std::vector<RooflineConclusion> findRooflineConclusions(const LimitingRoof& roof) const override {
        return {RooflineConclusion("rec_memory_bound", {{"roof", roof.name}}), RooflineConclusion("plain")};
    }
    void updateLimitingRoof(LimitingRoof& roof) override {
        if (!m_setup.isBoundByFactor) return;
        roof = {};
        roof.name = "Latency";
        roof.boundCategory = BoundCategory::Other;
    }
    void extendMemoryRoofs(std::vector<RoofItem>&) const override {}

private:
    RowCase m_setup;
};

inline std::shared_ptr<CRowRooflineEngine> makeEngine(const RowCase& setup) {
    const auto dataset = oneRow(setup.cells, setup.type);
    return std::make_shared<CRowRooflineEngine>(*dataset->getRows(0), dataset,
                                                std::make_shared<Strategy>(setup));
}

// Values by path, such as "loops.0.x"; a list's children are numbered, texts stand in quotes.
using Values = std::map<std::string, std::string>;

inline void collect(const test::Json& value, const std::string& path, Values& values) {
    const std::string start = path.empty() ? "" : path + ".";
    int index = 0;
    if (value.IsObject())
        for (const auto& [name, member] : value.GetObject())
            collect(member, start + name.GetString(), values);
    else if (value.IsArray())
        for (const auto& item : value.GetArray()) collect(item, start + std::to_string(index++), values);
    else if (value.IsNumber())
        values[path] = fmt::format("{}", value.GetDouble());
    else
        values[path] = value.IsString() ? fmt::format("\"{}\"", value.GetString()) : test::textOf(value);
}

inline Values valuesOf(const test::Json& json) {
    Values values;
    collect(json, "", values);
    return values;
}
inline Values valuesOf(const std::string& text) { return valuesOf(test::parse(text)); }
inline Values valuesOf(const variant_bag_t& bag) { return valuesOf(saveBag(bag)); }

}  // namespace data_models2::row_test
