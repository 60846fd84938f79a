#include "platform/plimlog/Complaints.h"

#include "PlimLogSupport.h"

#include <gtest/gtest.h>

#include <csignal>

#include <unistd.h>

namespace brevan::plimlog {
namespace {

std::string saidBy(const std::function<void(Complaints&)>& speaker)
{
    Complaints complaints;
    testing::internal::CaptureStderr();
    speaker(complaints);
    return testing::internal::GetCapturedStderr();
}

TEST(Complaints, SayEachTextOnce)
{
    const std::string said = saidBy([](Complaints& complaints) {
        complaints.say("one");
        complaints.say("two");
        complaints.say("one");
    });
    EXPECT_EQ(said, "libPlimLogAPI: one\nlibPlimLogAPI: two\n");
}

TEST(Complaints, StayOneLineWhateverTheTextHolds)
{
    EXPECT_EQ(saidBy([](Complaints& complaints) { complaints.say("a\nb\x1b[2J"); }), "libPlimLogAPI: a\\nb\\x1b[2J\n");
}

TEST(Complaints, EndAfterAHundredTexts)
{
    const std::string said = saidBy([](Complaints& complaints) {
        for (int i = 0; i < 1000; ++i) {
            complaints.say(std::to_string(i));
        }
    });
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 100);
}

TEST(Complaints, DoNotEndAProcessWhoseStandardErrorNobodyReads)
{
    EXPECT_EQ(inChild([] {
                  signal(SIGPIPE, SIG_DFL);
                  int ends[2];
                  ASSERT_EQ(pipe(ends), 0);
                  dup2(ends[1], STDERR_FILENO);
                  close(ends[0]);
                  Complaints().say("nobody hears this");
                  sigset_t pending;
                  sigpending(&pending);
                  EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
              }),
              0);
}

}  // namespace
}  // namespace brevan::plimlog
