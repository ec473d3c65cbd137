#include "roofline_model/roof_names.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/translation.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/split.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iomanip>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace data_models2::roofline {

namespace {

constexpr auto kRoofNames = std::to_array<std::pair<int, const char*>>({
    {1, "l1bandwidth"},
    {2, "l2bandwidth"},
    {3, "l3bandwidth"},
    {4, "l4bandwidth"},
    {5, "pkgrambandwidth"},
    {6, "drambandwidth"},
    {6, "drambandwidth(singlenode)"},  // Deliberate: the first entry of an id wins, a reader never sees this
                                       // one.
    {7, "spvectorfmapeak"},
    {8, "dpvectorfmapeak"},
    {9, "scalaraddpeak"},
    {10, "spvectoraddpeak"},
    {11, "dpvectoraddpeak"},
    {13, "integerscalaraddpeak"},
    {14, "int8vectoraddpeak"},
    {15, "int16vectoraddpeak"},
    {16, "int32vectoraddpeak"},
    {17, "int64vectoraddpeak"},
    {18, "scalarl1bandwidth"},
    {19, "scalarl2bandwidth"},
    {20, "scalarl3bandwidth"},
    {21, "scalarl4bandwidth"},
    {22, "slmbandwidth"},
    {23, "xlibandwidth"},
});

// Short form of a level's token, and the message id of its caption.
constexpr auto kLevelMessages = std::to_array<std::pair<const char*, const char*>>({
    {"l1", "roofline_options_l1"},
    {"l2", "roofline_options_l2"},
    {"l3", "roofline_options_l3"},
    {"l4", "roofline_options_l4"},
    {"dram", "roofline_options_dram"},
    {"carmgpu", "roofline_options_gpu_carm"},
    {"l3gpu", "roofline_options_l3"},
    {"xligpu", "roofline_options_xli"},
    {"slmgpu", "roofline_options_slm"},
    {"dramgpu", "roofline_options_dram"},
    {"hbmgpu", "roofline_options_hbm"},
    {"l1gpu", "roofline_options_l1_gpu"},
    {"edramgpu", "roofline_options_edram"},
    {"gddr6gpu", "roofline_options_gddr6"},
    {"llcgpu", "roofline_options_llc"},
});

struct AxisMessages {
    FieldId field;
    const char* caption;
    const char* measure;
};

constexpr auto kAxes = std::to_array<AxisMessages>({
    {FieldId::SelfFloatAi, "roofline_ai_axis_caption", "roofline_ai_axis_measure"},
    {FieldId::SelfIntAi, "roofline_ai_axis_caption", "roofline_ai_axis_measure_int"},
    {FieldId::SelfMixedAi, "roofline_ai_axis_caption", "roofline_ai_axis_measure_int_float"},
    {FieldId::SelfGFlops, "roofline_perf_axis_caption", "roofline_perf_axis_measure"},
    {FieldId::SelfGIntOps, "roofline_perf_axis_caption", "roofline_perf_axis_measure_int"},
    {FieldId::SelfGMixedOps, "roofline_perf_axis_caption", "roofline_perf_axis_measure_int_float"},
});

constexpr std::array<const char*, 3> kOperationTokens{"f", "i", "b"};

bool isSpace(char c) { return std::string_view(" \t\n\v\f\r").find(c) != std::string_view::npos; }
char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::vector<std::string> splitTokens(const std::string& configuration) {
    std::vector<std::string> tokens;
    boost::split(tokens, configuration, boost::is_any_of("-"));
    return tokens;
}

}  // namespace

