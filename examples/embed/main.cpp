// The smallest embedder: opens a result and prints its options and its chart document, one line each.
#include "embedded_host/embedded_host.h"

#include "roofline_model/factories.h"

#include <cstdio>
#include <exception>
#include <string>

using namespace data_models2;

namespace {

int printChart(const std::string& path) {
    // 1. A host's view model: datasets of rows, and the roofs of the machine.
    const auto result = embedded_host::openResult(path);
    const auto viewModel = result->viewModel();

    // 2. The engine listens to the view model; what it answers is known once the result is loaded.
    const auto engine = createRooflineInfo(viewModel);
    result->load(IViewModelBase::LoadType::Result);

    // 3. What can be chosen, and the configuration that stands for choosing nothing.
    const std::string options = engine->getRooflineOptions();
    const std::string configuration = engine->getRooflineConfigurationStr({});

    // 4. The chart: rows with their self data, and the call tree with total data where there is one.
    const auto rows = viewModel->getDataset(DataType::Cpu);
    const auto tree = viewModel->getDataset(DataType::CpuTopDown);
    const std::string chart = engine->getRooflineData(rows, tree, configuration);

    std::printf("%s\n%s\n", options.c_str(), chart.c_str());
    return chart.empty() ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s RESULT\n", argv[0]);
        return 2;
    }
    embedded_host::setUpLogging(false);
    try {
        return printChart(argv[1]);
    } catch (const std::exception& error) {  // embedded_host::FileError: the file, the place, what is due
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
