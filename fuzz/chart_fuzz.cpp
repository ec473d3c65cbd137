// Any text as a result file: it is refused with a FileError, or every operation answers without a fault.
#include "host_interfaces/signals.h"

#include "embedded_host/embedded_host.h"

#include "roofline_model/factories.h"

#include <cstddef>
#include <cstdint>
#include <string>

using namespace data_models2;

namespace {

void askEverything(embedded_host::Result& result) {
    const auto viewModel = result.viewModel();
    const auto engine = createRooflineInfo(viewModel);
    result.load(IViewModelBase::LoadType::Result);

    const auto rows = viewModel->getDataset(DataType::Cpu);
    const auto tree = viewModel->getDataset(DataType::CpuTopDown);
    engine->getRooflineOptions();
    engine->getThreadsInfo();
    for (const std::string& configuration :
         {engine->getRooflineConfigurationStr({}), std::string("f-i-0-1-L1-DRAM-all"), std::string()}) {
        engine->getRooflineData(rows, tree, configuration);
        engine->getAllRoofs(configuration);
        engine->getRoofs(configuration, {}, IRooflineInfo::Perspective::Program);
        engine->getSelectedRoofs(configuration, IRooflineInfo::Perspective::Program);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isQuiet = [] {
        embedded_host::setUpLogging(false);
        return true;
    }();
    static_cast<void>(isQuiet);
    try {
        const std::string text(reinterpret_cast<const char*>(data), size);
        askEverything(*embedded_host::parseResult(text, "fuzz.json"));
    } catch (const embedded_host::FileError&) {
    }
    return 0;
}
