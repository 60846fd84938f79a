#include "scanner/DiskScannerHandlerImpl.h"

#include "foundation/FailureState.h"
#include "foundation/RunLog.h"
#include "scanner/HostDevices.h"
#include "scanner/ScanState.h"
#include "scanner/ScanSteps.h"

#include <brevan/SnapshotHandler.h>

#include <thread>

using namespace brevan;

namespace {

constexpr Lookup<CSnapshotHandler, SnapshotMO> kLookup = {HANDLER_SNAPSHOT, "snapshotID is empty! ",
                                                          "get snapshotHandler fail! ", &CSnapshotHandler::getSnapshot};

// No exclamation mark, and before the record: meant.
constexpr OperationStyle kBeforeDetach = {
    "scanSnapshotBeforeDetach", nullptr, "exit scanSnapshotBeforeDetach successfully", nullptr, true, true};

/// Through the runner, unlike in the scan of a LUN, and the pause comes after the probe: meant.
void waitWhileBusy()
{
    bool busy = runCommand(busyDeviceCommand()).succeeded;
    for (int repetitions = 0; busy && repetitions < kBusyWaitRepetitions; ++repetitions) {
        busy = runCommand(busyDeviceCommand()).succeeded;
        theClock().sleepMicroseconds(kOneSecond);
    }
}

/// Where the host is set up so, a disk that was found without a rescan is followed by one in the background. The thread owns
/// all that it uses: nobody waits for it.
void rescanInBackground()
{
    if (!hostDevices().exists(kRescanSettingFile)) {
        return;
    }
    try {
        std::thread([command = rescanCommand()] {
            try {
                runCommand(command);
            } catch (...) {  // nobody is there to be told
            }
        }).detach();
    } catch (const std::exception& failure) {
        COMMLOG(OS_LOG_ERROR, "the background rescan could not start: %s", failure.what());
    }
}

}  // namespace

// By value is what callers were built with. NOLINTNEXTLINE(performance-unnecessary-value-param)
std::string CDiskScannerHandlerImpl::ScanSnapshotPreare(std::string snapshotId, const std::string& wwn)
{
    COMMLOG(OS_LOG_INFO, "enter ScanSnapshotPreare successfully!");
    if (!g_multipathInstalled.load()) {
        COMMLOG(OS_LOG_ERROR, "Tendrix is not installed.");
        return std::string();
    }
    if (GetScanState() == UPRESCAN_NONE) {
        COMMLOG(OS_LOG_INFO, "need scan snapshot!");
        return std::string();
    }
    COMMLOG(OS_LOG_INFO, "wait the scaning ...");
    waitForRescanEnd();
    COMMLOG(OS_LOG_INFO, "running the upRescan end");
    std::string path = GetDiskPathForWWN(wwn);
    if (path.empty()) {
        COMMLOG(OS_LOG_INFO, "The target lun is not found.");
        COMMLOG(OS_LOG_INFO, "exit ScanSnapshotPreare successfully!");
    } else {
        COMMLOG(OS_LOG_INFO, "Target Snapshot ID [%s]", snapshotId.c_str());
    }
    return path;
}

std::string CDiskScannerHandlerImpl::scanSnapshotAfterAttach(std::string& snapshotId)
{
    return performQuietly(Operation("scanSnapshotAfterAttach"), std::string(), [&](Operation& operation) {
        std::string path;
        auto snapshot = lookUp(operation, m_deviceManager, snapshotId, kLookup);
        if (!snapshot) {
            return path;
        }
        path = ScanSnapshotPreare(snapshotId, snapshot->WWN);
        if (!path.empty()) {
            operation.succeed();
            rescanInBackground();
            return path;
        }
        HeldRescanLock lock(m_lock);
        if (!requireLock(operation, lock)) {
            return path;
        }
        const FailureMark before;
        RescanAnnouncement announcement;
        noticeMultipath(rescanHost(operation));
        COMMLOG(OS_LOG_INFO, "============Rescan -r success=============\n");  // after the notice, unlike for a LUN: meant
        waitWhileBusy();
        announcement.end();
        path = searchQuietly([&] { return GetDiskPath(snapshot->ID, snapshot->WWN, MOTYPE_SNAPSHOT); });
        lock.release();
        if (path.empty()) {
            COMMLOG(OS_LOG_WARN, "snapshot path is NULL.");
        } else {
            before.forgive();
        }
        operation.succeed();  // while the waiters still wait: they resume when the announcement goes
        return path;
    });
}

void CDiskScannerHandlerImpl::scanSnapshotBeforeDetach(std::string& /*snapshotId*/)
{
    performQuietly(Operation(kBeforeDetach), false, [](Operation&) {
        if (!g_multipathInstalled.load()) {
            COMMLOG(OS_LOG_ERROR, "Tendrix is not installed");
        }
        return true;
    });
}
