// Results written as texts, and datasets printed as lines.
#pragma once

#include "host_interfaces/host_functions.h"

#include "embedded_host/embedded_host.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace embedded_host::test {

// A result file with these rows (the inside of the array) and further top members, each behind a comma.
inline std::string resultText(const std::string& rows, const std::string& members = "") {
    return R"({"format": "roofline-result", "version": 1, "kind": "cpu")" + members + R"(, "rows": [)" +
           rows + "]}";
}

// The same of a device.
inline std::string gpuText(const std::string& rows, const std::string& members = "") {
    return R"({"format": "roofline-result", "version": 1, "kind": "gpu")" + members + R"(, "rows": [)" +
           rows + "]}";
}

// The same of a projection.
inline std::string offloadText(const std::string& rows, const std::string& members = "") {
    return R"({"format": "roofline-result", "version": 1, "kind": "offload")" + members + R"(, "rows": [)" +
           rows + "]}";
}

inline std::shared_ptr<data_models2::ISurveyingViewModel> viewOf(const std::string& rows,
                                                                 const std::string& members = "") {
    return parseResult(resultText(rows, members), "test.json")->viewModel();
}

// A machine file with these roofs (the inside of the array) and further top members, each behind a comma.
inline std::string machineText(const std::string& roofs, const std::string& members = "") {
    return R"({"format": "roofline-machine", "version": 1)" + members + R"(, "roofs": [)" + roofs + "]}";
}

inline std::string refusalOf(const std::string& text) {
    try {
        parseResult(text, "test.json");
        return "accepted";
    } catch (const FileError& error) {
        return error.what();
    }
}

template <class Node>
std::vector<data_models2::sptr_t<Node>> listOf(
    data_models2::generic_iterator_t<data_models2::sptr_t<Node>> iterator) {
    std::vector<data_models2::sptr_t<Node>> items;
    for (; !iterator.isEnd(); ++iterator) items.push_back(*iterator);
    return items;
}

inline std::string cell(const data_models2::sptr_t<data_models2::IDataset>& dataset,
                        const data_models2::sptr_t<data_models2::RowNode>& row, data_models2::FieldId field) {
    std::string text;
    return dataset->getString(row, dataset->getColumn(field), 0, text) ? text : "-";
}

// The cells of a row that have a value, ascending by field number, but those that every row gets.
inline std::string cellsOf(const data_models2::sptr_t<data_models2::IDataset>& dataset,
                           const data_models2::sptr_t<data_models2::RowNode>& row) {
    using data_models2::FieldId;
    std::string line;
    for (const auto& field : data_models2::kFields) {
        if (field.id == FieldId::RowKey || field.id == FieldId::Rva || field.id == FieldId::ThreadCount)
            continue;
        const auto value = cell(dataset, row, field.id);
        if (value != "-") line += fmt::format("{}{}={}", line.empty() ? "" : " ", field.name, value);
    }
    return line;
}

}  // namespace embedded_host::test
