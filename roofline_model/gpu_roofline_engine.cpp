#include "roofline_model/gpu_roofline_engine.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/guard.h"
#include "roofline_model/rabbit.h"
#include "roofline_model/translation.h"

namespace data_models2 {

namespace {

constinit const roofline::LogChannel kLog{"gpu_roofline_engine"};

struct SubDeviceOption {
    TileUsage value;
    // Message ids; the new ones speak of stacks instead of tiles.
    const char* caption;
    const char* newCaption;
    const char* expl;
    const char* newExpl;
};

// Deliberate: what all sub-devices are needs one explanation in both wordings.
constexpr SubDeviceOption kSubDeviceOptions[]{
    {TileUsage::Single, "roofline_single_subdevice_option", "roofline_single_subdevice_option_new",
     "roofline_single_subdevice_option_expl", "roofline_single_subdevice_option_expl_new"},
    {TileUsage::Multi, "roofline_multi_subdevice_option", "roofline_multi_subdevice_option_new",
     "roofline_multi_subdevice_option_expl", "roofline_multi_subdevice_option_expl"},
};

rabbit::object makeSubDeviceGroup(bool useNew, rabbit::Allocator& allocator) {
    rabbit::array options(allocator);
    for (const auto& option : kSubDeviceOptions) {
        rabbit::object item(allocator);
        item.append("caption", roofline::translate(useNew ? option.newCaption : option.caption));
        item.append("expl", roofline::translate(useNew ? option.newExpl : option.expl));
        item.append("value", static_cast<int>(option.value));
        options.push(std::move(item));
    }
    rabbit::object group(allocator);
    group.append("defaultValue", static_cast<int>(TileUsage::Multi));
    group.append("options", std::move(options));
    return group;
}

}  // namespace

CGpuRooflineEngine::CGpuRooflineEngine(std::shared_ptr<ISurveyingViewModel> viewModel)
    : MeasuredEngine(gpuAnalysis(), kLog, std::move(viewModel)) {}

void CGpuRooflineEngine::onSurveyResultLoaded(IViewModelBase::LoadType type, const std::string& message) {
    if (!viewModel()) return reportAssertion("m_model", "roofline_model/gpu_roofline_engine", __LINE__);
    MeasuredEngine::onSurveyResultLoaded(type, message);
}

std::string CGpuRooflineEngine::getThreadsInfo() const {
    return roofline::guarded(std::string(), [&] {
        if (!hasDeviceInfo()) return std::string();
        const bool useNew = gpu_helpers::useNewGpuTerminology(m_core.device().memoryType);
        return rabbit::writeObject([&](rabbit::object& root) {
            root.append("processorPackageCount", static_cast<int>(TileUsage::Multi));
            root.append("group", makeSubDeviceGroup(useNew, root.allocator()));
        });
    });
}

}  // namespace data_models2
