// Reads instruction statistics and gives each a row of its own.
#include "embedded_host/result/gpu_statistics.h"

#include "embedded_host/result/columns.h"

#include <limits>

namespace embedded_host {
namespace {
using namespace data_models2;

constexpr auto kMembers =
    std::to_array<std::string_view>({"instruction", "type", "width", "operations", "instructions"});
// By the number of GpuInstruction.
constexpr auto kInstructionNames = std::to_array<std::string_view>(
    {"not_defined", "move", "basic", "fma", "div", "power", "math", "load", "store", "slm_load", "slm_store",
     "slm_atomic", "mad", "global_atomic", "control_flow", "sync", "vector", "bit"});
static_assert(kInstructionNames.size() == static_cast<std::size_t>(GpuInstruction::Bit) + 1);
// By the number of ArithTypeDef.
constexpr auto kTypeNames = std::to_array<std::string_view>({"none", "mixed", "int", "float"});
constexpr std::uint64_t kMaxWidth = 4096;

// Places in the new table: a row stands behind the statistics of all rows before it.
class Places {
public:
    explicit Places(const RowTable& rows) : m_before(rows.size() + 1) {
        for (const auto& statistic : rows.statistics) ++m_before[statistic.row + 1];
        for (std::size_t row = 0; row < rows.size(); ++row) m_before[row + 1] += m_before[row];
    }
    // Also of the place behind the last row.
    std::uint32_t of(std::uint32_t row) const { return row + m_before[row]; }
    std::uint32_t countOf(std::uint32_t row) const { return m_before[row + 1] - m_before[row]; }

private:
    std::vector<std::uint32_t> m_before;  // statistics of the rows before this one
};

void fillColumns(const RowTable& rows, const Places& places, RowTable& table) {
    const auto makeColumn = [&](FieldId field, FieldType type) -> Column& {
        return *(table.column(field) = std::make_shared<Column>(type, table.size()));
    };
    if (const auto* const names = rows.find(FieldId::FunctionName)) {
        auto& column = makeColumn(FieldId::FunctionName, FieldType::Text);
        for (std::uint32_t row = 0; row < rows.size(); ++row) {
            if (names->has(row)) column.set(places.of(row), names->as<Column::Text>()[row]);
        }
    }
    if (rows.statistics.empty()) return;
    auto& types = makeColumn(FieldId::GpuArithType, FieldType::UInt32);
    auto& widths = makeColumn(FieldId::GpuArithWidth, FieldType::UInt32);
    auto& instructions = makeColumn(FieldId::GpuInstructionType, FieldType::UInt32);
    auto& operationCounts = makeColumn(FieldId::GpuOperationCount, FieldType::Double);
    auto& instructionCounts = makeColumn(FieldId::GpuInstructionCount, FieldType::Double);
    for (std::size_t i = 0; i < rows.statistics.size(); ++i) {
        const auto& statistic = rows.statistics[i];
        // Before it stand the rows up to its own and the `i` statistics of these rows that came earlier.
        const auto place = statistic.row + 1 + i;
        instructions.set(place, static_cast<std::uint32_t>(statistic.instruction));
        if (statistic.type) types.set(place, static_cast<std::uint32_t>(*statistic.type));
        if (statistic.width) widths.set(place, *statistic.width);
        if (statistic.operations) operationCounts.set(place, *statistic.operations);
        if (statistic.instructions) instructionCounts.set(place, *statistic.instructions);
    }
}

}  // namespace

void readStatistics(const JsonFile& file, const JsonValue& value, std::uint32_t row,
                    std::vector<GpuStatistic>& statistics) {
    for (const auto& element : file.array(value).GetArray()) {
        const auto [instruction, type, width, operations, instructions] = file.members(element, kMembers);
        file.need(element, instruction, "instruction");
        GpuStatistic statistic;
        statistic.row = row;
        statistic.instruction = static_cast<GpuInstruction>(file.choice(*instruction, kInstructionNames));
        if (type) statistic.type = static_cast<ArithTypeDef>(file.choice(*type, kTypeNames));
        if (width) statistic.width = static_cast<std::uint32_t>(file.integer(*width, 1, kMaxWidth));
        if (operations) statistic.operations = file.amount(*operations);
        if (instructions) statistic.instructions = file.amount(*instructions);
        statistics.push_back(statistic);
    }
}

std::shared_ptr<const RowTable> makeStatisticsTable(const RowTable& rows) {
    const Places places(rows);
    const auto size = rows.size() + rows.statistics.size();
    auto table = std::make_shared<RowTable>();
    for (auto* const words : {&table->ids, &table->sources}) words->reserve(size);
    table->types.reserve(size);
    for (auto* const words : {&table->parents, &table->ends, &table->childCounts}) words->reserve(size);
    std::int64_t nextId = std::numeric_limits<std::int64_t>::min();  // 2^63 when it is read as unsigned
    const auto add = [&](std::int64_t id, std::int64_t source, std::uint64_t type, std::uint32_t parent,
                         std::uint32_t end, std::uint32_t childCount) {
        table->ids.push_back(id);
        table->sources.push_back(source);
        table->types.push_back(type);
        table->parents.push_back(parent);
        table->ends.push_back(end);
        table->childCounts.push_back(childCount);
    };
    for (std::uint32_t row = 0; row < rows.size(); ++row) {
        const auto source = static_cast<std::int64_t>(rows.objectId(row));
        const auto parent = rows.parents[row];
        const auto place = places.of(row);
        const auto count = places.countOf(row);
        add(rows.ids[row], source, rows.types[row],
            parent == RowTable::kNoParent ? parent : places.of(parent), places.of(rows.ends[row]),
            rows.childCounts[row] + count);
        for (std::uint32_t i = 1; i <= count; ++i) add(nextId++, source, 0, place, place + i + 1, 0);
    }
    table->hasTree = rows.hasTree || !rows.statistics.empty();
    fillColumns(rows, places, *table);
    return table;
}

}  // namespace embedded_host
