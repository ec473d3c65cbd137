#include "cli/own_roofs.h"

#include "host_interfaces/host_functions.h"

#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <vector>

namespace cli {
namespace {

using namespace data_models2;

// NAME=VALUE[UNIT] of a request.
struct Assignment {
    RoofItem roof;
    std::uint64_t value;  // bytes or operations per second
};

std::vector<RoofItem> knownRoofs(const Session& session) {
    std::vector<RoofItem> known;
    if (const auto table = session.models.all->getRoofManager(session.kind->rows))
        for (auto roofs = table->getRoofs({}); !roofs.isEnd(); ++roofs) known.push_back(*roofs);
    return known;
}

[[noreturn]] void refuse(const std::string& text, const std::string& reason) {
    throw UsageError(fmt::format("--set {}: {}", text, reason));
}

RoofItem findRoof(const std::vector<RoofItem>& known, const std::string& name, const std::string& text) {
    const auto wanted = roofKey(name);
    std::vector<std::string> names, near;
    std::vector<RoofItem> found;
    for (const auto& roof : known) {
        const auto shortName = roofKey(roof.name);
        names.push_back(roof.name);
        if (shortName.find(wanted) != std::string::npos) near.push_back(roof.name);
        if (shortName == wanted) found.push_back(roof);
    }
    if (found.empty())
        refuse(text, fmt::format("this machine has no roof '{}'; {} {}", name,
                                 near.empty() ? "there are" : "did you mean",
                                 fmt::join(near.empty() ? names : near, ", ")));
    if (found.size() > 1) refuse(text, "several roofs of this machine have that name");
    // Own values belong to an id, which a roof and its single-node form share; the roof itself comes first.
    const auto id = found.front().id;
    const auto first =
        std::find_if(known.begin(), known.end(), [&](const auto& roof) { return roof.id == id; });
    if (first->name != found.front().name)
        refuse(text, fmt::format("only {} can have a value of your own", first->name));
    return found.front();
}

Assignment parseAssignment(const std::vector<RoofItem>& known, const std::string& text) {
    const auto equals = text.rfind('=');
    if (equals == std::string::npos || equals == 0)
        refuse(text, "expected NAME=VALUE[UNIT], such as 'DRAM Bandwidth=40GB/s'");
    const auto roof = findRoof(known, text.substr(0, equals), text);
    try {
        return {roof, embedded_host::parseRoofValue(text.substr(equals + 1),
                                                    roof::hasType(roof, RoofItem::Memory))};
    } catch (const std::invalid_argument& error) {
        refuse(text, error.what());
    }
}

std::string valueText(const Assignment& set) {
    const auto operations = roof::getOperationsType(set.roof);
    const auto* const unit = roof::hasType(set.roof, RoofItem::Memory) ? "GB/s"
                             : operations == OperationsType::Int       ? "GINTOP/s"
                                                                       : "GFLOP/s";
    return fmt::format("{} to {} {}", set.roof.name, static_cast<double>(set.value) / 1e9, unit);
}

// "8 threads on 1 package in machine.json"
std::string placeText(const Session& session, const RoofThreadingFeatures& features) {
    return fmt::format("{} in {}", inEnglish(session.kind->place(features, session.models)),
                       session.result->machineFile());
}

RoofThreadingFeatures setUpOf(const Session& session, const RoofChoice& roofs) {
    if (session.result->machineFile().empty())
        throw std::runtime_error(
            "this result has no machine file to keep custom roofs in; give one with --machine FILE");
    return threadingOf(session, roofs);
}

void need(bool isDone, const Session& session) {
    if (isDone) return;
    const auto fault = session.result->ownRoofsFault();
    throw std::runtime_error(fault.empty() ? "custom roofs can't be changed here" : fault);
}

}  // namespace

void setOwnRoofs(const Session& session, const RoofsRequest& request, Console& console) {
    const auto features = setUpOf(session, request.roofs);
    const auto known = knownRoofs(session);
    std::vector<Assignment> all;
    for (const auto& text : request.set) {
        all.push_back(parseAssignment(known, text));
        const auto id = all.back().roof.id;
        if (std::count_if(all.begin(), all.end(), [&](const auto& each) { return each.roof.id == id; }) > 1)
            refuse(text, "the roof is set twice");
    }
    std::vector<std::string> told;
    for (const auto& each : all) {
        need(session.engine->setCustomRoofValues(each.roof.id, each.value, features), session);
        told.push_back(valueText(each));
    }
    console.err << cleanText(
                       fmt::format("set {} for {}", fmt::join(told, ", "), placeText(session, features)))
                << '\n';
}

void clearOwnRoofs(const Session& session, const RoofsRequest& request, Console& console) {
    const auto features = setUpOf(session, request.roofs);
    need(session.engine->clearCustomRoofValues(features), session);
    console.err << cleanText("cleared the custom roofs of " + placeText(session, features)) << '\n';
}

void setOwnRoof(const Session& session, int id, std::uint64_t value, const RoofChoice& roofs) {
    const auto features = setUpOf(session, roofs);
    const auto known = knownRoofs(session);
    const auto roof = std::find_if(known.begin(), known.end(),
                                   [&](const auto& each) { return static_cast<int>(each.id) == id; });
    if (roof == known.end()) throw UsageError(fmt::format("this machine has no roof {}", id));
    need(session.engine->setCustomRoofValues(roof->id, value, features), session);
}

void clearOwnRoofs(const Session& session, const RoofChoice& roofs) {
    need(session.engine->clearCustomRoofValues(setUpOf(session, roofs)), session);
}

}  // namespace cli
