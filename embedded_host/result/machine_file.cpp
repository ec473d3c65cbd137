// Reads and checks machines.
#include "embedded_host/result/machine_file.h"

#include "embedded_host/result/device.h"
#include "embedded_host/result/units.h"
#include "embedded_host/services/roof_captions.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <tuple>

namespace embedded_host {
namespace {
using namespace data_models2;

constexpr auto kMachineMembers = std::to_array<std::string_view>(
    {"format", "version", "name", "cores", "packages", "roofs", "custom", "device", "taxes"});
constexpr auto kCoreMembers = std::to_array<std::string_view>({"logical", "physical"});
constexpr auto kTaxMembers = std::to_array<std::string_view>({"launch", "transfer"});
constexpr auto kRoofMembers = std::to_array<std::string_view>(
    {"id", "name", "value", "unit", "threads", "packages", "strategy", "level", "arith", "opKind", "how"});
constexpr auto kCustomMembers =
    std::to_array<std::string_view>({"id", "value", "unit", "threads", "packages", "strategy"});

constexpr auto kStrategies = std::to_array<std::string_view>({"multi", "single"});
constexpr auto kHows =
    std::to_array<std::string_view>({"measured", "theoretical", "user", "derived", "assumed"});
constexpr auto kOpKinds = std::to_array<std::string_view>({"basic", "fma", "matrix"});
constexpr auto kOpTypes = std::to_array<RoofOpType>({RoofOpType::Basic, RoofOpType::Fma, RoofOpType::Matrix});
constexpr auto kLevelNames = std::to_array<std::string_view>(
    {"L1", "L2", "L3", "L4", "PKGRAM", "DRAM", "SLM", "XLI", "HBM", "GDDR6", "LLC", "EDRAM"});
constexpr auto kLevels =
    std::to_array<MemoryLevel>({MemoryLevel::L1, MemoryLevel::L2, MemoryLevel::L3, MemoryLevel::L4,
                                MemoryLevel::PkgRam, MemoryLevel::Dram, MemoryLevel::Slm, MemoryLevel::Xli,
                                MemoryLevel::Hbm, MemoryLevel::Gddr6, MemoryLevel::Llc, MemoryLevel::Edram});
constexpr auto kArithNames = std::to_array<std::string_view>(
    {"float8", "float16", "float32", "float64", "int8", "int16", "int32", "int64"});
constexpr auto kArithTypes = std::to_array<ArithTypeExtDef>(
    {ArithTypeExtDef::Float8, ArithTypeExtDef::Float16, ArithTypeExtDef::Float32, ArithTypeExtDef::Float64,
     ArithTypeExtDef::Int8, ArithTypeExtDef::Int16, ArithTypeExtDef::Int32, ArithTypeExtDef::Int64});
static_assert(kLevelNames.size() == kLevels.size() && kArithNames.size() == kArithTypes.size());

constexpr std::string_view kSingleNode = "(singlenode)";  // behind the caption of a roof of one NUMA node

// The form in which roof names are compared: lower case, no white space.
std::string shortForm(std::string_view name) {
    std::string result;
    for (const char c : name) {
        const auto letter = static_cast<unsigned char>(c);
        if (!std::isspace(letter)) result += static_cast<char>(std::tolower(letter));
    }
    return result;
}

bool isSingleNode(const std::string& shortName) {
    return shortName.size() >= kSingleNode.size() &&
           shortName.compare(shortName.size() - kSingleNode.size(), kSingleNode.size(), kSingleNode) == 0;
}

// Among roofs of one caption the CPU's, which stand first.
const RoofCaption* findByName(std::string shortName) {
    if (isSingleNode(shortName)) shortName.resize(shortName.size() - kSingleNode.size());
    const auto* const found = std::find_if(kRoofCaptions.begin(), kRoofCaptions.end(), [&](const auto& row) {
        return shortForm(row.caption) == shortName;
    });
    return found == kRoofCaptions.end() ? nullptr : found;
}

class MachineReader {
public:
    explicit MachineReader(const JsonFile& file) : m_file(file) {}

