// `roofline fields`: every column that a result can have.
#include "host_interfaces/ids.h"

#include "cli/answer.h"
#include "cli/table.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <array>

namespace cli {
namespace {

using data_models2::FieldInfo;
using data_models2::kFields;

constexpr std::array<std::string_view, 4> kTypeNames{"text", "integer", "integer", "number"};

std::string_view typeName(const FieldInfo& field) {
    return kTypeNames.at(static_cast<std::size_t>(field.type));
}

Table fieldTable() {
    Table table{{{"number", "number", Column::Kind::Number},
                 {"name", "name"},
                 {"type", "type"},
                 {"unit", "unit"},
                 {"meaning", "meaning"}},
                {}};
    for (const auto& field : kFields)
        table.rows.push_back({static_cast<double>(field.id), std::string(field.name),
                              std::string(typeName(field)), std::string(field.unit),
                              std::string(field.meaning)});
    return table;
}

std::string fieldJson() {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    const auto text = [&](const char* key, std::string_view value) {
        writer.Key(key);
        writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
    };
    writer.StartArray();
    for (const auto& field : kFields) {
        writer.StartObject();
        writer.Key("number");
        writer.Int(static_cast<int>(field.id));
        text("name", field.name);
        text("type", typeName(field));
        text("unit", field.unit);
        text("meaning", field.meaning);
        writer.EndObject();
    }
    writer.EndArray();
    return buffer.GetString();
}

}  // namespace

int runFields(const FieldsRequest& request, Console& console) {
    Answer answer;
    answer.json = fieldJson;
    answer.csv = [] { return toCsv(fieldTable()); };
    answer.table = [] { return toText(fieldTable()); };
    deliver(answer, request.outputs, console);
    return kDone;
}

}  // namespace cli
