// The user's own values of roofs, as `roofline roofs --set`, `--clear` and a served page change them.
#pragma once

#include "cli/session.h"

#include <cstdint>

namespace cli {

// Both change the values of the request's thread set-up in the machine's file and tell it on stderr. They
// throw UsageError for an assignment that can't be meant, before anything is changed, and std::runtime_error
// when the values can't be kept.
void setOwnRoofs(const Session& session, const RoofsRequest& request, Console& console);
void clearOwnRoofs(const Session& session, const RoofsRequest& request, Console& console);

// The same without a word: the value per second of the roof with that id, and all values of a thread set-up.
void setOwnRoof(const Session& session, int id, std::uint64_t value, const RoofChoice& roofs);
void clearOwnRoofs(const Session& session, const RoofChoice& roofs);

}  // namespace cli
