#include "scanner/ScanSteps.h"

#include "foundation/RunLog.h"

#include <system_error>

namespace brevan {
namespace {

/// A command's text as one line.
std::string oneLine(const std::string& text)
{
    std::string line;
    for (const char c : text) {
        if (c != '\n') {
            line += c;
        } else if (!line.empty() && line.back() != ' ') {
            line += ' ';
        }
    }
    while (!line.empty() && line.back() == ' ') {
        line.pop_back();
    }
    return line;
}

}  // namespace

bool requireLock(Operation& operation, const HeldRescanLock& lock)
{
    if (lock.held()) {
        return true;
    }
    operation.note("Get Lock Failed: " + std::generic_category().message(lock.error()) + " (System V semaphore, key 1235)",
                   lock.error() == EACCES ? "Another user's process has made the semaphore, and only that user and root may "
                                            "use it: ipcs -s names the owner."
                                          : "Scan again; where it goes on, look at the semaphore with ipcs -s.");
    operation.endFailed(FAILURE_REFUSED, "Get Lock Failed");
    return false;
}

std::string rescanHost(Operation& operation)
{
    COMMLOG(OS_LOG_INFO, "=============upRescan start============");
    CommandOutput output = runCommand(rescanCommand());
    if (!output.succeeded) {
        COMMLOG(OS_LOG_ERROR, "=============upRescan failed: %s", output.errorText.c_str());
        operation.note("the rescan of this host failed: " + oneLine(output.errorText),
                       "Check that the rescan script is installed and that sudo lets this user run it.");
    }
    return output.errorText;
}

}  // namespace brevan
