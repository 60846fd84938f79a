#include "platform/q7common/CommandRunner.h"

#include "TransportFixture.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <thread>

namespace brevan {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::HasSubstr;

constexpr CommandLimits kPatient{seconds(60), seconds(1), 1024 * 1024};
constexpr CommandLimits kHasty{milliseconds(1500), milliseconds(500), 1024 * 1024};

/// Runs `body` in a child process, where it may spoil signals and descriptors; it returns whether all went well.
template <typename Body>
bool succeedsInChild(Body body)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(body() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool isRightOutcome(const CommandOutcome& outcome)
{
    return outcome.fault.empty() && outcome.exitStatus == 7 && outcome.output.text() == "out\n" &&
           outcome.errors.text() == "err\n";
}

constexpr const char* kThreeResults = "echo out; echo err >&2; exit 7";

TEST(CommandRunner, CollectsOutputErrorsAndStatus)
{
    EXPECT_TRUE(isRightOutcome(runCommandLine(kThreeResults, kPatient)));
    EXPECT_EQ(runCommandLine("true", kPatient).exitStatus, 0);
    EXPECT_EQ(runCommandLine("grep x < /dev/null", kPatient).exitStatus, 1);
    EXPECT_EQ(runCommandLine("/does/not/exist", kPatient).exitStatus, 127);
}

TEST(CommandRunner, ReportsALineThatTheShellCannotRead)
{
    const CommandOutcome outcome = runCommandLine("echo 'open", kPatient);
    EXPECT_EQ(outcome.exitStatus, 2);
    EXPECT_NE(outcome.errors.text(), "");
}

TEST(CommandRunner, ReportsASignalAsTheShellDoes)
{
    EXPECT_EQ(runCommandLine("sh -c 'kill -9 $$'", kPatient).exitStatus, 137);
}

TEST(CommandRunner, ReportsAShellThatWasKilled)
{
    const CommandOutcome outcome = runCommandLine("kill -9 $$", kPatient);
    EXPECT_THAT(outcome.fault, HasSubstr("the shell was killed"));
    EXPECT_NE(outcome.exitStatus, 0);
}

TEST(CommandRunner, GivesTheCommandNothingToReadAndNoOtherDescriptor)
{
    const int inherited = open("/dev/null", O_RDONLY);
    EXPECT_EQ(runCommandLine("cat; ls /proc/self/fd", kPatient).output.text(),
              "0\n1\n2\n3\n");  // 3: the folder that ls reads
    close(inherited);
}

TEST(CommandRunner, GivesTheCommandNoTerminalToAskOn)
{
    // A session that it leads itself has none until it opens one.
    const CommandOutcome outcome =
        runCommandLine("read -r pid name state parent group session rest </proc/self/stat; echo $session", kPatient);
    EXPECT_NE(outcome.output.text(), std::to_string(getsid(0)) + "\n");
    EXPECT_NE(runCommandLine(": </dev/tty", kPatient).exitStatus, 0);
}

TEST(CommandRunner, BoundsALargeOutput)
{
    const CommandOutcome outcome = runCommandLine("head -c 104857600 /dev/zero", {seconds(60), seconds(1), 1000});
    EXPECT_EQ(outcome.exitStatus, 0);
    EXPECT_EQ(outcome.output.text().size(), 1000U);
    EXPECT_EQ(outcome.output.dropped(), 104857600U - 1000U);
}

long mostMemoryKib()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST(CommandRunner, NeedsLittleMemoryForALargeOutput)
{
    EXPECT_TRUE(succeedsInChild([] {
        const long before = mostMemoryKib();
        const CommandOutcome outcome =
            runCommandLine("head -c 104857600 /dev/zero; head -c 104857600 /dev/zero >&2", kPatient);
        const std::size_t rest = 104857600U - kPatient.outputBytes;
        return outcome.output.dropped() == rest && outcome.errors.dropped() == rest && mostMemoryKib() - before < 32 * 1024;
    }));
}

TEST(CommandRunner, StopsACommandThatNeverEnds)
{
    const CommandOutcome outcome = runCommandLine("echo begun; sleep 1000", kHasty);
    EXPECT_THAT(outcome.fault, HasSubstr("did not end within 1.5 seconds"));
    EXPECT_EQ(outcome.output.text(), "begun\n");
    EXPECT_NE(outcome.exitStatus, 0);
}

TEST(CommandRunner, KillsACommandThatIgnoresTheRequestToEnd)
{
    const test::TemporaryFolder folder;
    const std::string beats = folder.write("beats", "");
    const CommandOutcome outcome =
        runCommandLine("trap '' TERM; (while :; do echo >> " + beats + "; sleep 0.02; done)", kHasty);
    EXPECT_NE(outcome.fault, "");
    const auto count = std::filesystem::file_size(beats);
    std::this_thread::sleep_for(milliseconds(200));
    EXPECT_EQ(std::filesystem::file_size(beats), count) << "something of it still runs";
}

TEST(CommandRunner, DoesNotWaitForABackgroundChildThatHoldsTheOutput)
{
    const CommandOutcome outcome = runCommandLine("sleep 30 & echo $!; exit 5", kPatient);
    EXPECT_EQ(outcome.exitStatus, 5);
    EXPECT_EQ(outcome.fault, "");
    kill(std::stoi(outcome.output.text()), SIGKILL);
}

TEST(CommandRunner, DoesNotFollowABackgroundChildThatKeepsWriting)
{
    const CommandOutcome outcome = runCommandLine("yes & echo $! >&2; exit 5", kPatient);
    EXPECT_EQ(outcome.exitStatus, 5);
    kill(std::stoi(outcome.errors.text()), SIGKILL);
}

TEST(CommandRunner, DoesNotWaitForAChildThatIsOutOfItsReach)
{
    const CommandOutcome outcome = runCommandLine("setsid sleep 30 & echo $!; sleep 1000", kHasty);
    EXPECT_THAT(outcome.fault, HasSubstr("did not end within"));
    ASSERT_NE(outcome.output.text(), "");
    kill(std::stoi(outcome.output.text()), SIGKILL);
}

TEST(CommandRunner, WorksWhereSigchldIsIgnored)
{
    EXPECT_TRUE(succeedsInChild([] {
        signal(SIGCHLD, SIG_IGN);
        return isRightOutcome(runCommandLine(kThreeResults, kPatient));
    }));
}

TEST(CommandRunner, WorksWhereAnotherThreadCollectsTheChildren)
{
    EXPECT_TRUE(succeedsInChild([] {
        std::atomic<bool> isOver{false};
        std::thread collector([&isOver] {
            while (!isOver) {
                waitpid(-1, nullptr, WNOHANG);
            }
        });
        bool isRight = true;
        for (int round = 0; round < 20; ++round) {
            isRight = isRight && isRightOutcome(runCommandLine(kThreeResults, kPatient));
        }
        isOver = true;
        collector.join();
        return isRight;
    }));
}

TEST(CommandRunner, WorksWithTheStandardDescriptorsClosed)
{
    EXPECT_TRUE(succeedsInChild([] {
        for (const int number : {0, 1, 2, 3}) {
            close(number);
        }
        return isRightOutcome(runCommandLine(kThreeResults, kPatient));
    }));
}

TEST(CommandRunner, WorksWithSignalsBlockedAndIgnored)
{
    EXPECT_TRUE(succeedsInChild([] {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        signal(SIGTERM, SIG_IGN);
        signal(SIGPIPE, SIG_IGN);
        return isRightOutcome(runCommandLine(kThreeResults, kPatient)) && runCommandLine("sleep 1000", kHasty).fault != "";
    }));
}

TEST(CommandRunner, ReportsThatItCouldNotStart)
{
    EXPECT_TRUE(succeedsInChild([] {
        while (dup(0) >= 0) {
        }
        const CommandOutcome outcome = runCommandLine("true", kPatient);
        return outcome.exitStatus != 0 && outcome.fault.find("could not be started") != std::string::npos;
    }));
}

TEST(CommandRunner, LeavesNoDescriptorOpen)
{
    const int before = open("/dev/null", O_RDONLY);
    close(before);
    for (int round = 0; round < 10; ++round) {
        runCommandLine("true", kPatient);
    }
    const int after = open("/dev/null", O_RDONLY);
    close(after);
    EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace brevan
