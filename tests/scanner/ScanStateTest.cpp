#include "scanner/ScanState.h"

#include "scanner/ScanFixture.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <future>

namespace brevan::test {
namespace {

using ScanState = SdkTest;

/// A thread that waits for the end of the rescan.
class Waiter {
public:
    Waiter() = default;
    Waiter(const Waiter&) = delete;
    Waiter& operator=(const Waiter&) = delete;
    ~Waiter() { wakeAllWaiters(); }

    void start()
    {
        m_done = std::async(std::launch::async, [this] {
            m_thread = gettid();
            waitForRescanEnd();
        });
    }

    bool sleeps() const
    {
        std::ifstream stat("/proc/self/task/" + std::to_string(m_thread.load()) + "/stat");
        std::string number, name, state;
        return stat >> number >> name >> state && state == "S";
    }

    bool isDone() const { return m_done.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }

private:
    std::atomic<pid_t> m_thread{0};
    std::future<void> m_done;
};

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
    std::vector<Waiter> waiters(4);
    {
        RescanAnnouncement announcement;
        for (Waiter& waiter : waiters) {
            waiter.start();
        }
        EXPECT_TRUE(eventually([&] { return std::all_of(waiters.begin(), waiters.end(), std::mem_fn(&Waiter::sleeps)); }));
        announcement.end();
        EXPECT_TRUE(std::none_of(waiters.begin(), waiters.end(), std::mem_fn(&Waiter::isDone)));
    }
    EXPECT_TRUE(eventually([&] { return std::all_of(waiters.begin(), waiters.end(), std::mem_fn(&Waiter::isDone)); }));
}

TEST_F(ScanState, WakesWaitersAlsoWhereTheScanFailsBeforeTheEnd)
{
    Waiter waiter;
    {
        const RescanAnnouncement announcement;
        waiter.start();
        EXPECT_TRUE(eventually([&] { return waiter.sleeps(); }));
    }
    EXPECT_TRUE(eventually([&] { return waiter.isDone(); }));
    EXPECT_EQ(GetScanState(), 2);
    EXPECT_TRUE(mutexIsFree());
}

/// The thread that runs the rescan, and will say that it has ended, is not in the child.
TEST_F(ScanState, OfARunningRescanIsNotThatOfAChildProcess)
{
    const auto stateInChild = [] {
        const pid_t child = fork();
        if (child == 0) {
            _exit(g_scanLunMutex.try_lock() ? 10 + GetScanState() : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    std::promise<void> end;
    std::promise<void> over;
    std::promise<void> announced;
    auto scan = std::async(std::launch::async, [&] {
        RescanAnnouncement announcement;
        end.get_future().wait();
        announcement.end();
        announced.set_value();
        over.get_future().wait();
    });
    ASSERT_TRUE(eventually([] { return GetScanState() == UPRESCAN_RUNNING; }));
    EXPECT_EQ(stateInChild(), 10 + UPRESCAN_NONE);
    end.set_value();
    announced.get_future().wait();
    EXPECT_EQ(stateInChild(), 10 + UPRESCAN_ENDED);
    EXPECT_EQ(GetScanState(), UPRESCAN_ENDED);
    EXPECT_FALSE(mutexIsFree());
    over.set_value();
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