    Machine read(const JsonValue& value) {
        const auto [format, version, name, cores, packages, roofs, custom, device, taxes] =
            m_file.members(value, kMachineMembers);
        m_file.header(value, format, version, "roofline-machine");
        if (name) m_machine.name = m_file.text(*name);
        if (cores) readCores(*cores);
        if (packages) m_machine.packages = count(*packages);
        if (device) m_machine.device = readDevice(m_file, *device);
        if (taxes) readTaxes(*taxes);
        if (roofs) {
            for (const auto& roof : m_file.array(*roofs).GetArray()) readRoof(roof);
            refuseTwins(m_machine.roofs, *roofs);
        }
        if (custom) {
            for (const auto& roof : m_file.array(*custom).GetArray()) readCustom(roof);
            refuseTwins(m_machine.custom, *custom);
        }
        return std::move(m_machine);
    }

private:
    int count(const JsonValue& value) const {
        return static_cast<int>(m_file.integer(value, 1, kMaxThreads));
    }

    void readCores(const JsonValue& value) {
        const auto [logical, physical] = m_file.members(value, kCoreMembers);
        if (logical) m_machine.logicalCores = count(*logical);
        if (physical) m_machine.physicalCores = count(*physical);
        if (logical && physical && m_machine.logicalCores < m_machine.physicalCores) {
            m_file.refuse(*logical, fmt::format("at least the {} physical cores", m_machine.physicalCores));
        }
    }

    void readTaxes(const JsonValue& value) {
        const auto [launch, transfer] = m_file.members(value, kTaxMembers);
        if (launch) m_machine.taxes.launch = m_file.amount(*launch);
        if (transfer) m_machine.taxes.transfer = m_file.amount(*transfer);
    }

    void readRoof(const JsonValue& value) {
        const auto [id, name, amount, unit, threads, packages, strategy, level, arith, opKind, how] =
            m_file.members(value, kRoofMembers);
        if (!id && !name) m_file.fail(value, "expected a member \"id\" or \"name\", found neither");
        MeasuredRoof roof;
        auto& item = roof.item;
        const auto* const known = findKnown(id, name);
        if (known) {
            item = {.id = known->id,
                    .name = std::string(known->caption),
                    .typeBits = known->typeBits(),
                    .memoryLevel = known->level,
                    .roofOpType = known->opType,
                    .arithType = known->arithType};
        } else {
            item.id = static_cast<RoofId>(id->GetUint64());
            if (!name)
                m_file.fail(value,
                            "expected a member \"name\" for a roof whose id is not in the table of roofs");
            if (!level == !arith) {
                m_file.fail(value,
                            "expected either \"level\" or \"arith\" for a roof whose id is not in the table");
            }
            item.typeBits = level ? RoofItem::Memory : RoofItem::Compute;
        }
        if (name) nameRoof(*name, item);
        const bool isMemory = item.typeBits & RoofItem::Memory;
        if (isMemory) {
            if (arith) m_file.fail(*arith, "expected no arithmetic type for a memory roof");
            if (opKind) m_file.fail(*opKind, "expected no kind of operation for a memory roof");
            if (level) item.memoryLevel = kLevels[m_file.choice(*level, kLevelNames)];
        } else {
            if (level) m_file.fail(*level, "expected no memory level for a compute roof");
            if (arith) item.arithType = kArithTypes[m_file.choice(*arith, kArithNames)];
            if (opKind) item.roofOpType = kOpTypes[m_file.choice(*opKind, kOpKinds)];
        }
        if (how) m_file.choice(*how, kHows);
        item.value = readValue(value, amount, unit, isMemory);
        roof.features = readFeatures(threads, packages, strategy);
        m_machine.roofs.push_back(std::move(roof));
    }

    const RoofCaption* findKnown(const JsonValue* id, const JsonValue* name) const {
        if (id) return findRoofCaption(static_cast<RoofId>(m_file.integer(*id, 1, INT32_MAX)));
        const auto* const known = findByName(shortForm(m_file.text(*name)));
        if (known) return known;
        std::vector<std::string_view> captions;
        for (const auto& row : kRoofCaptions) captions.push_back(row.caption);
        m_file.refuse(*name, "the name of a known roof" + suggestion(textOf(*name), captions));
    }

