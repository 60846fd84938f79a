#ifndef BREVAN_PLATFORM_RESTTOMGR_H
#define BREVAN_PLATFORM_RESTTOMGR_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// One command of the host. The runner knows the fields under the keys "shellCmd", "param", "cmdCode", "cmdType",
/// "requestId".
struct RunShellCmdInfo {
    std::string shellCmd;            ///< the command line; each '?' is the place of one parameter
    std::vector<std::string> param;  ///< the parameters, in the order of the '?' marks
    std::uint64_t cmdCode;           ///< the number of the command
    std::uint64_t cmdType;           ///< 1: rescans and the busy-device probe, 0: listings of disks
    std::uint64_t requestId;         ///< always 0 here

    RunShellCmdInfo(std::string commandLine, std::vector<std::string> parameters, std::uint64_t code, std::uint64_t type,
                    std::uint64_t request)
        : shellCmd(std::move(commandLine)), param(std::move(parameters)), cmdCode(code), cmdType(type), requestId(request)
    {
    }
};

class __attribute__((visibility("default"))) RestToMgr {
public:
    /// Runs the command and waits for its end or for the time limit. `outputLines` gets the lines of its standard output
    /// (appended, without line ends), `errorText` its standard error followed by its standard output, or why it did not run.
    /// Returns 0 only where the command ran and exited with 0, so a grep that finds nothing fails. Any thread. Does not
    /// throw.
    static int ExceSystemCmd(const RunShellCmdInfo& command, std::vector<std::string>& outputLines, std::string& errorText);
};

#endif
