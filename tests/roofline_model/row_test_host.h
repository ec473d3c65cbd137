// A row for tests: its cells, a strategy that answers as told, and bags and JSON as values by path.
#pragma once

#include "roofline_model/row_roofline_engine.h"

#include <boost/property_tree/ptree.hpp>
#include <fmt/format.h>
#include <rapidjson/document.h>

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace data_models2::row_test {

class Column final : public RefCounted<ColumnNode> {
public:
    explicit Column(FieldId field) : m_field(field) {}
    std::uint64_t getId() const override { return static_cast<std::uint64_t>(m_field); }
    sptr_t<IColumnSpecification> getSpecification() const override { return {}; }
    sptr_t<ColumnNode> getParent() const override { return {}; }
    int getChildren(generic_iterator_t<sptr_t<ColumnNode>>&, int, int) const override { return -1; }

private:
    FieldId m_field;
};

class RowType final : public RefCounted<IRowSpecification> {
public:
    explicit RowType(std::uint64_t bits) : m_bits(bits) {}
    std::uint64_t getRowType() const override { return m_bits; }

private:
    std::uint64_t m_bits;
};

class Row final : public RefCounted<RowNode> {
public:
    explicit Row(sptr_t<IRowSpecification> type = {}) : m_type(std::move(type)) {}
    std::uint64_t getId() const override { return 1; }
    sptr_t<IRowSpecification> getSpecification() const override { return m_type; }
    sptr_t<RowNode> getParent() const override { return {}; }
    int getChildren(RowIterator&, int, int) const override { return -1; }

private:
    sptr_t<IRowSpecification> m_type;
};

using Cells = std::map<FieldId, variant_t>;

// A dataset whose rows all have the same cells.
class OneRow final : public RefCounted<IDataset> {
public:
    OneRow(Cells cells, DataType type) : m_cells(std::move(cells)), m_type(type) {}
    DataType getDataType() const override { return m_type; }
    sptr_t<ColumnNode> getColumn(FieldId field) const override {
        return m_cells.count(field) ? sptr_t<ColumnNode>(new Column(field)) : nullptr;
    }
    bool getValue(const sptr_t<RowNode>&, const sptr_t<ColumnNode>& column, int,
                  variant_t& out) const override {
        if (!column) return false;
        out = m_cells.at(static_cast<FieldId>(column->getId()));
        return true;
    }
    bool getString(const sptr_t<RowNode>&, const sptr_t<ColumnNode>&, int, std::string&) const override {
        return false;
    }
    RowIterator getRows(int) const override { return {}; }
    std::uint64_t getObjectId(const sptr_t<RowNode>&) const override { return 1; }

private:
    Cells m_cells;
    DataType m_type;
};

inline RoofItem makeRoof(RoofId id, const char* name, std::uint64_t giga, MemoryLevel level,
                         ArithTypeExtDef type = ArithTypeExtDef::None) {
    RoofItem roof;
    roof.id = id;
    roof.name = name;
    roof.value = giga * 1'000'000'000;
    roof.typeBits = level == MemoryLevel::None ? RoofItem::Compute : RoofItem::Memory;
    roof.memoryLevel = level;
    roof.arithType = type;
    return roof;
}

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
    return std::make_shared<CRowRooflineEngine>(new Row, new OneRow(setup.cells, setup.type),
                                                std::make_shared<Strategy>(setup));
}

// Values by path, such as "loops.0.x"; a list's children are numbered, texts stand in quotes.
using Values = std::map<std::string, std::string>;

inline std::string join(const std::string& path, const std::string& name) {
    return path.empty() ? name : path + "." + name;
}

inline void collect(const variant_bag_t& bag, const std::string& path, Values& values) {
    const variant_t& value = bag.data();
    if (value.kind() == variant_t::kBool)
        values[path] = value.signedValue() ? "true" : "false";
    else if (value.isNumber())
        values[path] = fmt::format("{}", value.toDouble());
    else if (value.isText())
        values[path] = fmt::format("\"{}\"", value.text());
    const bool isList = bag.find("arrayOf") != bag.not_found();
    int index = 0;
    for (const auto& [name, child] : bag)
        if (!isList || name == "item")
            collect(child, join(path, isList ? std::to_string(index++) : name), values);
}

inline void collect(const rapidjson::Value& value, const std::string& path, Values& values) {
    int index = 0;
    if (value.IsObject())
        for (const auto& member : value.GetObject())
            collect(member.value, join(path, member.name.GetString()), values);
    else if (value.IsArray())
        for (const auto& item : value.GetArray()) collect(item, join(path, std::to_string(index++)), values);
    else if (value.IsBool())
        values[path] = value.GetBool() ? "true" : "false";
    else if (value.IsNumber())
        values[path] = fmt::format("{}", value.GetDouble());
    else
        values[path] = value.IsString() ? fmt::format("\"{}\"", value.GetString()) : "null";
}

template <class Tree>
Values valuesOf(const Tree& tree) {
    Values values;
    collect(tree, "", values);
    return values;
}

}  // namespace data_models2::row_test
