// Where broken invariants are reported: one line on stderr, or the host's own handler.
#include "host_interfaces/host_functions.h"

#include "embedded_host/embedded_host.h"

#include <fmt/format.h>

#include <cstdio>
#include <memory>
#include <mutex>

namespace embedded_host {
namespace {

std::mutex handlerMutex;

std::shared_ptr<const AssertionHandler>& currentHandler() {
    static std::shared_ptr<const AssertionHandler> handler;
    return handler;
}

}  // namespace

void setAssertionHandler(AssertionHandler handler) {
    auto next = handler ? std::make_shared<const AssertionHandler>(std::move(handler)) : nullptr;
    const std::lock_guard lock(handlerMutex);
    currentHandler().swap(next);
}

}  // namespace embedded_host

namespace data_models2 {

void reportAssertion(const char* expression, const char* unit, int line) {
    const auto* const what = expression ? expression : "";
    const auto* const where = unit ? unit : "";
    // The handler runs outside the lock, so it may report or replace handlers itself.
    const auto handler = [] {
        const std::lock_guard lock(embedded_host::handlerMutex);
        return embedded_host::currentHandler();
    }();
    // The caller goes on whatever the handler does.
    try {
        if (handler) return (*handler)(what, where, line);
        fmt::print(stderr, "assertion failed: {} ({}, line {})\n", what, where, line);
    } catch (...) {
    }
}

}  // namespace data_models2
