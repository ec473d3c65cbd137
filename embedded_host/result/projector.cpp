// Bounds of each row on the target, the time that follows from them, and the result that holds both.
#include "embedded_host/result/projector.h"

#include "host_interfaces/host_functions.h"

#include "embedded_host/result/device.h"
#include "embedded_host/result/gpu_roof_table.h"
#include "embedded_host/result/import_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

constexpr double kGiga = 1e9;
constexpr int kSinglePrecisionClass = 3;  // of an instruction mix

// Where the traffic of a level stands in a CPU result [GB] and in an offload result [bytes].
struct Level {
    MemoryLevel level;
    FieldId traffic;
    FieldId bytes;
    std::string_view bound;
};
// From the core outwards.
constexpr auto kCaches = std::to_array<Level>({
    {MemoryLevel::L1, FieldId::SelfMemL1, FieldId::OffloadL1Bytes, "L1_BW"},
    {MemoryLevel::L2, FieldId::SelfMemL2, FieldId::OffloadL2Bytes, "L2_BW"},
    {MemoryLevel::L3, FieldId::SelfMemL3, FieldId::OffloadL3Bytes, "L3_BW"},
});
// The device has one of these, which carries what the host's memory does.
constexpr auto kMemories = std::to_array<Level>({
    {MemoryLevel::Dram, FieldId::SelfMemDram, FieldId::OffloadDramBytes, "DRAM_BW"},
    {MemoryLevel::Hbm, FieldId::SelfMemDram, FieldId::OffloadHbmBytes, "HBM_BW"},
    {MemoryLevel::Gddr6, FieldId::SelfMemDram, FieldId::OffloadGddr6Bytes, "GDDR6_BW"},
    {MemoryLevel::Edram, FieldId::SelfMemDram, FieldId::OffloadEdramBytes, "EDRAM_BW"},
    {MemoryLevel::Llc, FieldId::SelfMemDram, FieldId::OffloadLlcBytes, "LLC_BW"},
    {MemoryLevel::Xli, FieldId::SelfMemDram, FieldId::OffloadXliBytes, "XLI_BW"},
});

struct OperationsKind {
    std::string_view type;
    FieldId counted;
    std::array<FieldId, 2> offload;  // of 32 bits and of 64
    std::array<ArithTypeExtDef, 2> peak;
};
constexpr auto kOperations = std::to_array<OperationsKind>({
    {"float",
     FieldId::SelfFloatOps,
     {FieldId::OffloadFloat32Ops, FieldId::OffloadFloat64Ops},
     {ArithTypeExtDef::Float32, ArithTypeExtDef::Float64}},
    {"int",
     FieldId::SelfIntOps,
     {FieldId::OffloadInt32Ops, FieldId::OffloadInt64Ops},
     {ArithTypeExtDef::Int32, ArithTypeExtDef::Int64}},
});

// What the target does in a second; 0 where it has no such roof.
struct TargetLevel {
    Level level;
    double bandwidth = 0.0;  // bytes
};
struct TargetRoofs {
    std::vector<TargetLevel> levels;  // from the core outwards
    std::array<std::array<double, 2>, kOperations.size()> peaks{};
};

TargetRoofs roofsOf(const Machine& target) {
    TargetRoofs result;
    for (const auto& level : kCaches) result.levels.push_back({level});
    for (const auto& level : kMemories)
        if (level.level == static_cast<MemoryLevel>(target.device->memoryType))
            result.levels.push_back({level});
    // What a chart shows for the whole device, with the user's own values.
    const auto table =
        makeGpuRoofTable(std::make_shared<const Machine>(target), subDevicesOf(target.device, target));
    const auto all = roof::getGpuRoofConfiguration(TileUsage::Multi, OperationsType::Undefined);
    for (auto roofs = table->getRoofs(all); !roofs.isEnd(); ++roofs) {
        const RoofItem roof = *roofs;
        const auto value = static_cast<double>(roof.value);
        if (roof.typeBits & RoofItem::Memory) {
            for (auto& [level, bandwidth] : result.levels)
                if (level.level == roof.memoryLevel) bandwidth = std::max(bandwidth, value);
            continue;
        }
        if (roof.roofOpType == RoofOpType::Matrix) continue;
        for (std::size_t kind = 0; kind < kOperations.size(); ++kind)
            for (std::size_t wide = 0; wide < 2; ++wide)
                if (kOperations[kind].peak[wide] == roof.arithType)
                    result.peaks[kind][wide] = std::max(result.peaks[kind][wide], value);
    }
    return result;
}

// A row that takes exactly its bound would be rounded above its roof now and then, and the next roof would be
// told to limit it.
constexpr double kBelowTheRoof = 1.0 + 1e-12;

struct Bound {
    std::string_view name;
    double seconds = 0.0;
};

struct ProjectedRow {
    std::vector<std::pair<FieldId, double>> amounts;  // time, operations [1e9], traffic [bytes]
    std::string_view boundedBy;
    bool hasGap = false;
};

