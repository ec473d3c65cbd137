// The lists of columns.
#include "cli/row_columns.h"

#include <array>
#include <cmath>

namespace cli {
namespace {

Cell nameOf(const std::optional<RoofOver>& roof) { return roof ? cellOf(roof->name) : Cell(); }
Cell heightOf(const std::optional<RoofOver>& roof) { return roof ? Cell(roof->height) : Cell(); }
Cell fractionOf(const std::optional<RoofOver>& roof) { return roof ? Cell(roof->fraction) : Cell(); }

// The row's nearest roof, told at the one level over whose point it stands.
std::optional<RoofOver> nearestHere(const RowLine& row, const LevelLine& level) {
    return level.isNearest ? row.nearest : std::nullopt;
}

using Row = const RowLine&;
using Level = const LevelLine&;

constexpr std::array<RowColumn, 7> kRow{{
    {"id", [](Row row) { return Cell(row.id); }},
    {"name", [](Row row) { return Cell(row.name); }},
    {"location", [](Row row) { return cellOf(row.location); }},
    {"elapsed_time_s", [](Row row) { return cellOf(row.seconds); }},
    {"share_of_time", [](Row row) { return cellOf(row.share); }},
    {"operations", [](Row row) { return cellOf(row.operations); }},
    {"performance_gop_per_s", [](Row row) { return cellOf(row.performance); }},
}};

constexpr std::array<RowColumn, 14> kVerdict{{
    {"intensity_op_per_byte", [](Row row) { return cellOf(row.intensity); }},
    {"limiting_roof", [](Row row) { return nameOf(row.limit); }},
    {"limiting_roof_gop_per_s", [](Row row) { return heightOf(row.limit); }},
    {"fraction_of_limiting_roof", [](Row row) { return fractionOf(row.limit); }},
    {"speedup_factor_to_limiting_roof", [](Row row) { return cellOf(row.speedUp()); }},
    {"nearest_level_roof", [](Row row) { return nameOf(row.nearest); }},
    {"nearest_level_roof_gop_per_s", [](Row row) { return heightOf(row.nearest); }},
    {"fraction_of_nearest_level_roof", [](Row row) { return fractionOf(row.nearest); }},
    {"exceeded_memory_roof", [](Row row) { return nameOf(row.underMemory); }},
    {"fraction_of_exceeded_memory_roof", [](Row row) { return fractionOf(row.underMemory); }},
    {"exceeded_compute_roof", [](Row row) { return nameOf(row.underCompute); }},
    {"fraction_of_exceeded_compute_roof", [](Row row) { return fractionOf(row.underCompute); }},
    {"cause", [](Row row) { return cellOf(row.cause); }},
    {"doubt", [](Row row) { return cellOf(row.doubt); }},
}};

constexpr std::array<LevelColumn, 10> kLevel{{
    {"level", [](Row, Level level) { return cellOf(level.level); }},
    {"traffic_gb", [](Row, Level level) { return Cell(level.traffic); }},
    {"fraction_of_largest_traffic", [](Row, Level level) { return cellOf(level.trafficShare); }},
    {"intensity_op_per_byte", [](Row, Level level) { return Cell(level.intensity); }},
    {"level_roof", [](Row, Level level) { return nameOf(level.roof); }},
    {"level_roof_gop_per_s", [](Row, Level level) { return heightOf(level.roof); }},
    {"fraction_of_level_roof", [](Row, Level level) { return fractionOf(level.roof); }},
    {"share_of_memory_time", [](Row, Level level) { return cellOf(level.timeShare); }},
    {"nearest_roof", [](Row row, Level level) { return nameOf(nearestHere(row, level)); }},
    {"nearest_roof_gop_per_s", [](Row row, Level level) { return heightOf(nearestHere(row, level)); }},
}};

}  // namespace

std::span<const RowColumn> rowColumns() { return kRow; }
std::span<const RowColumn> verdictColumns() { return kVerdict; }
std::span<const LevelColumn> levelColumns() { return kLevel; }

void writeMember(json::Writer& writer, const char* key, const Cell& cell) {
    writer.Key(key);
    if (const auto* text = std::get_if<std::string>(&cell))
        writer.String(text->data(), static_cast<rapidjson::SizeType>(text->size()));
    else if (const auto* number = std::get_if<double>(&cell); number && std::isfinite(*number))
        writer.Double(*number);
    else
        writer.Null();
}

void writeCells(json::Writer& writer, const char* key,
                const std::vector<std::pair<const char*, Cell>>& members) {
    json::writeObject(writer, key, [&] {
        for (const auto& [name, cell] : members) writeMember(writer, name, cell);
    });
}

void writeMembers(json::Writer& writer, const RowLine& row) {
    for (const auto& each : rowColumns()) writeMember(writer, each.key, each.cell(row));
    for (const auto& each : verdictColumns()) writeMember(writer, each.key, each.cell(row));
    writer.Key("valid"), writer.Bool(row.isValid);
}

Cell cellOf(const std::optional<double>& value) { return value ? Cell(*value) : Cell(); }
Cell cellOf(const std::string& text) { return text.empty() ? Cell() : Cell(text); }

}  // namespace cli
