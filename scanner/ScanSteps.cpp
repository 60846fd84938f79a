#include "scanner/ScanSteps.h"

#include "foundation/RunLog.h"

namespace brevan {

std::string rescanHost(Operation& operation)
{
    COMMLOG(OS_LOG_INFO, "=============upRescan start============");
    CommandOutput output = runCommand(rescanCommand());
    if (!output.succeeded) {
        COMMLOG(OS_LOG_ERROR, "=============upRescan failed: %s", output.errorText.c_str());
        operation.note("the rescan of this host failed: " + output.errorText,
                       "Check that the rescan script is installed and that sudo lets this user run it.");
    }
    return output.errorText;
}

}  // namespace brevan