class Projector {
public:
    Projector(const ResultFile& host, const Machine& target, bool fillLevels)
        : m_host(host), m_rows(*host.rows), m_target(target), m_roofs(roofsOf(target)), m_fill(fillLevels) {}

    Projection run(const std::string& machineName) {
        writeHead(machineName);
        for (std::size_t row = 0; row < m_rows.size(); ++row) {
            ProjectedRow projected;
            const auto cause = projectRow(row, projected);
            if (cause.empty()) {
                m_result.gapCount += projected.hasGap;
                put(m_result.rowCount++ == 0 ? "\n" : ",\n");
                writeRow(row, projected);
                continue;
            }
            m_result.left.push_back({static_cast<std::uint64_t>(m_rows.ids[row]), nameOf(row), cause});
        }
        put("\n]\n}\n");
        m_result.result.assign(m_buffer.GetString(), m_buffer.GetSize());
        m_result.assumptions = assumptions();
        m_result.warnings.assign(m_warnings.begin(), m_warnings.end());
        return std::move(m_result);
    }

private:
    // Fills `projected`, or says why the row has no time on the target.
    std::string projectRow(std::size_t row, ProjectedRow& projected) {
        std::vector<Bound> bounds;
        if (const auto cause = addOperations(row, projected, bounds); !cause.empty()) return cause;
        if (const auto cause = addTraffic(row, projected, bounds); !cause.empty()) return cause;
        if (bounds.empty()) return "the target has neither a peak nor a bandwidth for it";
        const auto isShorter = [](const Bound& a, const Bound& b) { return a.seconds < b.seconds; };
        const auto longest = *std::max_element(bounds.begin(), bounds.end(), isShorter);
        const double calls = callsOf(row);
        const Bound launch{"Launch_Tax", m_target.taxes.launch * calls};
        const Bound transfer{"Transfer_Tax", m_target.taxes.transfer * calls};
        projected.amounts.emplace_back(FieldId::OffloadElapsedTime,
                                       longest.seconds * kBelowTheRoof + launch.seconds + transfer.seconds);
        projected.boundedBy = std::max({longest, launch, transfer}, isShorter).name;
        const bool isFinite = std::all_of(projected.amounts.begin(), projected.amounts.end(),
                                          [](const auto& amount) { return std::isfinite(amount.second); });
        return isFinite ? "" : "its figures are too large";
    }

    std::string addOperations(std::size_t row, ProjectedRow& projected, std::vector<Bound>& bounds) {
        bool isKnown = false;
        double all = 0.0;
        for (std::size_t kind = 0; kind < kOperations.size(); ++kind) {
            const auto& operations = kOperations[kind];
            const auto count = amount(row, operations.counted);
            isKnown |= count.has_value();
            if (!count) continue;
            all += *count;
            const bool isWide = widthOf(row, operations.type) > 32;
            projected.amounts.emplace_back(operations.offload[isWide], *count);
            if (*count == 0.0) continue;
            const double peak = m_roofs.peaks[kind][isWide];
            if (peak > 0.0) {
                bounds.push_back({"Compute", *count * kGiga / peak});
            } else {
                m_warnings.insert(fmt::format("no peak of {}{} on the target: such operations take no time",
                                              operations.type, isWide ? 64 : 32));
            }
        }
        return all > 0.0 ? "" : isKnown ? "it has no operations" : "its operations aren't known";
    }

    std::string addTraffic(std::size_t row, ProjectedRow& projected, std::vector<Bound>& bounds) {
        std::optional<double> inside;  // GB of the nearest level within that was counted
        double all = 0.0;
        for (const auto& [level, bandwidth] : m_roofs.levels) {
            const auto counted = amount(row, level.traffic);
            const auto traffic = counted || !m_fill || bandwidth == 0.0 ? counted : inside;
            if (!traffic) {
                projected.hasGap |= bandwidth > 0.0;
                continue;
            }
            inside = traffic;
            all += *traffic;
            projected.amounts.emplace_back(level.bytes, *traffic * kGiga);
            if (*traffic == 0.0) continue;
            if (bandwidth > 0.0) {
                bounds.push_back({level.bound, *traffic * kGiga / bandwidth});
            } else {
                m_warnings.insert(
                    fmt::format("no roof for {} on the target: that traffic takes no time", level.bound));
            }
        }
        return all > 0.0 ? "" : inside ? "it has no traffic" : "its traffic isn't known";
    }

    std::optional<double> amount(std::size_t row, FieldId field) const {
        const auto* const column = m_rows.find(field);
        if (!column || !column->has(row)) return std::nullopt;
        return column->as<double>()[row];
    }
    std::string text(std::size_t row, FieldId field) const {
        const auto* const column = m_rows.find(field);
        return column && column->has(row) ? std::string(column->as<Column::Text>()[row]->text()) : "";
    }
    std::string nameOf(std::size_t row) const { return text(row, FieldId::FunctionName); }
    double callsOf(std::size_t row) const {
        const auto* const calls = m_rows.find(FieldId::CallCount);
        return calls && calls->has(row) ? static_cast<double>(calls->as<std::int64_t>()[row]) : 1.0;
    }
    // Bits; 64 is the cautious answer.
    unsigned widthOf(std::size_t row, std::string_view type) const {
        if (const auto width = isa_helpers::getTypeMaxWidth(text(row, FieldId::DataTypes), std::string(type)))
            return width;
        bool isSingle = false;
        m_rows.mixes.forEach(row, [&](int instruction, std::int64_t count) {
            isSingle |= instruction == kSinglePrecisionClass && count > 0;
        });
        return isSingle && type == "float" ? 32 : 64;
    }

