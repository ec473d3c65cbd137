// The entry point of the program `roofline`; apart from the rest, so that tests can link the rest.
#include "embedded_host/embedded_host.h"

#include "cli/program.h"

#include <iostream>
#include <unistd.h>

int main(int argc, char** argv) {
    cli::Console console{std::cout, std::cerr, isatty(STDOUT_FILENO) != 0, isatty(STDERR_FILENO) != 0,
                         &std::cin};
    const auto code = cli::runRoofline(argc, argv, console);
    embedded_host::stopTasks();
    // A full disk or a closed pipe behind stdout is no answer.
    return !std::cout.flush() && code == cli::kDone ? static_cast<int>(cli::kNoAnswer) : code;
}
