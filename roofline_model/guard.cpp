#include "roofline_model/guard.h"

#include "roofline_model/logging.h"

namespace data_models2::roofline {

namespace {
constinit const LogChannel kLog{"utils"};
}

void logSwallowed(const char* what) noexcept {
    try {
        kLog.debug([what](std::ostream& out) { out << "request failed: " << what; });
    } catch (...) {  // a log that fails must not break the answer
    }
}

}  // namespace data_models2::roofline
