// The border of the library: no exception leaves a public operation.
#pragma once

#include <exception>
#include <utility>

namespace data_models2::roofline {

// Writes the reason to the log channel "utils".
void logSwallowed(const char* what) noexcept;

// The result of `operation`, or `fallback` when it throws.
template <class Fallback, class Operation>
auto guarded(Fallback&& fallback, Operation&& operation) -> decltype(operation()) {
    try {
        return operation();
    } catch (const std::exception& error) {
        logSwallowed(error.what());
    } catch (...) {
        logSwallowed("unknown exception");
    }
    return decltype(operation())(std::forward<Fallback>(fallback));
}

template <class Operation>
void guarded(Operation&& operation) {
    guarded(true, [&] { return operation(), true; });
}

}  // namespace data_models2::roofline
