// A host for tests: datasets written as lines, a view model and a roof table that answer what they are told
// to, and answers checked and printed as lines.
#pragma once

#include "host_interfaces/host_functions.h"
#include "host_interfaces/signals.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/services/row_issues.h"

#include "roofline_model/unified/loop_params_tables.h"

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/algorithm/string/split.hpp>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace data_models2::test {

struct TestRow {
    std::map<FieldId, variant_t> cells;
    std::optional<std::uint64_t> type = 0;  // none: the row has no specification
    std::uint64_t object = 0;               // 0: the row's id
    int parent = -1;
    bool isNull = false;
    bool isBroken = false;                    // promises a child and gives none
    std::vector<std::string> boundedBy = {};  // what its issues name
};

// Row i has the id i + 1; parents stand before their children.
struct Table {
    std::vector<TestRow> rows;
    DataType type = DataType::Cpu;
    mutable int readsBeforeThrow = -1;  // -1: never throws
};

class Column final : public RefCounted<ColumnNode> {
public:
    explicit Column(FieldId id) : field(id) {}
    std::uint64_t getId() const override { return static_cast<std::uint64_t>(field); }
    sptr_t<IColumnSpecification> getSpecification() const override { return {}; }
    sptr_t<ColumnNode> getParent() const override { return {}; }
    int getChildren(generic_iterator_t<sptr_t<ColumnNode>>&, int, int) const override { return -1; }

    const FieldId field;
};

// A dataset of any cells of any kind; its nodes are made when they are asked for and share the table.
class Dataset final : public RefCounted<IDataset> {
public:
    explicit Dataset(Table table) : m_state(std::make_shared<State>(std::move(table))) {}

    DataType getDataType() const override { return m_state->table.type; }
    sptr_t<ColumnNode> getColumn(FieldId field) const override {
        return m_state->fields.count(field) ? sptr_t<ColumnNode>(new Column(field)) : nullptr;
    }
    bool getValue(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column, int,
                  variant_t& out) const override {
        if (m_state->table.readsBeforeThrow >= 0 && m_state->table.readsBeforeThrow-- == 0) throw 42;
        const auto* const node = dynamic_cast<const Row*>(row.get());
        if (!node || !column) return false;
        const auto& cells = node->row().cells;
        const auto found = cells.find(static_cast<const Column&>(*column).field);
        if (found == cells.end()) return false;
        out = found->second;
        return true;
    }
    bool getString(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column, int aggregation,
                   std::string& out) const override {
        variant_t cell;
        if (!getValue(row, column, aggregation, cell)) return false;
        out = toText(cell);
        return true;
    }
    RowIterator getRows(int) const override { return m_state->childrenOf(-1); }
    std::uint64_t getObjectId(const sptr_t<RowNode>& row) const override {
        const auto object = static_cast<const Row&>(*row).row().object;
        return object ? object : row->getId();
    }
    sptr_t<RowNode> row(int index) const { return m_state->node(index); }

private:
    struct State : std::enable_shared_from_this<State> {
        explicit State(Table rows) : table(std::move(rows)) {
            for (int i = 0; i < static_cast<int>(table.rows.size()); ++i) {
                children[table.rows[i].parent].push_back(i);
                for (const auto& cell : table.rows[i].cells) fields.insert(cell.first);
            }
        }
        sptr_t<RowNode> node(int index) const {
            return table.rows[index].isNull ? nullptr : new Row(shared_from_this(), index);
        }
        RowIterator childrenOf(int index) const {
            std::vector<sptr_t<RowNode>> nodes;
            const auto found = children.find(index);
            if (found != children.end())
                for (const int child : found->second) nodes.push_back(node(child));
            return makeIterator(std::move(nodes));
        }

        Table table;
        std::map<int, std::vector<int>> children;
        std::set<FieldId> fields;
    };

    class Specification final : public RefCounted<IRowSpecification> {
    public:
        explicit Specification(std::uint64_t type) : m_type(type) {}
        std::uint64_t getRowType() const override { return m_type; }

    private:
        const std::uint64_t m_type;
    };

    class Row final : public RefCounted<RowNode>, public embedded_host::IRowIssueSource {
    public:
        Row(std::shared_ptr<const State> state, int index) : m_state(std::move(state)), m_index(index) {}
        const TestRow& row() const { return m_state->table.rows[m_index]; }
        std::uint64_t getId() const override { return static_cast<std::uint64_t>(m_index) + 1; }
        sptr_t<IRowSpecification> getSpecification() const override {
            return row().type ? new Specification(*row().type) : nullptr;
        }
        sptr_t<RowNode> getParent() const override {
            return row().parent < 0 ? nullptr : m_state->node(row().parent);
        }
        std::vector<std::string> boundedBy() const override { return row().boundedBy; }
        int getChildren(RowIterator& children, int, int) const override {
            if (row().isBroken) return 1;
            const auto found = m_state->children.find(m_index);
            if (found == m_state->children.end()) return -1;
            children = m_state->childrenOf(m_index);
            return static_cast<int>(found->second.size());
        }

    private:
        const std::shared_ptr<const State> m_state;
        const int m_index;
    };

    std::shared_ptr<State> m_state;
};

inline FieldId fieldOf(std::string_view name) {
    const auto found = std::find_if(kFields.begin(), kFields.end(),
                                    [name](const auto& field) { return field.name == name; });
    if (found == kFields.end()) throw std::invalid_argument("no field " + std::string(name));
    return found->id;
}

// A text in quotes, else a number: "5" a double, "5i" and "5u" of 32 bits, "5l" and "5ul" of 64 bits.
inline variant_t valueOf(const std::string& text) {
    if (text.starts_with('"')) return text.substr(1, text.size() - 2);
    const double number = std::strtod(text.c_str(), nullptr);
    if (text.ends_with("ul")) return std::strtoull(text.c_str(), nullptr, 10);
    if (text.ends_with('l')) return std::strtoll(text.c_str(), nullptr, 10);
    if (text.ends_with('u')) return static_cast<std::uint32_t>(number);
    if (text.ends_with('i')) return static_cast<std::int32_t>(number);
    return number;
}

// One row a line, two blanks a level of the tree: `name field=value ...`. The name fills the cell
// FunctionName and ends at the first blank; "-" is a null row. Further words: `type=0x8` or `type=none` the
// specification, `object=7` the source object.
inline Table tableOf(const std::string& text, DataType type = DataType::Cpu) {
    Table table{{}, type};
    std::vector<int> path;
    std::vector<std::string> lines;
    boost::split(lines, text, [](char c) { return c == '\n'; });
    for (const auto& line : lines) {
        const auto indent = line.find_first_not_of(' ');
        if (indent == std::string::npos) continue;
        static const std::regex parts(R"re((?:[^ "]|"[^"]*")+)re");
        const std::vector<std::string> words(std::sregex_token_iterator(line.begin(), line.end(), parts), {});
        path.resize(indent / 2);
        TestRow row;
        row.parent = path.empty() ? -1 : path.back();
        row.isNull = words.front() == "-";
        row.cells[FieldId::FunctionName] = words.front();
        for (auto word = words.begin() + 1; word != words.end(); ++word) {
            const auto name = word->substr(0, word->find('='));
            const auto value = word->substr(name.size() + 1);
            if (name == "type")
                row.type = value == "none" ? std::nullopt : std::optional(std::stoull(value, nullptr, 16));
            else if (name == "object")
                row.object = std::stoull(value);
            else
                row.cells[fieldOf(name)] = valueOf(value);
        }
        path.push_back(static_cast<int>(table.rows.size()));
        table.rows.push_back(std::move(row));
    }
    return table;
}

