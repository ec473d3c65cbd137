// Chart documents and roofs as texts, in the form in which the library gives them.
#pragma once

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <string>
#include <vector>

namespace cli::test {

struct Record {
    std::string name;
    double x = 0.0;
    double y = 0.0;
    double seconds = 1.0;
    std::string level = {};  // with the "-" behind it
};

inline std::string documentText(const std::vector<Record>& records, double programSeconds,
                                const std::string& levels = "L1-") {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    const auto text = [&](const char* key, const std::string& value) {
        writer.Key(key);
        writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
    };
    const auto number = [&](const char* key, double value) { writer.Key(key), writer.Double(value); };
    writer.StartObject();
    text("nameX", "Arithmetic Intensity"), text("measureX", "FLOP/byte");
    text("nameY", "Performance"), text("measureY", "GFLOP/s");
    text("memoryLevelPref", levels);
    number("selfElapsedTime", programSeconds);
    writer.Key("programTotal"), writer.StartArray(), writer.StartObject();
    text("name", "L1"), text("descr", "the whole program"), number("x", 0.0), number("y", 0.0);
    writer.EndObject(), writer.EndArray();
    writer.Key("loops"), writer.StartArray();
    int row = 0;
    for (const auto& record : records) {
        // A record with a level of its own belongs to the row before it.
        if (record.level.empty()) ++row;
        writer.StartObject();
        text("id", std::to_string(row)), text("name", record.name);
        number("x", record.x), number("y", record.y), number("selfElapsedTime", record.seconds);
        if (!record.level.empty()) text("memoryLevelPref", record.level);
        writer.EndObject();
    }
    writer.EndArray(), writer.EndObject();
    return buffer.GetString();
}

// Two memory roofs, 100 and 10 GB/s, and two compute roofs, 50 and 5 GFLOP/s.
inline const char* const kRoofs =
    R"([{"name":"L1 Bandwidth","val":100000000000,"isMem":true,"measure":"GB/s"},
        {"name":"DRAM Bandwidth","val":10000000000,"isMem":true,"measure":"GB/s"},
        {"name":"Vector Peak","val":50000000000,"isMem":false,"measure":"GFLOP/s"},
        {"name":"Scalar Peak","val":5000000000,"isMem":false,"measure":"GFLOP/s"}])";

}  // namespace cli::test