    void nameRoof(const JsonValue& name, RoofItem& item) const {
        const auto text = m_file.text(name);
        const auto shortName = shortForm(text);
        if (shortName.empty()) m_file.refuse(name, "a name");
        item.name = text;
        if (isSingleNode(shortName)) item.typeBits |= RoofItem::SingleNode;
    }

    void readCustom(const JsonValue& value) {
        const auto [id, amount, unit, threads, packages, strategy] = m_file.members(value, kCustomMembers);
        m_file.need(value, id, "id");
        const auto wanted = static_cast<RoofId>(m_file.integer(*id, 1, INT32_MAX));
        const auto& roofs = m_machine.roofs;
        const auto base = std::find_if(roofs.begin(), roofs.end(),
                                       [&](const auto& roof) { return roof.item.id == wanted; });
        if (base == roofs.end()) m_file.refuse(*id, "the id of one of the machine's roofs");
        MeasuredRoof roof;
        roof.item.id = wanted;
        roof.item.value = readValue(value, amount, unit, base->item.typeBits & RoofItem::Memory);
        roof.features = readFeatures(threads, packages, strategy);
        roof.features.threadCount = evenThreads(roof.features.threadCount);
        m_machine.custom.push_back(std::move(roof));
    }

    // In bytes or operations per second.
    std::uint64_t readValue(const JsonValue& roof, const JsonValue* amount, const JsonValue* unit,
                            bool isMemory) const {
        m_file.need(roof, amount, "value");
        m_file.need(roof, unit, "unit");
        const auto name = m_file.text(*unit);
        if (const auto expected = expectedRoofUnit(name, isMemory); !expected.empty())
            m_file.refuse(*unit, expected);
        const auto parsed = *parseRoofUnit(name);
        const auto value = toRoofValue(m_file.amount(*amount), parsed);
        if (!value) m_file.refuse(*amount, "a value from 1 to 1e19 per second");
        // A double may lack the last digits of a large number.
        return parsed.factor == 1.0 && amount->IsUint64() ? amount->GetUint64() : *value;
    }

    RoofThreadingFeatures readFeatures(const JsonValue* threads, const JsonValue* packages,
                                       const JsonValue* strategy) const {
        RoofThreadingFeatures features{.threadCount = 1};
        if (threads) features.threadCount = count(*threads);
        if (packages) features.packageCount = count(*packages);
        if (strategy) {
            features.strategy =
                static_cast<RoofThreadingFeatures::Strategy>(m_file.choice(*strategy, kStrategies));
        }
        return features;
    }

    // A roof stands once for each thread set-up; the single-node form of a roof is a roof of its own.
    void refuseTwins(const std::vector<MeasuredRoof>& roofs, const JsonValue& array) const {
        using Key = std::tuple<RoofId, std::uint64_t, RoofThreadingFeatures, std::size_t>;
        std::vector<Key> keys;
        for (std::size_t i = 0; i < roofs.size(); ++i) {
            keys.emplace_back(roofs[i].item.id, roofs[i].item.typeBits & RoofItem::SingleNode,
                              roofs[i].features, i);
        }
        std::sort(keys.begin(), keys.end());
        const auto twin = std::adjacent_find(keys.begin(), keys.end(), [](const Key& a, const Key& b) {
            return std::tie(std::get<0>(a), std::get<1>(a), std::get<2>(a)) ==
                   std::tie(std::get<0>(b), std::get<1>(b), std::get<2>(b));
        });
        if (twin == keys.end()) return;
        m_file.fail(array[static_cast<rapidjson::SizeType>(std::get<3>(*(twin + 1)))],
                    fmt::format("the same roof and threads as in element {}", std::get<3>(*twin)));
    }

    const JsonFile& m_file;
    Machine m_machine;
};

}  // namespace

Machine readMachine(const JsonFile& file, const JsonValue& value) { return MachineReader(file).read(value); }

Machine openMachine(const std::string& path) {
    const JsonFile file(path, readFile(path));
    auto machine = readMachine(file, file.root());
    machine.file = path;
    return machine;
}

int subDevicesOf(const std::optional<GpuDeviceProperties>& device, const Machine& machine) {
    const auto own = device ? device->subDeviceCount : 0;
    return own > 0 ? static_cast<int>(own) : std::max(1, machine.packages);
}

}  // namespace embedded_host
