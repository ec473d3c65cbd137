// The set-up of the test process: no log output.
#include "embedded_host/embedded_host.h"

#include <gtest/gtest.h>

namespace {

class Environment final : public testing::Environment {
public:
    void SetUp() override { embedded_host::setUpLogging(false); }
};

[[maybe_unused]] const auto* const kEnvironment = testing::AddGlobalTestEnvironment(new Environment);

}  // namespace
