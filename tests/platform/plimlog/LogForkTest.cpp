// What becomes of the logs when the application makes processes, and when many processes log into one folder.

#include "PlimLogAPI.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <atomic>
#include <map>
#include <thread>

#include <unistd.h>

namespace brevan::plimlog {
namespace {

using testing::ElementsAre;
using testing::EndsWith;

class LoggingProcess : public testing::Test {
protected:
    void startLog() { ASSERT_EQ(LogInit("Test", m_config.c_str(), nullptr, nullptr), 0); }
    void TearDown() override { LogFini("Test"); }
    std::vector<std::string> runLog(pid_t process) const { return linesOf(logPath(m_folder / "logs", process, "run.log")); }

    TestFolder m_folder;
    std::string m_config = m_folder.write("Brevan_API.ini",
                                          "[log]\ndirectory = logs\n"
                                          "[run]\nmax_file_size_kib = 512\nmax_files = 100\n");
};

TEST_F(LoggingProcess, GetsFilesOfItsOwnAfterFork)
{
    startLog();
    Log_Run_Info("Test", "parent");
    const pid_t child = startChild([] { Log_Run_Info("Test", "child"); });
    EXPECT_EQ(waitForChild(child), 0);
    Log_Run_Info("Test", "parent again");
    EXPECT_THAT(runLog(getpid()), ElementsAre(EndsWith(" parent"), EndsWith(" parent again")));
    const std::string ids = " INFO  " + std::to_string(child) + " " + std::to_string(child);
    EXPECT_THAT(runLog(child), ElementsAre(EndsWith(ids + " child")));
}

TEST_F(LoggingProcess, MayStopTheLogInAChildWithoutHarmToTheParent)
{
    startLog();
    EXPECT_EQ(inChild([] { EXPECT_EQ(LogFini("Test"), 0); }), 0);
    Log_Run_Info("Test", "parent");
    EXPECT_THAT(runLog(getpid()), ElementsAre(EndsWith(" parent")));
    EXPECT_EQ(namesIn(m_folder / "logs").size(), 2U);
}

TEST_F(LoggingProcess, ForksSafelyWhileItsThreadsLog)
{
    startLog();
    std::atomic<bool> stop{false};
    std::thread writer([&stop] {
        while (!stop) {
            Log_Run_Info("Test", "parent");
        }
    });
    for (int i = 0; i < 20; ++i) {
        const pid_t child = startChild([] { Log_Run_Info("Test", "child"); });
        EXPECT_EQ(waitForChild(child), 0);
        EXPECT_THAT(runLog(child), ElementsAre(EndsWith(" child")));
    }
    stop = true;
    writer.join();
}

TEST_F(LoggingProcess, LosesAndTearsNoLineNextToSevenOthers)
{
    constexpr int kProcesses = 8;
    constexpr int kLines = 20000;
    std::vector<pid_t> children;
    for (int i = 0; i < kProcesses; ++i) {
        children.push_back(startChild([this] {
            startLog();
            for (int line = 0; line < kLines; ++line) {
                Log_Run_Info("Test", std::to_string(line).c_str());
            }
        }));
    }
    for (const pid_t child : children) {
        EXPECT_EQ(waitForChild(child), 0);
    }
    for (const pid_t child : children) {
        int next = 0;
        for (int generation = 100; generation >= 0; --generation) {
            const std::string end = generation > 0 ? "run." + std::to_string(generation) + ".log" : "run.log";
            for (const std::string& line : linesOf(logPath(m_folder / "logs", child, end))) {
                const std::string expected =
                    " " + std::to_string(child) + " " + std::to_string(child) + " " + std::to_string(next++);
                ASSERT_THAT(line.substr(29), expected) << end;
            }
        }
        EXPECT_EQ(next, kLines);
    }
}

}  // namespace
}  // namespace brevan::plimlog
