// Makes columns and reads their cells.
#include "embedded_host/result/columns.h"

namespace embedded_host {
using data_models2::FieldType;
using data_models2::variant_t;

namespace {

Column::Cells makeCells(FieldType type, std::size_t rows) {
    switch (type) {
        case FieldType::Text:
            return std::vector<Column::Text>(rows);
        case FieldType::UInt32:
            return std::vector<std::uint32_t>(rows);
        case FieldType::Int64:
            return std::vector<std::int64_t>(rows);
        case FieldType::Double:
            break;
    }
    return std::vector<double>(rows);
}

}  // namespace

Column::Column(FieldType type, std::size_t rows) : cells(makeCells(type, rows)), present((rows + 63) / 64) {}

bool Column::get(std::size_t row, variant_t& out) const {
    if (!has(row)) return false;
    std::visit([&](const auto& values) { out = variant_t(values[row]); }, cells);
    return true;
}

}  // namespace embedded_host