inline sptr_t<IDataset> makeDataset(const std::string& text, DataType type = DataType::Cpu) {
    return new Dataset(tableOf(text, type));
}

inline std::vector<sptr_t<RowNode>> rowsOf(const sptr_t<IDataset>& dataset) {
    std::vector<sptr_t<RowNode>> rows;
    for (auto i = dataset->getRows(0); !i.isEnd(); ++i) rows.push_back(*i);
    return rows;
}

// A random number, `to` excluded; unlike `inRange` alone it takes the whole range from the first case on.
inline int pick(int from, int to) { return *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(from, to)); }

class RoofTable final : public IRoofManager {
public:
    generic_iterator_t<RoofItem> getRoofs(const std::string& configuration) const override {
        asked.push_back(configuration);
        return makeIterator(roofs);
    }
    bool setCustomRoofValues(const std::map<RoofId, std::uint64_t>&, const std::string&) override {
        return false;
    }
    bool clearCustomRoofValues(const std::string&) override { return false; }

    std::vector<RoofItem> roofs;
    mutable std::vector<std::string> asked;
};

// `giga` units a second; a compute roof where there is no level.
inline RoofItem makeRoof(RoofId id, const std::string& name, std::uint64_t giga, MemoryLevel level,
                         ArithTypeExtDef type = ArithTypeExtDef::None, RoofOpType operation = {}) {
    const auto bits = level == MemoryLevel::None ? RoofItem::Compute : RoofItem::Memory;
    RoofItem roof{.id = id, .name = name, .value = giga * 1'000'000'000, .typeBits = bits};
    roof.memoryLevel = level;
    roof.roofOpType = operation;
    roof.arithType = type;
    return roof;
}

// Links the rows at the top of one dataset to those of the other in order.
struct Linker final : IDatasetRowLinker {
    Linker(const sptr_t<IDataset>& from, const sptr_t<IDataset>& to)
        : sources(rowsOf(from)), linked(rowsOf(to)) {}
    sptr_t<RowNode> getLinkedRow(const sptr_t<RowNode>& row) const override {
        for (std::size_t i = 0; row && i < std::min(sources.size(), linked.size()); ++i)
            if (sources[i] && sources[i]->getId() == row->getId()) return linked[i];
        return nullptr;
    }
    const std::vector<sptr_t<RowNode>> sources, linked;
};

// A measured result and a projection in one: the datasets say what it is asked for.
class ViewModel final : public ISurveyingViewModel, public IPerfProjectionViewModel {
public:
    sptr_t<IDataset> getDataset(DataType type) const override {
        const auto found = given().datasets.find(type);
        return found == datasets.end() ? nullptr : found->second;
    }
    std::shared_ptr<IRoofManager> getRoofManager(DataType) const override { return given().roofs; }
    ProgramInfo getProgramInfo() const override { return {"program", given().elapsedTime}; }
    std::string getResultDirectory() const override { return {}; }
    LoadSignal& onSurveyResultLoaded() override { return loaded; }
    LoadSignal& onResultLoaded() override { return loaded; }
    bool clearHighlighting(DataType type, int) override { return given().highlighted == type; }
    std::vector<std::string> getMemoryLevelNames() const override {
        return std::vector<std::string>(static_cast<std::size_t>(given().levels), "level");
    }
    int getUsedThreadCount() const override { return given().used; }
    int getLogicalCoreCount() const override { return given().logical; }
    int getPhysicalCoreCount() const override { return given().physical; }
    int getPackageCount() const override { return given().packages; }
    double getTotalTime() const override { return given().elapsedTime; }
    std::uint64_t getCollectedDataFlags() const override { return 0; }
    std::optional<DeviceInfo> getDeviceInfo(TargetDeviceType) const override { return given().device; }
    GpuDeviceProperties getGpuDeviceProperties() const override {
        return {.memoryType = static_cast<std::uint64_t>(given().memory)};
    }
    std::shared_ptr<IDatasetRowLinker> getRowLinker(DataType from, DataType to) const override {
        const auto source = getDataset(from), target = getDataset(to);
        return source && target ? std::make_shared<Linker>(source, target) : nullptr;
    }
    std::string getTargetMemoryName() const override { return given().targetMemory; }
    void load(LoadType type = LoadType::Result) { loaded.raise(type, ""); }

    std::map<DataType, sptr_t<IDataset>> datasets;
    std::shared_ptr<RoofTable> roofs = std::make_shared<RoofTable>();
    std::optional<DeviceInfo> device;
    MemoryLevel memory = MemoryLevel::None;  // a GPU's
    std::string targetMemory = "HBM";        // a projection's
    int levels = 1, used = 0, logical = 0, physical = 0, packages = 0;
    double elapsedTime = 0.0;
    DataType highlighted = DataType::None;
    bool throws = false;
    LoadSignal loaded;

private:
    const ViewModel& given() const {
        if (throws) throw std::runtime_error("no answer");
        return *this;
    }
};

inline std::shared_ptr<ViewModel> makeViewModel(const sptr_t<IDataset>& self,
                                                const sptr_t<IDataset>& total = nullptr, int levels = 1) {
    auto viewModel = std::make_shared<ViewModel>();
    viewModel->datasets = {{DataType::Cpu, self}, {DataType::CpuTopDown, total}};
    viewModel->levels = levels;
    return viewModel;
}

// Lets background tasks run while it lives; else none does, since view models of tests change under way.
class RunningTasks {
public:
    RunningTasks() { embedded_host::setTaskThreads(2); }
    ~RunningTasks() {
        embedded_host::stopTasks();
        embedded_host::setTaskThreads(0);
    }
};

// The host takes the completion of the task that follows, too.
inline void loadAndWait(ViewModel& view, IViewModelBase::LoadType type = IViewModelBase::LoadType::Result) {
    const RunningTasks tasks;
    view.load(type);
    EXPECT_TRUE(embedded_host::pumpTasks(std::chrono::minutes(1)));
}

// Collects the assertions that are reported while it lives.
class Assertions {
public:
    Assertions() {
        embedded_host::setAssertionHandler([this](const std::string& expression, const std::string& unit,
                                                  int) { reported.push_back(unit + ": " + expression); });
    }
    ~Assertions() { embedded_host::setAssertionHandler({}); }

    std::vector<std::string> reported;
};

using Json = rapidjson::Value;

inline std::string textOf(const Json& value) {
    if (value.IsString()) return {value.GetString(), value.GetStringLength()};
    if (value.IsNumber()) return fmt::format("{:.6g}", value.GetDouble());
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    value.Accept(writer);
    return buffer.GetString();
}

inline std::vector<std::string> membersOf(const Json& object) {
    std::vector<std::string> names;
    for (const auto& member : object.GetObject()) names.push_back(textOf(member.name));
    return names;
}

// What is wrong with an answer as JSON; empty when it parses and no object has two members of one name.
inline std::string faultOf(const Json& value) {
    if (value.IsArray()) {
        for (const auto& item : value.GetArray())
            if (auto fault = faultOf(item); !fault.empty()) return fault;
    } else if (value.IsObject()) {
        std::set<std::string> names;
        for (const auto& member : value.GetObject()) {
            if (!names.insert(textOf(member.name)).second) return "member twice: " + textOf(member.name);
            if (auto fault = faultOf(member.value); !fault.empty()) return fault;
        }
    }
    return {};
}
inline rapidjson::Document parsed(const std::string& text) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseFullPrecisionFlag | rapidjson::kParseIterativeFlag>(text.data(),
                                                                                        text.size());
    return document;
}
inline std::string faultOf(const std::string& text) {
    const auto document = parsed(text);
    return document.HasParseError() ? "no JSON: " + text.substr(0, 200) : faultOf(document);
}

