#include "scanner/ScanState.h"

#include "scanner/ScanFixture.h"

#include <future>

namespace brevan::test {
namespace {

using ScanState = SdkTest;

/// Whether another thread could take the mutex now.
bool mutexIsFree()
{
    return std::async(std::launch::async,
                      [] {
                          const std::unique_lock<std::mutex> lock(g_scanLunMutex, std::try_to_lock);
                          return lock.owns_lock();
                      })
        .get();
}

bool isReady(const std::future<void>& future)
{
    return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

TEST_F(ScanState, BeginsAtZeroAndKeepsWhatWasSet)
{
    EXPECT_EQ(GetScanState(), 0);
    for (const UpRescanState state : {UPRESCAN_RUNNING, UPRESCAN_ENDED, UPRESCAN_NONE}) {
        SetScanState(state);
        EXPECT_EQ(GetScanState(), static_cast<int>(state));
    }
    EXPECT_EQ(static_cast<int>(UPRESCAN_RUNNING), 1);
    EXPECT_EQ(static_cast<int>(UPRESCAN_ENDED), 2);
}

TEST_F(ScanState, DoesNotBlockAWaiterWhereTheRescanHasEnded)
{
    SetScanState(UPRESCAN_ENDED);
    waitForRescanEnd();
    EXPECT_TRUE(mutexIsFree());
}

TEST_F(ScanState, AnnouncesTheEndAndHoldsTheMutexUntilTheScanIsOver)
{
    {
        RescanAnnouncement announcement;
        EXPECT_EQ(GetScanState(), 1);
        EXPECT_TRUE(mutexIsFree());
        announcement.end();
        EXPECT_EQ(GetScanState(), 2);
        EXPECT_FALSE(mutexIsFree());
    }
    EXPECT_TRUE(mutexIsFree());
    EXPECT_EQ(GetScanState(), 2);
}

TEST_F(ScanState, WakesAllWaitersWhenTheScanIsOver)
{
    std::future<void> waiters[4];
    {
        RescanAnnouncement announcement;
        for (auto& waiter : waiters) {
            waiter = std::async(std::launch::async, waitForRescanEnd);
        }
        announcement.end();
        for (const auto& waiter : waiters) {
            EXPECT_FALSE(isReady(waiter));
        }
    }
    for (auto& waiter : waiters) {
        EXPECT_EQ(waiter.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    }
}

TEST_F(ScanState, WakesWaitersAlsoWhereTheScanFailsBeforeTheEnd)
{
    std::future<void> waiter;
    {
        const RescanAnnouncement announcement;
        waiter = std::async(std::launch::async, waitForRescanEnd);
    }
    EXPECT_EQ(waiter.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_EQ(GetScanState(), 2);
    EXPECT_TRUE(mutexIsFree());
}

TEST_F(ScanState, SeesTheMultipathSoftwareAnywhereInTheOutput)
{
    for (const char* other : {"", "tendrix", "TENDRIX", "Tendri", "Ten drix"}) {
        noticeMultipath(other);
        EXPECT_FALSE(g_multipathInstalled.load()) << other;
    }
    EXPECT_THAT(newLog(), testing::IsEmpty());
    noticeMultipath("line\nusing Tendrix 21.6\n");
    EXPECT_TRUE(g_multipathInstalled.load());
    EXPECT_THAT(newLog(), testing::ElementsAre("info: Tendrix is installed."));
}

TEST_F(ScanState, NeverForgetsTheMultipathSoftware)
{
    noticeMultipath("Tendrix");
    noticeMultipath("nothing");
    EXPECT_TRUE(g_multipathInstalled.load());
}

}  // namespace
}  // namespace brevan::test
