// Results written as texts, and datasets printed as lines.
#pragma once

#include "host_interfaces/host_functions.h"

#include "embedded_host/embedded_host.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace embedded_host::test {

// A result file with these rows (the inside of the array) and further top members, each behind a comma.
inline std::string resultText(const std::string& rows, const std::string& members = "",
                              const std::string& kind = "cpu") {
    return R"({"format": "roofline-result", "version": 1, "kind": ")" + kind + '"' + members +
           R"(, "rows": [)" + rows + "]}";
}
inline std::string gpuText(const std::string& rows, const std::string& members = "") {
    return resultText(rows, members, "gpu");
}
inline std::string offloadText(const std::string& rows, const std::string& members = "") {
    return resultText(rows, members, "offload");
}

inline std::shared_ptr<data_models2::ISurveyingViewModel> viewOf(const std::string& rows,
                                                                 const std::string& members = "") {
    return parseResult(resultText(rows, members), "test.json")->viewModel();
}

// A machine file with these roofs (the inside of the array) and further top members, each behind a comma.
inline std::string machineText(const std::string& roofs, const std::string& members = "") {
    return R"({"format": "roofline-machine", "version": 1)" + members + R"(, "roofs": [)" + roofs + "]}";
}

// What an action is refused for; "accepted" when it isn't.
template <class Action>
std::string faultOf(Action action) {
    try {
        action();
        return "accepted";
    } catch (const FileError& error) {
        return error.what();
    }
}
inline std::string refusalOf(const std::string& text) {
    return faultOf([&] { parseResult(text, "test.json"); });
}

template <class Item>
std::vector<Item> listOf(data_models2::generic_iterator_t<Item> iterator) {
    std::vector<Item> items;
    for (; !iterator.isEnd(); ++iterator) items.push_back(*iterator);
    return items;
}

using DatasetPtr = data_models2::sptr_t<data_models2::IDataset>;
using RowPtr = data_models2::sptr_t<data_models2::RowNode>;

inline std::string cell(const DatasetPtr& dataset, const RowPtr& row, data_models2::FieldId field) {
    std::string text;
    return dataset->getString(row, dataset->getColumn(field), 0, text) ? text : "-";
}

// The cells of a row that have a value, ascending by field number, but those that every row gets.
inline std::string cellsOf(const DatasetPtr& dataset, const RowPtr& row) {
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

// "id=giga value" of each roof.
inline std::string roofsOf(const data_models2::generic_iterator_t<data_models2::RoofItem>& roofs) {
    std::string text;
    for (const auto& roof : listOf(roofs))
        text += fmt::format("{}{}={}", text.empty() ? "" : " ", static_cast<int>(roof.id),
                            static_cast<double>(roof.value) / 1e9);
    return text;
}

}  // namespace embedded_host::test
