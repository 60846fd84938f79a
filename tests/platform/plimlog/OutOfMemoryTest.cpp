// Lets each allocation of a log call fail in turn.

#include "PlimLogAPI.h"

#include "FailingNew.h"
#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <functional>

#include <unistd.h>

namespace brevan::plimlog {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

/// Runs `call` again and again, each time failing one allocation later, until none fails: that one alone, or it and all that
/// follow. How many runs that took.
int failEachAllocation(const std::function<void()>& call)
{
    int runs = 0;
    for (const auto fail : {failAllocationAfter, failAllocationsFrom}) {
        for (int allowed = 0;; ++allowed, ++runs) {
            fail(allowed);
            call();
            if (!allocationHasFailed()) {
                break;
            }
        }
    }
    return runs;
}

TEST(OutOfMemory, LetsALogStartOrNotButNothingInBetween)
{
    const TestFolder folder;
    const std::string ini =
        folder.write("Brevan_API.ini", "[log]\ndirectory = a/longer/path/than/fits/in/place\n[run]\ncolour=red\n");
    testing::internal::CaptureStderr();
    int failed = 0;
    const int runs = failEachAllocation([&] {
        const int started = LogInit("Test", ini.c_str(), nullptr, nullptr);
        failed += started == -1 ? 1 : 0;
        EXPECT_EQ(LogFini("Test"), started);
    });
    testing::internal::GetCapturedStderr();
    EXPECT_GT(failed, 10);
    EXPECT_GE(runs, failed);
}

TEST(OutOfMemory, CostsLinesThatAreCountedAndNothingElse)
{
    const TestFolder folder;
    const std::string message(3000, '\n');
    ASSERT_EQ(LogInit("Test", nullptr, nullptr, folder.path().c_str()), 0);
    testing::internal::CaptureStderr();
    const int failed = failEachAllocation([&] { Log_Run_Info("Test", message.c_str()); });
    testing::internal::GetCapturedStderr();
    EXPECT_GT(failed, 0);
    const std::vector<std::string> lines = linesOf(logPath(folder.path(), getpid(), "run.log"));
    EXPECT_THAT(lines, testing::Contains(HasSubstr(" log lines were lost here: Cannot allocate memory")));
    EXPECT_THAT(lines.back(), EndsWith("\\n\\n"));
    EXPECT_EQ(LogFini("Test"), 0);
}

TEST(OutOfMemory, CostsRecordsAsItCostsLines)
{
    const TestFolder folder;
    ASSERT_EQ(LogInit("Test", nullptr, nullptr, folder.path().c_str()), 0);
    const int failed = failEachAllocation([] {
        Log_Interface_Error("Test", "1", "", "getLun", "", "", "", "2021-03-04 05:06:07 089", "2021-03-04 05:06:07 089", "1",
                            "");
    });
    EXPECT_GT(failed, 0);
    EXPECT_THAT(linesOf(logPath(folder.path(), getpid(), "interface.log")), testing::Contains(HasSubstr("\tgetLun\t")));
    EXPECT_EQ(LogFini("Test"), 0);
}

}  // namespace
}  // namespace brevan::plimlog
