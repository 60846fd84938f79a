#ifndef BREVAN_Q7COMMON_COMMANDRUNNER_H
#define BREVAN_Q7COMMON_COMMANDRUNNER_H

#include "BoundedOutput.h"

#include <chrono>
#include <cstddef>
#include <string>

namespace brevan {

struct CommandLimits {
    std::chrono::milliseconds time;   ///< for the whole command
    std::chrono::milliseconds grace;  ///< from SIGTERM to SIGKILL, when the time is over
    std::size_t outputBytes;          ///< kept of the output, and as much of the errors
};

/// What came of a command. `fault` is empty where it ran to its end; otherwise it did not start, was killed, or ran out of
/// time.
struct CommandOutcome {
    int exitStatus;
    std::string fault;
    BoundedOutput output;
    BoundedOutput errors;
};

/// Runs a command line in a shell and returns when it has ended, at the latest when time and grace are over. A background
/// child that it leaves behind is not waited for, even where it holds the output.
CommandOutcome runCommandLine(const std::string& commandLine, const CommandLimits& limits);

}  // namespace brevan

#endif
