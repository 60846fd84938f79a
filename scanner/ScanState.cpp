#include "scanner/ScanState.h"

#include "foundation/RunLog.h"

#include <pthread.h>

#include <new>

std::mutex g_scanLunMutex;
std::condition_variable g_scanlunEndCond;

namespace {

std::atomic<std::int32_t> g_scanState{UPRESCAN_NONE};

/// A child of fork has no thread that runs a rescan or holds the mutex, and would wait for one for ever. Forks do not wait
/// for the mutex: a scan holds it while it searches.
void forgetTheParentsScan()
{
    new (&g_scanLunMutex) std::mutex;
    new (&g_scanlunEndCond) std::condition_variable;
    if (GetScanState() == UPRESCAN_RUNNING) {
        SetScanState(UPRESCAN_NONE);
    }
}

[[maybe_unused]] const int kForks = pthread_atfork(nullptr, nullptr, &forgetTheParentsScan);

}  // namespace

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
