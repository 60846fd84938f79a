#include "scanner/DiskScannerHandlerImpl.h"

#include "foundation/FailureState.h"
#include "foundation/RunLog.h"
#include "scanner/HostDevices.h"
#include "scanner/ScanState.h"
#include "scanner/ScanSteps.h"

#include <brevan/LunHandler.h>

using namespace brevan;

namespace {

constexpr Lookup<CLunHandler, LunMO> kLookup = {HANDLER_LUN, "lunID is empty! ", "get lunHandler fail! ",
                                                &CLunHandler::getLun};

/// While a temporary block device is listed the new disk is not settled.
void waitWhileBusy()
{
    int repetitions = 0;
    while (hostDevices().shell(kBusyDeviceProbe) == 0 && repetitions < kBusyWaitRepetitions) {
        theClock().sleepMicroseconds(kOneSecond);
        ++repetitions;
    }
}

}  // namespace

std::string CDiskScannerHandlerImpl::scanLunAfterAttach(std::string& lunId)
{
    return performQuietly(Operation("scanLunAfterAttach"), std::string(), [&](Operation& operation) {
        std::string path;
        auto lun = lookUp(operation, m_deviceManager, lunId, kLookup);
        if (!lun) {
            return path;
        }
        HeldRescanLock lock(m_lock);
        if (!requireLock(operation, lock)) {
            return path;
        }
        const FailureMark before;
        const std::string rescanOutput = rescanHost(operation);
        COMMLOG(OS_LOG_INFO, "============Rescan -r success=============\n");
        noticeMultipath(rescanOutput);
        waitWhileBusy();
        path = searchQuietly([&] { return GetDiskPath(lun->ID, lun->WWN, MOTYPE_LUN); });
        lock.release();
        if (path.empty()) {
            COMMLOG(OS_LOG_WARN, "lun path is NULL.");
        } else {
            before.forgive();
        }
        return path;
    });
}

void CDiskScannerHandlerImpl::scanLunBeforeDetach(std::string& lunId)
{
    performQuietly(Operation("scanLunBeforeDetach"), false, [&](Operation& operation) {
        const auto lun = lookUp(operation, m_deviceManager, lunId, kLookup);
        if (lun && !g_multipathInstalled.load()) {
            COMMLOG(OS_LOG_ERROR, "Tendrix is not installed");
        }
        return lun.has_value();
    });
}
