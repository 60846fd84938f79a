#include "scanner/ScanState.h"

#include "foundation/RunLog.h"

std::mutex g_scanLunMutex;
std::condition_variable g_scanlunEndCond;

namespace {
std::atomic<std::int32_t> g_scanState{UPRESCAN_NONE};
}

void SetScanState(UpRescanState state)
{
    g_scanState.store(state);
}

int GetScanState()
{
    return g_scanState.load();
}

namespace brevan {

std::atomic<bool> g_multipathInstalled{false};

void noticeMultipath(const std::string& rescanOutput)
{
    if (rescanOutput.find("Tendrix") != std::string::npos) {
        COMMLOG(OS_LOG_INFO, "Tendrix is installed.");
        g_multipathInstalled.store(true);
    }
}

void waitForRescanEnd()
{
    std::unique_lock<std::mutex> lock(g_scanLunMutex);
    g_scanlunEndCond.wait(lock, [] { return GetScanState() == UPRESCAN_ENDED; });
}

RescanAnnouncement::RescanAnnouncement() : m_lock(g_scanLunMutex, std::defer_lock)
{
    SetScanState(UPRESCAN_RUNNING);
}

RescanAnnouncement::~RescanAnnouncement()
{
    if (!m_lock.owns_lock()) {
        end();
    }
}

void RescanAnnouncement::end()
{
    SetScanState(UPRESCAN_ENDED);
    m_lock.lock();
    g_scanlunEndCond.notify_all();
}

}  // namespace brevan