inline rapidjson::Document parse(const std::string& text) {
    EXPECT_EQ(faultOf(text), "");
    return parsed(text);
}

// "name=a x=1", of the members that are there.
inline std::string lineOf(const Json& object, const std::vector<std::string>& names) {
    std::vector<std::string> words;
    for (const auto& name : names) {
        const auto found = object.FindMember(name.c_str());
        if (found != object.MemberEnd()) words.push_back(name + "=" + textOf(found->value));
    }
    return boost::join(words, " ");
}
// One item of an array a line.
inline std::string linesOf(const Json& array, const std::vector<std::string>& names) {
    std::string lines;
    for (const auto& item : array.GetArray()) lines += "\n" + lineOf(item, names);
    return lines;
}

// The selected roofs, then the hidden ones in brackets, each behind a blank.
inline std::string selectedOf(const IRooflineInfo& engine, const std::string& configuration,
                              IRooflineInfo::Perspective perspective = IRooflineInfo::Perspective::Program) {
    const auto answer = engine.getSelectedRoofs(configuration, perspective);
    if (answer.empty()) return "nothing";
    std::string selected, hidden;
    const auto document = parse(answer);
    for (const auto& [name, state] : document["roofsState"].GetObject()) {
        if (state["selected"].GetBool()) selected += " " + textOf(name);
        if (state["hidden"].GetBool()) hidden += " (" + textOf(name) + ")";
    }
    return selected + hidden;
}

// The default and the options of each group of an option tree.
inline std::string optionsOf(const Json& tree) {
    std::string text;
    for (const auto& group : tree["groups"].GetArray()) {
        text += textOf(group["defRooflineTypes"]);
        for (const auto& option : group["options"].GetArray()) text += " " + textOf(option["value"]);
        text += "; ";
    }
    return text;
}

inline std::string expressionOf(const LoopParam& param) {
    return boost::replace_all_copy(param.getExpr(), "\x07", " ");
}
// "name = expression bits" of each parameter of a configuration, one a line.
inline std::string paramsOf(const LoopParams& params, const RooflineTypes& types) {
    std::string lines;
    for (const auto& param : getLoopParams4RooflineConfiguration(params, RooflineConfiguration(types)))
        lines += fmt::format("\n{} = {} {}", param.getName(), expressionOf(param), param.getType());
    return lines;
}

}  // namespace data_models2::test
