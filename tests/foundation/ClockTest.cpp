#include "foundation/Clock.h"

#include "support/FakeClock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

namespace brevan::test {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

/// Sends this process a signal every millisecond as long as it lives.
class SignalEveryMillisecond {
public:
    SignalEveryMillisecond()
    {
        struct sigaction ignore {};
        ignore.sa_handler = [](int) {};
        sigaction(SIGALRM, &ignore, &m_before);
        const itimerval interval = {{0, 1000}, {0, 1000}};
        setitimer(ITIMER_REAL, &interval, nullptr);
    }
    SignalEveryMillisecond(const SignalEveryMillisecond&) = delete;
    SignalEveryMillisecond& operator=(const SignalEveryMillisecond&) = delete;
    ~SignalEveryMillisecond()
    {
        const itimerval none{};
        setitimer(ITIMER_REAL, &none, nullptr);
        sigaction(SIGALRM, &m_before, nullptr);
    }

private:
    struct sigaction m_before {};
};

microseconds durationOfPause(std::uint64_t pause)
{
    const auto begin = steady_clock::now();
    theClock().sleepMicroseconds(pause);
    return std::chrono::duration_cast<microseconds>(steady_clock::now() - begin);
}

bool notLater(const timeval& a, const timeval& b)
{
    return a.tv_sec < b.tv_sec || (a.tv_sec == b.tv_sec && a.tv_usec <= b.tv_usec);
}

TEST(Clock, TellsTheTimeOfDay)
{
    timeval before{};
    gettimeofday(&before, nullptr);
    const timeval now = theClock().now();
    timeval after{};
    gettimeofday(&after, nullptr);
    EXPECT_TRUE(notLater(before, now) && notLater(now, after));
}

TEST(Clock, PausesForAtLeastTheTimeAsked)
{
    EXPECT_GE(durationOfPause(1500), microseconds(1500));
    EXPECT_GE(durationOfPause(0), microseconds(0));
}

TEST(Clock, IsNotCutShortBySignals)
{
    const SignalEveryMillisecond signals;
    EXPECT_GE(durationOfPause(20000), microseconds(20000));
}

TEST(Clock, IsReplacedOnlyAsLongAsTheOtherLives)
{
    Clock& real = theClock();
    {
        FakeClock fake;
        EXPECT_EQ(&theClock(), &fake);
        theClock().sleepMicroseconds(1500000);
        EXPECT_EQ(fake.sleeps(), std::vector<std::uint64_t>{1500000});
        EXPECT_EQ(theClock().now().tv_sec, 1614834368);
        EXPECT_EQ(theClock().now().tv_usec, 589000);
    }
    EXPECT_EQ(&theClock(), &real);
}

}  // namespace
}  // namespace brevan::test
