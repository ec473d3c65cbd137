// Watching of files and making of pages.
#include "cli/page/served_results.h"

#include "cli/own_roofs.h"
#include "cli/page/opening.h"
#include "cli/page/roof_change.h"
#include "cli/progress.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <atomic>
#include <sys/stat.h>
#include <utility>

namespace cli::page {
namespace {

// Ends a comparison when nobody waits for it any more.
class UntilClosed final : public data_models2::IProgress {
public:
    explicit UntilClosed(const Bulletin& bulletin) : m_bulletin(bulletin) {}
    void start(const std::string&, std::uint64_t totalSteps) override { m_totalSteps = totalSteps; }
    void message(const std::string&) override {}
    void advance(std::uint64_t) override {}
    void finish() override {}
    std::uint64_t getTotalSteps() const override { return m_totalSteps; }
    void cancel() override { m_isCancelled = true; }
    bool isCancelled() const override { return m_isCancelled || m_bulletin.read().isClosed; }

private:
    const Bulletin& m_bulletin;
    std::atomic<std::uint64_t> m_totalSteps = 0;
    std::atomic<bool> m_isCancelled = false;
};

}  // namespace

ServedResults::ServedResults(Request request, const Resources& resources, Bulletin& bulletin)
    : m_request(std::move(request)), m_resources(resources), m_bulletin(bulletin) {}

// Of a file that isn't there everything is 0: that is a state like others.
ServedResults::Stamp ServedResults::stampOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return {};
    constexpr std::int64_t kNanoseconds = 1'000'000'000;
    return {status.st_mtim.tv_sec * kNanoseconds + status.st_mtim.tv_nsec,
            static_cast<std::uintmax_t>(status.st_size), status.st_ino};
}

ServedResults::Stamps ServedResults::stamps() const {
    Stamps all;
    const auto add = [&](const std::string& path) {
        if (!path.empty()) all.emplace(path, stampOf(path));
    };
    add(m_request.source.file);
    add(m_request.compare);
    add(m_request.source.machine);
    for (const auto& result : m_results) add(result.session().result->machineFile());
    return all;
}

void ServedResults::open() {
    // Looked at before they are read: what is written meanwhile is seen as a change.
    const auto before = stamps();
    auto source = m_request.source;
    if (m_version > 0) source.language.clear();  // chosen once for the process
    auto results = openResults(source, m_request.compare);

    UntilClosed progress(m_bulletin);
    auto asked = requestOf(results, progress);
    const auto giveUp = [&] {
        if (progress.isCancelled()) throw Cancelled("cancelled");
    };
    giveUp();
    asked.language = m_request.source.language;
    const auto version = m_version + 1;
    Writer live;
    live.object([&] {
        live.key("version");
        live.Int(version);
        live.member("token", m_request.token);
        live.key("compare");
        live.Bool(results.size() > 1);
    });
    asked.live = live.take();
    auto page = makePage(m_resources, {titleOf(results), asked.language, true}, Model(asked, giveUp).text(0));

    m_results = std::move(results);
    // Of the files that these results name, which may be others than before.
    auto now = stamps();
    for (auto& [path, stamp] : now)
        if (const auto earlier = before.find(path); earlier != before.end()) stamp = earlier->second;
    m_known = m_seen = std::move(now);
    m_version = version;
    m_bulletin.publish(version, std::move(page));
}

std::string ServedResults::reload() {
    auto known = stamps();
    m_read = std::chrono::steady_clock::now();
    try {
        open();
        return {};
    } catch (const Cancelled& error) {
        return error.what();
    } catch (const std::exception& error) {
        m_known = std::move(known);
        auto fault = cleanText(error.what());
        m_bulletin.tell(fault);
        return fault;
    }
}

void ServedResults::lookAgain() {
    // A bad result may name a machine file that isn't watched: that one may have been mended.
    constexpr std::chrono::seconds kRetry(5);
    if (m_version == 0) return;
    const auto before = std::exchange(m_seen, stamps());
    const bool isChanged = m_seen != m_known, isWritten = m_seen == before;
    const bool isDue = !m_bulletin.read().fault.empty() && std::chrono::steady_clock::now() - m_read > kRetry;
    if (isWritten && (isChanged || isDue)) reload();
}

void ServedResults::close() { m_results.clear(); }

void ServedResults::changeRoof(const std::string& body) {
    const auto change = parseRoofChange(body);
    if (change.result >= m_results.size()) throw UsageError("result: there is no such result");
    const auto& session = m_results[change.result].session();
    if (change.value)
        setOwnRoof(session, change.id, *change.value, change.roofs);
    else
        clearOwnRoofs(session, change.roofs);
    // Every verdict may depend on the roof. The file that was written just now is known from then on.
    if (const auto fault = reload(); !fault.empty())
        throw std::runtime_error("the roofs are kept, but the page can't be made anew: " + fault);
}

}  // namespace cli::page
