#include "platform/q7common/SigPipeGuard.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

namespace brevan {
namespace {

void writeToClosedPipe()
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    EXPECT_EQ(write(ends[1], "x", 1), -1);
    close(ends[1]);
}

bool isPending()
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

TEST(SigPipeGuard, SwallowsTheSignal)
{
    {
        const SigPipeGuard quiet(true);
        writeToClosedPipe();
    }
    EXPECT_FALSE(isPending());
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGPIPE), 0);
}

TEST(SigPipeGuard, DoesNothingWhereItIsNotNeeded)
{
    const SigPipeGuard quiet(false);
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGPIPE), 0);
}

TEST(SigPipeGuard, LeavesASignalThatWasPendingBefore)
{
    sigset_t pipeSignal;
    sigset_t before;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &before);
    writeToClosedPipe();
    {
        const SigPipeGuard quiet(true);
        writeToClosedPipe();
    }
    EXPECT_TRUE(isPending());
    const timespec now{};
    sigtimedwait(&pipeSignal, nullptr, &now);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace
}  // namespace brevan