    void put(std::string_view text) { std::copy(text.begin(), text.end(), m_buffer.Push(text.size())); }

    void writeHead(const std::string& machineName) {
        const auto& device = *m_target.device;
        put("{\n\"format\": \"roofline-result\",\n\"version\": 1,\n\"kind\": \"offload\",\n");
        put(fmt::format("\"program\": {{\"name\": {}}},\n",
                        jsonText(m_host.program.name, "the program's name")));
        put(fmt::format("\"target\": {{\"name\": {}, \"memory\": \"{}\", \"projected\": true}},\n",
                        jsonText(device.name.empty() ? m_target.name : device.name, "the device's name"),
                        memoryNameOf(device)));
        put(fmt::format("\"machine\": {},\n", jsonText(machineName, "the machine file's name")));
        put("\"rows\": [");
    }

    void writeKey(std::string_view name) {
        m_writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    }
    void writeCell(FieldId field, std::string_view value) {
        if (value.empty()) return;
        writeKey(getFieldStringId(field));
        writeText(m_writer, value);
    }

    // One row a line, with its id: by this the points before and after find each other.
    void writeRow(std::size_t row, const ProjectedRow& projected) {
        m_writer.Reset(m_buffer);
        m_writer.StartObject();
        writeKey("id");
        m_writer.Int64(m_rows.ids[row]);
        if (const auto type = m_rows.types[row] & ~row_type::kVectorized) {
            writeKey("type");
            m_writer.Uint64(type);
        }
        writeKey("cells");
        m_writer.StartObject();
        writeCell(FieldId::FunctionName, nameOf(row));
        const auto location = text(row, FieldId::SourceLocation);
        writeCell(FieldId::OffloadSourceLocation, std::string_view(location).substr(0, location.find(':')));
        if (const auto* const lines = m_rows.find(FieldId::SourceLine); lines && lines->has(row)) {
            writeKey(getFieldStringId(FieldId::SourceLine));
            m_writer.Uint(lines->as<std::uint32_t>()[row]);
        }
        if (const auto* const calls = m_rows.find(FieldId::CallCount); calls && calls->has(row)) {
            writeKey(getFieldStringId(FieldId::CallCount));
            m_writer.Int64(calls->as<std::int64_t>()[row]);
        }
        if (const auto time = amount(row, FieldId::SelfElapsedTime)) {
            writeKey(getFieldStringId(FieldId::TotalElapsedTime));
            m_writer.Double(*time);
        }
        for (const auto& [field, value] : projected.amounts) {
            writeKey(getFieldStringId(field));
            m_writer.Double(value);
        }
        m_writer.EndObject();
        writeKey("boundedBy");
        writeText(m_writer, projected.boundedBy);
        m_writer.EndObject();
    }

    std::vector<std::string> assumptions() const {
        std::vector<std::string> texts{
            "full overlap: a row takes as long as the longest of its operations and its transfers at each "
            "level",
            "traffic unchanged: each level of the target carries what the host's level of that name does, "
            "its "
            "memory what the host's DRAM does",
            "no limits of occupancy: every row fills the whole target and reaches its roofs, operations the "
            "highest peak of their type",
        };
        if (m_fill)
            texts.emplace_back("levels that weren't counted carry what the nearest level inside them does");
        const auto& [launch, transfer] = m_target.taxes;
        texts.push_back(
            launch + transfer > 0.0
                ? fmt::format("taxes: each call costs {} s of launch and {} s of transfer", launch, transfer)
                : "no taxes: the machine file gives none");
        return texts;
    }

    const ResultFile& m_host;
    const RowTable& m_rows;
    const Machine& m_target;
    const TargetRoofs m_roofs;
    const bool m_fill;
    Projection m_result;
    std::set<std::string> m_warnings;
    rapidjson::StringBuffer m_buffer;
    JsonWriter m_writer{m_buffer};
};

}  // namespace

Projection project(const ResultFile& host, const Machine& target, const std::string& machineName,
                   bool fillLevels) {
    return Projector(host, target, fillLevels).run(machineName);
}

Projection projectResult(const ProjectionRequest& request) {
    const JsonFile file(request.resultFile, readFile(request.resultFile));
    const auto host = readResult(file);
    if (host.kind != ResultKind::Cpu)
        throw FileError(request.resultFile + ": /kind: expected a result of kind cpu to project");
    const auto target = openMachine(request.machineFile);
    if (!target.device)
        throw FileError(request.machineFile + ": expected a member \"device\": it tells the target's memory");
    return project(host, target, request.machineName.empty() ? request.machineFile : request.machineName,
                   request.fillLevels);
}

}  // namespace embedded_host