namespace helpers {

namespace {
// The message id of a level's caption; null for an unknown level.
const char* findLevelMessage(const std::string& name) {
    const std::string shortName = getRoofShortName(name);
    const auto found = std::find_if(kLevelMessages.begin(), kLevelMessages.end(),
                                    [&](const auto& entry) { return entry.first == shortName; });
    return found == kLevelMessages.end() ? nullptr : found->second;
}
}  // namespace

std::string getRoofNameById(RoofId id) {
    const auto found = std::find_if(kRoofNames.begin(), kRoofNames.end(),
                                    [id](const auto& entry) { return entry.first == static_cast<int>(id); });
    return found == kRoofNames.end() ? std::string() : found->second;
}

std::string getRoofShortName(const std::string& name) {
    constexpr std::string_view kSingleThreaded = "(single-threaded)";
    std::string result = name;
    std::transform(result.begin(), result.end(), result.begin(), toLower);
    if (const auto at = result.find(kSingleThreaded); at != std::string::npos)
        result.erase(at, kSingleThreaded.size());
    std::erase_if(result, isSpace);
    return result;
}

std::string getRoofDescription(const std::string& name, TargetDeviceType target) {
    const std::string key =
        (target == TargetDeviceType::Gpu ? "RoofDescriptiongpu" : "RoofDescription") + getRoofShortName(name);
    std::string text = translate(key);
    return text == key ? std::string() : text;
}

std::string getMemLevelPrefixName(const std::string& name) {
    const char* message = findLevelMessage(name);
    if (!message) throw std::out_of_range("no memory level is named " + name);
    return translate(message);
}

std::string getMemLevelCaption(const std::string& name) { return getMemLevelCaption(name, name); }

std::string getMemLevelCaption(const std::string& name, const std::string& unknown) {
    const char* message = findLevelMessage(name);
    return message ? translate(message) : unknown;
}

const std::string& getRoofMeasureTranslated(bool isMemory, OperationsType operations) {
    static const std::string memory = translate("roofline_mem_roof_measure");
    static const std::string integer = translate("roofline_calc_roof_measure_int");
    static const std::string compute = translate("roofline_calc_roof_measure");
    if (isMemory) return memory;
    return operations == OperationsType::Int ? integer : compute;
}

AxisText getRoofAxesTranslated(FieldId field) {
    const auto found = std::find_if(kAxes.begin(), kAxes.end(),
                                    [field](const AxisMessages& axis) { return axis.field == field; });
    if (found == kAxes.end()) return {};
    return {translate(found->caption), translate(found->measure)};
}

std::string getCoreLevelName(TargetDeviceType device) {
    return device == TargetDeviceType::Gpu ? "CARMgpu" : "L1";
}

std::string getTrafficLevelName(MemoryLevel level, TargetDeviceType device) {
    return level == MemoryLevel::L1 ? getCoreLevelName(device)
                                    : roofline_helpers::getMemoryRooflineType(level, device);
}

RoofId getGpuLastMemLevelRoofId(const std::string& name) {
    return roofline_helpers::getGpuLastMemLevelRoofId(name);
}

std::string double2Str(double value, int precision) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << std::fixed << std::setprecision(std::max(0, precision)) << value;
    return stream.str();
}

std::string getLoopId(const sptr_t<RowNode>& row) {
    return row ? fmt::to_string(row->getId()) : std::string();
}

}  // namespace helpers

std::string getObjectId(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) {
    return row && dataset ? fmt::to_string(dataset->getObjectId(row)) : std::string();
}

std::string getMemoryLevelCaption(const std::vector<std::string>& levels) {
    std::string result;
    for (const auto& level : levels) result += level + '-';
    return result;
}

std::string getRooflineTypeFromOpsType(OperationsType type) {
    const auto index = static_cast<std::size_t>(type);
    return index < kOperationTokens.size() ? kOperationTokens[index] : "";
}

OperationsType getRooflineOperationType(const std::string& configuration) {
    OperationsType result = OperationsType::Undefined;
    for (const auto& token : splitTokens(configuration)) {
        const auto found = std::find(kOperationTokens.begin(), kOperationTokens.end(), token);
        if (found == kOperationTokens.end()) continue;
        const auto type = static_cast<OperationsType>(found - kOperationTokens.begin());
        result = result == OperationsType::Undefined || result == type ? type : OperationsType::Mixed;
    }
    return result;
}

std::vector<std::string> transformRooflineTypes(std::vector<std::string> types, OperationsType operations) {
    const std::string letter = operations == OperationsType::Float ? "f" : "i";
    const auto mixed = getRooflineTypeFromOpsType(OperationsType::Mixed);
    for (auto& configuration : types) {
        auto tokens = splitTokens(configuration);
        std::replace(tokens.begin(), tokens.end(), mixed, letter);
        configuration = boost::join(tokens, "-");
    }
    return types;
}

ArithTypeExtDef getArithTypeExtDef(ArithTypeDef base, std::uint64_t bits) {
    struct Width {
        unsigned bits;
        ArithTypeExtDef integer;
        ArithTypeExtDef floating;
    };
    constexpr auto kWidths = std::to_array<Width>({
        {64, ArithTypeExtDef::Int64, ArithTypeExtDef::Float64},
        {32, ArithTypeExtDef::Int32, ArithTypeExtDef::Float32},
        {16, ArithTypeExtDef::Int16, ArithTypeExtDef::Float16},
        {8, ArithTypeExtDef::Int8, ArithTypeExtDef::Float8},
    });
    const auto found =
        std::find_if(kWidths.begin(), kWidths.end(), [bits](const Width& w) { return w.bits == bits; });
    if (found == kWidths.end()) return ArithTypeExtDef::None;
    if (base == ArithTypeDef::Int) return found->integer;
    return base == ArithTypeDef::Float || base == ArithTypeDef::FloatOther ? found->floating
                                                                           : ArithTypeExtDef::None;
}

}  // namespace data_models2::roofline
