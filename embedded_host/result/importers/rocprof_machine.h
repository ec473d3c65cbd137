// The machine that a profiled program ran on: its device and the roofs that were measured beside.
#pragma once

#include <string>
#include <vector>

namespace embedded_host::rocprof {

struct MachineText {
    std::string text;         // of a machine file
    std::string programName;  // empty when it isn't told
    // That peaks of 16-bit floats are missing, for rows that have such operations; empty when they aren't.
    std::string halfPeakWarning;
};

// Of the folder's roofline.csv and sysinfo.csv; what is missing there is told in `warnings`. Throws
// FileError.
MachineText makeMachine(const std::string& folder, std::vector<std::string>& warnings);

}  // namespace embedded_host::rocprof
