#include "platform/plimlog/ProcessIds.h"

#include "PlimLogSupport.h"

#include <gtest/gtest.h>

#include <thread>

#include <sched.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brevan::plimlog {
namespace {

TEST(ProcessIds, AreTheKernels)
{
    EXPECT_EQ(currentProcessId(), getpid());
    EXPECT_EQ(currentThreadId(), gettid());
    std::thread([] { EXPECT_EQ(currentThreadId(), gettid()); }).join();
}

TEST(ProcessIds, AreRightInAChildOfFork)
{
    EXPECT_EQ(currentThreadId(), gettid());
    EXPECT_EQ(inChild([] {
                  EXPECT_EQ(currentProcessId(), getpid());
                  EXPECT_EQ(currentThreadId(), gettid());
              }),
              0);
}

TEST(ProcessIds, AreRightInAChildThatNoForkHandlerWasToldOf)
{
    EXPECT_EQ(currentProcessId(), getpid());
    const auto child = static_cast<pid_t>(syscall(SYS_clone, SIGCHLD, nullptr, nullptr, nullptr, nullptr));
    if (child == 0) {
        _exit(currentProcessId() == static_cast<pid_t>(syscall(SYS_getpid)) ? 0 : 1);
    }
    EXPECT_EQ(waitForChild(child), 0);
}

TEST(ProcessIds, ComeWithTheProgramsName)
{
    EXPECT_EQ(programName(), "plimlog_tests");
}

}  // namespace
}  // namespace brevan::plimlog
