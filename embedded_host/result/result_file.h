// A result file: what was measured of a program's rows.
#pragma once

#include "host_interfaces/records.h"

#include "embedded_host/embedded_host.h"
#include "embedded_host/result/columns.h"
#include "embedded_host/result/device.h"
#include "embedded_host/result/machine_file.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace embedded_host {

struct ResultFile {
    ResultKind kind = ResultKind::Cpu;
    data_models2::ProgramInfo program;
    int usedThreads = 1;
    std::uint64_t collected = 0;      // bits of collected_data
    std::vector<std::string> levels;  // outermost last; of a CPU result
    std::optional<data_models2::GpuDeviceProperties> device;
    std::optional<Target> target;  // of an offload result
    double kernelTime = 0.0;       // seconds, of a GPU result: that of all kernels
    std::shared_ptr<const RowTable> rows;

    std::string machinePath;         // as the file says; empty: none
    std::optional<Machine> machine;  // when it stands in the file itself
};

// Checks the file and derives what it leaves out. Throws FileError.
ResultFile readResult(const JsonFile& file);

}  // namespace embedded_host
