#include "embedded_host/result/own_roofs.h"

#include "host_interfaces/host_functions.h"

#include "embedded_host/result/json_splice.h"
#include "embedded_host/result/units.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace embedded_host {
namespace {
using namespace data_models2;

constexpr std::string_view kMember = "custom";
constexpr std::uint64_t kMaxValue = 10'000'000'000'000'000'000U;

RoofThreadingFeatures keyOf(RoofThreadingFeatures features) {
    features.threadCount = evenThreads(features.threadCount);
    return features;
}

// Null when the machine has no such roof.
const RoofItem* findRoof(const Machine& machine, RoofId id) {
    const auto found = std::find_if(machine.roofs.begin(), machine.roofs.end(),
                                    [&](const auto& roof) { return roof.item.id == id; });
    return found == machine.roofs.end() ? nullptr : &found->item;
}

void check(const Machine& machine, RoofId id, std::uint64_t value) {
    const auto number = static_cast<int>(id);
    if (!findRoof(machine, id)) throw FileError(fmt::format("{}: there is no roof {}", machine.file, number));
    if (value < 1 || value > kMaxValue)
        throw FileError(
            fmt::format("expected a value from 1 to 1e19 per second for roof {}, found {}", number, value));
}

void check(const RoofThreadingFeatures& features) {
    for (const auto count : {features.threadCount, features.packageCount})
        if (count < 1 || count > kMaxThreads)
            throw FileError(
                fmt::format("expected 1 to {} threads and packages, found {}", kMaxThreads, count));
}

// As it stands in the file.
std::string entryOf(const RoofItem& roof, std::uint64_t value, const RoofThreadingFeatures& features) {
    const auto operations = roof::getOperationsType(roof);
    const auto [number, unit] = formatRoofValue(value, roof.typeBits & RoofItem::Memory      ? ""
                                                       : operations == OperationsType::Float ? "FLOP"
                                                       : operations == OperationsType::Int   ? "INTOP"
                                                                                             : "OP");
    auto text = fmt::format(R"({{"id": {}, "value": {}, "unit": "{}", "threads": {})",
                            static_cast<int>(roof.id), number, unit, features.threadCount);
    if (features.packageCount != 1) text += fmt::format(R"(, "packages": {})", features.packageCount);
    if (features.strategy == RoofThreadingFeatures::Strategy::SingleThread)
        text += R"(, "strategy": "single")";
    return text + '}';
}

// Replacing a file needs the right to write its folder only, so its own protection is looked after here.
void replaceFile(const std::string& path, const std::string& text) {
    if (::access(path.c_str(), W_OK) != 0)
        throw FileError(fmt::format("{}: cannot write: {}", path, std::strerror(errno)));
    std::error_code ignored;
    const auto mode = std::filesystem::status(path, ignored).permissions();
    writeFile(path, text, true);
    std::filesystem::permissions(path, mode, ignored);
}

// What `text` becomes with these values in place of those of the set-up `key`; all of them go when `values`
// is empty. The other entries stay as they were written.
std::string rewritten(const std::string& path, const std::string& text,
                      const std::map<RoofId, std::uint64_t>& values, const RoofThreadingFeatures& key) {
    const JsonFile file(path, text);
    const auto machine = readMachine(file, file.root());
    std::vector<std::string> items;
    const auto old = arrayItems(file, text, kMember);
    for (std::size_t i = 0; i < old.size(); ++i) {
        const auto& [roof, oldKey] = machine.custom[i];
        if (oldKey != key || (!values.empty() && !values.contains(roof.id))) items.push_back(old[i]);
    }
    for (const auto& [id, value] : values) {
        const auto* const roof = findRoof(machine, id);
        if (!roof)
            throw FileError(fmt::format("{}: there is no roof {} any more", path, static_cast<int>(id)));
        items.push_back(entryOf(*roof, value, key));
    }
    return withArrayItems(file, text, kMember, items);
}

// Gives all own values that the file holds afterwards.
std::vector<MeasuredRoof> rewriteFile(const Machine& machine, const std::map<RoofId, std::uint64_t>& values,
                                      const RoofThreadingFeatures& key) {
    const auto& path = machine.file;
    if (path.empty()) throw FileError("own values of roofs are kept in a machine file, and there is none");
    for (const auto& [id, value] : values) check(machine, id, value);
    check(key);
    const auto text = readFile(path);
    const auto changed = rewritten(path, text, values, key);
    const JsonFile file(path, changed);
    auto result = readMachine(file, file.root()).custom;
    if (changed != text) replaceFile(path, changed);
    return result;
}

}  // namespace

OwnRoofs::OwnRoofs(std::shared_ptr<const Machine> machine)
    : m_machine(std::move(machine)), m_values(std::make_shared<const Values>(m_machine->custom)) {}

void OwnRoofs::apply(std::vector<RoofItem>& roofs, const RoofThreadingFeatures& features) const {
    const auto values = [this] {
        const std::lock_guard lock(m_mutex);
        return m_values;
    }();
    for (const auto& [own, ownFeatures] : *values) {
        if (ownFeatures != keyOf(features)) continue;
        // Of one id the roof itself stands before its single-node form.
        const auto id = own.id;
        const auto roof =
            std::find_if(roofs.begin(), roofs.end(), [&](const auto& each) { return each.id == id; });
        if (roof != roofs.end()) roof->value = own.value;
    }
}

bool OwnRoofs::set(const std::map<RoofId, std::uint64_t>& values, const RoofThreadingFeatures& features) {
    return values.empty() || change(values, features);
}

bool OwnRoofs::clear(const RoofThreadingFeatures& features) { return change({}, features); }

std::string OwnRoofs::fault() const {
    const std::lock_guard lock(m_mutex);
    return m_fault;
}

bool OwnRoofs::change(const std::map<RoofId, std::uint64_t>& values, const RoofThreadingFeatures& features) {
    // One change at a time in the process: two results may share a machine file.
    static std::mutex writing;
    const std::lock_guard writes(writing);
    std::shared_ptr<const Values> result;
    std::string fault;
    try {
        result = std::make_shared<const Values>(rewriteFile(*m_machine, values, keyOf(features)));
    } catch (const std::exception& error) {
        fault = error.what();
    }
    const std::lock_guard lock(m_mutex);
    if (result) m_values = std::move(result);
    m_fault = std::move(fault);
    return m_fault.empty();
}

std::string ownRoofsFault(const IRoofManager& table) {
    const auto* const own = dynamic_cast<const IOwnRoofsTable*>(&table);
    return own ? own->fault() : std::string();
}

}  // namespace embedded_host
