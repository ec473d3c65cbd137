// The view models of the kinds of results: answers from what the files said.
#pragma once

#include <memory>
#include <string>

namespace data_models2 {
class IPerfProjectionViewModel;
class ISurveyingViewModel;
}  // namespace data_models2

namespace embedded_host {

struct Machine;
struct ResultFile;

// One of the two is there.
struct Views {
    std::shared_ptr<data_models2::ISurveyingViewModel> measured;
    std::shared_ptr<data_models2::IPerfProjectionViewModel> projected;
};

// `directory` identifies the result among those of a process. The device or target of the result goes before
// the machine's device.
using ViewMaker = Views(ResultFile result, std::shared_ptr<const Machine> machine, std::string directory);
ViewMaker makeCpuView, makeGpuView, makeOffloadView;

}  // namespace embedded_host
