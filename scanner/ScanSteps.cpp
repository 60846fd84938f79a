#include "scanner/ScanSteps.h"

#include "foundation/RunLog.h"

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
