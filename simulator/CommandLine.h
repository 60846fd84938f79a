#ifndef BREVAN_SIMULATOR_COMMANDLINE_H
#define BREVAN_SIMULATOR_COMMANDLINE_H

#include "Chain.h"
#include "ServerOptions.h"

#include <optional>
#include <ostream>
#include <string>

namespace brevan::sim {

/// What the program is to do: be an array, or write what is in a database or a seed, and end.
enum class Task { kServe, kDump, kChain };

struct ProgramOptions {
    ServerOptions server;
    Task task = Task::kServe;
    std::string output;  ///< of kDump and kChain: a file; empty: standard output
    ChainFormat chainFormat = ChainFormat::kText;
    std::string portFile;
    bool logRequests = false;
};

/// Exit status of a command line that does not do.
constexpr int kUsageError = 2;

/// Reads the command line. Nothing where the program is to end at once with `exitStatus`: after --help and --version, or
/// after a mistake, which is told on `errors` in one line.
std::optional<ProgramOptions> readCommandLine(int argc, const char* const* argv, int& exitStatus, std::ostream& output,
                                              std::ostream& errors);

}  // namespace brevan::sim

#endif
