// The program as a function: reads the command line, runs one subcommand, turns failures into exit codes.
#pragma once

#include "cli/console.h"

namespace cli {

// Returns the exit code; no exception leaves.
int runRoofline(int argc, const char* const* argv, Console& console);

}  // namespace cli
