#ifndef BREVAN_SCANNER_SCANSTATE_H
#define BREVAN_SCANNER_SCANSTATE_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>

/// How far the rescan of a snapshot scan of this process is; 0 before the first.
enum UpRescanState : std::int32_t { UPRESCAN_NONE = 0, UPRESCAN_RUNNING = 1, UPRESCAN_ENDED = 2 };

void SetScanState(UpRescanState state);
int GetScanState();

/// Through these, threads wait for the end of a rescan that another thread runs.
extern std::mutex g_scanLunMutex;
extern std::condition_variable g_scanlunEndCond;

namespace brevan {

/// Whether multipath software was seen on this host. Set once, never cleared.
extern std::atomic<bool> g_multipathInstalled;

/// Sets the flag where the output of a rescan mentions the software.
void noticeMultipath(const std::string& rescanOutput);

/// Blocks until the rescan has ended and its scan has found its disk; does not block where it has ended already.
void waitForRescanEnd();

/// A rescan of a snapshot scan: running from construction on. end() announces its end and keeps the mutex, so that the
/// waiters resume only when this object is gone, after the scan's own search. A scan that fails before end() announces it
/// too.
class RescanAnnouncement {
public:
    RescanAnnouncement();
    ~RescanAnnouncement();
    RescanAnnouncement(const RescanAnnouncement&) = delete;
    RescanAnnouncement& operator=(const RescanAnnouncement&) = delete;

    void end();

private:
    std::unique_lock<std::mutex> m_lock;
};

}  // namespace brevan

#endif
