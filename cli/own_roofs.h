// The user's own values of roofs, as `roofline roofs --set` and `--clear` change them.
#pragma once

#include "cli/session.h"

#include <string>

namespace cli {

// Both change the values of the request's thread set-up in the machine's file and tell it on stderr. They
// throw UsageError for an assignment that can't be meant, before anything is changed, and std::runtime_error
// when the values can't be kept.
void setOwnRoofs(const Session& session, const RoofsRequest& request, Console& console);
void clearOwnRoofs(const Session& session, const RoofsRequest& request, Console& console);

}  // namespace cli
