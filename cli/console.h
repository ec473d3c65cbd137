// What a subcommand talks to, how it can end, and the one exception that means wrong usage.
#pragma once

#include <istream>
#include <ostream>
#include <stdexcept>

namespace cli {

// Answers go to `out`, words for people to `err`; "-" for a file to read stands for `in`.
struct Console {
    std::ostream& out;
    std::ostream& err;
    bool outIsTerminal = false;
    bool errIsTerminal = false;
    std::istream* in = nullptr;  // null: empty
};

enum ExitCode : int { kDone = 0, kNoAnswer = 1, kUsage = 2, kGate = 3, kCancelled = 130 };

// The command line asks for something that can't be meant; ends with kUsage.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace cli
