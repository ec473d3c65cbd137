// How long work tells its host where it stands and hears that it is to stop.
#pragma once

#include "host_interfaces/export.h"

#include <cstdint>
#include <string>

namespace data_models2 {

// All operations may be called from any thread; none throws.
class OMBRIX_API IProgress {
public:
    virtual ~IProgress() = default;
    // Work of `totalSteps` steps begins; 0 when their number isn't known.
    virtual void start(const std::string& what, std::uint64_t totalSteps) = 0;
    virtual void message(const std::string& text) = 0;
    // So many of the steps are done by now.
    virtual void advance(std::uint64_t doneSteps) = 0;
    virtual void finish() = 0;
    virtual std::uint64_t getTotalSteps() const = 0;
    virtual void cancel() = 0;
    virtual bool isCancelled() const = 0;
};

// Shows nothing and is never cancelled: what others need not write again.
class OMBRIX_API DummyProgress : public IProgress {
public:
    void start(const std::string&, std::uint64_t) override {}
    void message(const std::string&) override {}
    void advance(std::uint64_t) override {}
    void finish() override {}
    std::uint64_t getTotalSteps() const override { return 0; }
    void cancel() override {}
    bool isCancelled() const override { return false; }
};

}  // namespace data_models2
