// What the kernels of a GPU result executed, by instruction and type of data.
#pragma once

#include "cli/session.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace cli {

struct CountedOperations {
    std::string instruction;           // such as "fma"
    std::string type;                  // "int", "float"
    int width = 0;                     // bits
    std::optional<double> operations;  // giga
    std::optional<double> instructions;

    // "float16"
    std::string fullType() const;
};

struct KernelOperations {
    std::string id;
    std::string name;
    std::vector<CountedOperations> counted;  // none where nothing was counted
};

// The type on which a kernel executed most operations; empty where there are none.
struct MainTypes {
    std::string ofFloats, ofInts;  // such as "float16"
    const std::string& of(const std::string& operations) const {
        return operations == "int" ? ofInts : ofFloats;
    }
};

// Reads the text of report_helpers::getGpuOperationsMapsJson.
std::vector<KernelOperations> parseOperations(const std::string& text);
// By row id; empty for a result that doesn't tell.
std::map<std::string, MainTypes> mainTypes(const Session& session);

}  // namespace cli
