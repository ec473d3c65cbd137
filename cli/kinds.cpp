// The table of kinds.
#include "cli/kinds.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/factories.h"

#include "cli/console.h"
#include "cli/json.h"
#include "cli/text.h"

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <array>
#include <locale>

namespace cli {
namespace {

using namespace data_models2;
using embedded_host::ResultKind;

using Features = RoofThreadingFeatures;

// A result that was measured.
template <auto createEngine>
OpenedResult openSurvey(const embedded_host::Result& result) {
    auto survey = result.viewModel();
    return {{survey, survey}, createEngine(survey)};
}

std::size_t surveyLevels(const Models& models) { return models.survey->getMemoryLevelNames().size(); }

constexpr auto kSurveyOperations = std::to_array<OperationFields>({
    {"f", FieldId::SelfFloatOps, FieldId::TotalFloatOps, FieldId::SelfGFlops, FieldId::SelfFloatAi,
     "no float operations"},
    {"i", FieldId::SelfIntOps, FieldId::TotalIntOps, FieldId::SelfGIntOps, FieldId::SelfIntAi,
     "no integer operations"},
    {"b", FieldId::SelfMixedOps, FieldId::TotalMixedOps, FieldId::SelfGMixedOps, FieldId::SelfMixedAi,
     "no operations"},
});

namespace cpu {

constexpr auto kTraffic = std::to_array<TrafficFields>({
    {"L1", MemoryLevel::L1, FieldId::SelfL1Load, FieldId::SelfL1Store, FieldId::TotalL1Load,
     FieldId::TotalL1Store},
    {"L2", MemoryLevel::L2, FieldId::SelfL2Load, FieldId::SelfL2Store, FieldId::TotalL2Load,
     FieldId::TotalL2Store},
    {"L3", MemoryLevel::L3, FieldId::SelfL3Load, FieldId::SelfL3Store, FieldId::TotalL3Load,
     FieldId::TotalL3Store},
    {"L4", MemoryLevel::L4, FieldId::SelfL4Load, FieldId::SelfL4Store, FieldId::TotalL4Load,
     FieldId::TotalL4Store},
    {"DRAM", MemoryLevel::Dram, FieldId::SelfDramLoad, FieldId::SelfDramStore, FieldId::TotalDramLoad,
     FieldId::TotalDramStore},
    {"", MemoryLevel::None, FieldId::SelfMemL1, FieldId::None, FieldId::TotalMem, FieldId::None},
});
constexpr std::array<std::string_view, 1> kAllOperations{"b"};

std::shared_ptr<IRowRooflineInfo> createRow(const RowQuestion& question) {
    const auto& survey = *question.models.survey;
    const auto type = question.dataset->getDataType();
    return createRowRooflineInfo(question.row, question.dataset, survey.getRoofManager(type),
                                 getInstructionMixMap(question.row, survey.getDataset(type)),
                                 static_cast<int>(surveyLevels(question.models)),
                                 std::make_shared<Features>(question.threading));
}

Features threading(const IRooflineInfo& engine, const RoofChoice& choice) {
    Features features;
    features.threadCount = choice.threads;
    features.strategy = choice.single ? Features::Strategy::SingleThread : Features::Strategy::MultiThread;
    features.packageCount = choice.packages;
    if (choice.packages > 0) return features;

    // Threads that don't fit on one package need all of them.
    const auto info = json::parse(engine.getThreadsInfo(), "the library's thread counts");
    const auto packages =
        std::max(1, static_cast<int>(json::number(info, "processorPackageCount").value_or(1)));
    const auto cores = json::number(info, "physicalCoreCount").value_or(0);
    const auto used = json::number(info, "usedNumberOfThreads").value_or(0);
    const auto threads = choice.threads > 0 ? choice.threads : used;
    features.packageCount = cores > 0 && threads > cores / packages ? packages : 1;
    return features;
}

int usedThreads(const Models& models) { return models.survey->getUsedThreadCount(); }

std::vector<Phrase> place(const Features& features, const Models& models) {
    const auto asked = features.threadCount > 0 ? features.threadCount : usedThreads(models);
    const auto threads = asked > 1 ? asked + asked % 2 : asked;
    const bool isSingle = features.strategy == Features::Strategy::SingleThread;
    const auto threadCount = std::to_string(threads), packageCount = std::to_string(features.packageCount);
    std::vector<Phrase> phrases;
    if (threads == 1)
        phrases.push_back({"page_place_thread", "1 thread", {}});
    else if (isSingle)
        phrases.push_back({"page_place_single", "a single one of %1 threads", {threadCount}});
    else
        phrases.push_back({"page_place_threads", "%1 threads", {threadCount}});
    if (threads != asked)
        phrases.push_back({"page_place_even", "(odd numbers are taken as the next even one)", {}});
    if (features.packageCount == 1)
        phrases.push_back({"page_place_package", "on 1 package", {}});
    else
        phrases.push_back({"page_place_packages", "on %1 packages", {packageCount}});
    return phrases;
}

}  // namespace cpu

namespace gpu {

constexpr TrafficFields trafficOf(std::string_view option, MemoryLevel level, FieldId field) {
    return {option, level, field, FieldId::None, field, FieldId::None};
}
constexpr auto kTraffic = std::to_array<TrafficFields>({
    trafficOf("CARMgpu", MemoryLevel::L1, FieldId::GpuCarmTraffic),
    trafficOf("L3gpu", MemoryLevel::L3, FieldId::GpuL3Traffic),
    trafficOf("SLMgpu", MemoryLevel::Slm, FieldId::GpuSlmTraffic),
    trafficOf("XLIgpu", MemoryLevel::Xli, FieldId::GpuMemTraffic),
    trafficOf("DRAMgpu", MemoryLevel::Dram, FieldId::GpuMemTraffic),
    trafficOf("HBMgpu", MemoryLevel::Hbm, FieldId::GpuMemTraffic),
    trafficOf("", MemoryLevel::None, FieldId::GpuCarmTraffic),
});
constexpr std::array<std::string_view, 2> kAllOperations{"f", "i"};

TileUsage usageOf(const Features& features) {
    return features.packageCount == 1 ? TileUsage::Single : TileUsage::Multi;
}

std::shared_ptr<IRowRooflineInfo> createRow(const RowQuestion& question) {
    return createGpuRowRooflineInfo(question.row, question.dataset, question.models.survey,
                                    usageOf(question.threading));
}

// Packages are the two choices of sub-devices.
Features threading(const IRooflineInfo& engine, const RoofChoice& choice) {
    if (choice.threads > 0 || choice.single)
        throw UsageError(
            "--threads, --single: the roofs of a GPU don't depend on threads; --packages 1 stands for one "
            "sub-device, 2 for all of them");
    if (choice.packages > static_cast<int>(TileUsage::Multi))
        throw UsageError("--packages: of a GPU 1 stands for one sub-device, 2 for all of them");
    Features features;
    features.packageCount = choice.packages;
    if (choice.packages > 0) return features;
    features.packageCount = static_cast<int>(TileUsage::Multi);
    const auto text = engine.getThreadsInfo();
    if (text.empty()) return features;  // no device is known
    const auto info = json::parse(text, "the library's sub-devices");
    if (const auto* const group = json::member(info, "group"))
        features.packageCount =
            static_cast<int>(json::number(*group, "defaultValue").value_or(features.packageCount));
    return features;
}

std::vector<Phrase> place(const Features& features, const Models&) {
    if (usageOf(features) == TileUsage::Single) return {{"page_place_sub_device", "one sub-device", {}}};
    return {{"page_place_sub_devices", "all sub-devices", {}}};
}

}  // namespace gpu

namespace offload {

// A region holds all that it calls: its total fields are its own.
constexpr auto kOperations = std::to_array<OperationFields>({
    {"f", FieldId::TotalFloatOps, FieldId::TotalFloatOps, FieldId::TotalGFlops, FieldId::TotalFloatAi,
     "no float operations"},
    {"i", FieldId::TotalIntOps, FieldId::TotalIntOps, FieldId::TotalGIntOps, FieldId::TotalIntAi,
     "no integer operations"},
    {"b", FieldId::TotalMixedOps, FieldId::TotalMixedOps, FieldId::TotalGMixedOps, FieldId::TotalMixedAi,
     "no operations"},
});

constexpr auto kTraffic = std::to_array<TrafficFields>({
    gpu::trafficOf("L3gpu", MemoryLevel::L3, FieldId::OffloadL3Bytes),
    gpu::trafficOf("SLMgpu", MemoryLevel::Slm, FieldId::OffloadSlmBytes),
    gpu::trafficOf("XLIgpu", MemoryLevel::Xli, FieldId::OffloadXliBytes),
    gpu::trafficOf("DRAMgpu", MemoryLevel::Dram, FieldId::OffloadDramBytes),
    gpu::trafficOf("GDDR6gpu", MemoryLevel::Gddr6, FieldId::OffloadGddr6Bytes),
    gpu::trafficOf("HBMgpu", MemoryLevel::Hbm, FieldId::OffloadHbmBytes),
    gpu::trafficOf("", MemoryLevel::None, FieldId::OffloadL1Bytes),
});
constexpr std::array<std::string_view, 1> kAllOperations{"b"};

OpenedResult open(const embedded_host::Result& result) {
    const auto projection = result.projection();
    return {{projection, nullptr}, createOffloadRooflineInfo(projection)};
}

std::shared_ptr<IRowRooflineInfo> createRow(const RowQuestion& question) {
    return createOffloadRowRooflineInfo(question.row, question.dataset,
                                        question.models.all->getRoofManager(DataType::Offload),
                                        gpu::usageOf(question.threading) == TileUsage::Single);
}

std::size_t levelCount(const Models& models) {
    const auto rows = models.all->getDataset(DataType::Offload);
    return static_cast<std::size_t>(std::count_if(kTraffic.begin(), kTraffic.end(), [&](const auto& each) {
        return rows && rows->getColumn(each.selfLoad);
    }));
}

}  // namespace offload

constexpr std::array<ResultTraits, 3> kKinds{{
    {
        .kind = ResultKind::Cpu,
        .name = "CPU",
        .aResult = "a CPU result",
        .rows = DataType::Cpu,
        .tree = DataType::CpuTopDown,
        .compared = DataType::Cpu,
        .open = openSurvey<createRooflineInfo>,
        .createRow = cpu::createRow,
        .selfTime = FieldId::SelfElapsedTime,
        .totalTime = FieldId::TotalElapsedTime,
        .location = FieldId::Location,
        .operations = kSurveyOperations,
        .traffic = cpu::kTraffic,
        .allOperations = cpu::kAllOperations,
        .threading = cpu::threading,
        .place = cpu::place,
        .levelCount = surveyLevels,
        .usedThreads = cpu::usedThreads,
        .countsInstructions = false,
        .levelNeeds = "loads and stores",
        .invalidRow = "holds other loops: only total data would do",
        .rowConfig = "of --config only 0 (total data) or 1 (self data) counts for rows",
    },
    {
        .kind = ResultKind::Gpu,
        .name = "GPU",
        .aResult = "a GPU result",
        .rows = DataType::Gpu,
        .tree = DataType::None,
        .compared = DataType::Gpu,
        .open = openSurvey<createGpuRooflineInfo>,
        .createRow = gpu::createRow,
        .selfTime = FieldId::GpuElapsedTime,
        .totalTime = FieldId::GpuElapsedTime,
        .location = FieldId::Location,
        .operations = kSurveyOperations,
        .traffic = gpu::kTraffic,
        .allOperations = gpu::kAllOperations,
        .threading = gpu::threading,
        .place = gpu::place,
        .levelCount = surveyLevels,
        .usedThreads = nullptr,
        .countsInstructions = true,
        .levelNeeds = "the traffic of each",
        .invalidRow = "no kernel",
        .rowConfig = "--config doesn't matter to the rows of a GPU",
    },
    {
        .kind = ResultKind::Offload,
        .name = "offload",
        .aResult = "an offload result",
        .rows = DataType::Offload,
        .tree = DataType::None,
        .compared = DataType::None,
        .open = offload::open,
        .createRow = offload::createRow,
        .selfTime = FieldId::OffloadElapsedTime,
        .totalTime = FieldId::OffloadElapsedTime,
        .location = FieldId::OffloadSourceLocation,
        .operations = offload::kOperations,
        .traffic = offload::kTraffic,
        .allOperations = offload::kAllOperations,
        .threading = gpu::threading,
        .place = gpu::place,
        .levelCount = offload::levelCount,
        .usedThreads = nullptr,
        .countsInstructions = false,
        .levelNeeds = "the traffic of each",
        .invalidRow = "no operations over a traffic of the core",
        .rowConfig = "--config doesn't matter to the rows of a projection",
    },
}};

}  // namespace

std::span<const ResultTraits> allKinds() { return kKinds; }

const ResultTraits& kindOf(const embedded_host::Result& result) {
    return *std::find_if(kKinds.begin(), kKinds.end(),
                         [&](const ResultTraits& each) { return each.kind == result.kind(); });
}

const ResultTraits* findKind(const std::string& name) {
    const auto found = std::find_if(kKinds.begin(), kKinds.end(), [&](const ResultTraits& each) {
        return boost::algorithm::iequals(each.name, name, std::locale::classic());
    });
    return found == kKinds.end() ? nullptr : &*found;
}

std::string inEnglish(const std::vector<Phrase>& phrases) {
    std::vector<std::string> texts;
    for (const auto& phrase : phrases) texts.push_back(fillIn(phrase.english, phrase.arguments));
    return boost::algorithm::join(texts, " ");
}

}  // namespace cli
