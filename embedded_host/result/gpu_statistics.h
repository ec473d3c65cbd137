// What a GPU result counts of each kernel's instructions, and the table of rows that shows it.
#pragma once

#include "host_interfaces/ids.h"

#include "embedded_host/result/json_reader.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace embedded_host {

struct RowTable;

// One class of a row's instructions on one type of data.
struct GpuStatistic {
    std::uint32_t row = 0;
    data_models2::GpuInstruction instruction = data_models2::GpuInstruction::NotDefined;
    std::optional<data_models2::ArithTypeDef> type;
    std::optional<std::uint32_t> width;  // bits
    std::optional<double> operations;    // 1e9
    std::optional<double> instructions;
};

// Appends the elements of a row's member `statistics`. Throws FileError.
void readStatistics(const JsonFile& file, const JsonValue& value, std::uint32_t row,
                    std::vector<GpuStatistic>& statistics);

// The rows of `rows` with their ids and names, each followed by its statistic rows, which have ids from 2^63
// up: no row of a file has such an id.
std::shared_ptr<const RowTable> makeStatisticsTable(const RowTable& rows);

}  // namespace embedded_host
