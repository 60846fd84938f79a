#include "platform/plimlog/LogRegistry.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace brevan::plimlog {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr uid_t kNobody = 65534;

class LogStart : public testing::Test {
protected:
    std::vector<std::string> runLog() const { return linesOf(logPath(m_folder.path(), getpid(), "run.log")); }
    std::string folderPath() const { return m_folder.path() + "/"; }

    TestFolder m_folder;
    LogRegistry m_registry;
};

TEST_F(LogStart, WritesNothingBeforeItAndAfterTheStop)
{
    m_registry.run("Test", LogLevel::Info, "before");
    EXPECT_EQ(m_registry.stop("Test"), -1);
    EXPECT_EQ(m_registry.start("Test", nullptr, folderPath().c_str()), 0);
    m_registry.run("Test", LogLevel::Info, "between");
    EXPECT_EQ(m_registry.stop("Test"), 0);
    m_registry.run("Test", LogLevel::Info, "after");
    m_registry.record({"Test", "", "", "", "", "", "", "", "", "", ""}, true);
    EXPECT_EQ(m_registry.stop("Test"), -1);
    EXPECT_THAT(runLog(), ElementsAre(EndsWith(" between")));
    EXPECT_EQ(namesIn(m_folder.path()).size(), 2U);
}

TEST_F(LogStart, GoesOnInTheSameFilesAfterAStop)
{
    for (const char* message : {"first", "second"}) {
        EXPECT_EQ(m_registry.start("Test", nullptr, folderPath().c_str()), 0);
        m_registry.run("Test", LogLevel::Info, message);
        EXPECT_EQ(m_registry.stop("Test"), 0);
    }
    EXPECT_THAT(runLog(), ElementsAre(EndsWith(" first"), EndsWith(" second")));
}

TEST_F(LogStart, LeavesARunningLogAsItIsAndSaysSo)
{
    EXPECT_EQ(m_registry.start("Test", nullptr, folderPath().c_str()), 0);
    EXPECT_EQ(m_registry.start("Test", nullptr, "/elsewhere"), 0);
    m_registry.run("Test", LogLevel::Info, "still here");
    EXPECT_THAT(runLog(), ElementsAre(HasSubstr("LogInit was called again"), EndsWith(" still here")));
}

TEST_F(LogStart, KeepsTagsApart)
{
    const TestFolder other;
    EXPECT_EQ(m_registry.start("Test", nullptr, folderPath().c_str()), 0);
    EXPECT_EQ(m_registry.start("Other", nullptr, other.path().c_str()), 0);
    m_registry.run("Test", LogLevel::Info, "for one");
    m_registry.run("Other", LogLevel::Info, "for the other");
    EXPECT_EQ(m_registry.stop("Other"), 0);
    m_registry.run("Test", LogLevel::Info, "still");
    EXPECT_THAT(runLog(), ElementsAre(EndsWith(" for one"), EndsWith(" still")));
    EXPECT_THAT(namesIn(other.path()), testing::Each(StartsWith("Other.")));
}

TEST_F(LogStart, FailsWithOneLineThatSaysWhatToDo)
{
    const std::string blocked = m_folder.write("file", "") + "/logs";
    testing::internal::CaptureStderr();
    EXPECT_EQ(m_registry.start("Test", "/nonexistent/Brevan_API.ini", blocked.c_str()), -1);
    EXPECT_EQ(m_registry.start("Test", "/nonexistent/Brevan_API.ini", blocked.c_str()), -1);
    m_registry.run("Test", LogLevel::Error, "nowhere");
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "libPlimLogAPI: the log of \"Test\" is off: cannot write " + logPath(blocked, getpid(), "run.log") +
            ": Not a directory. Name a directory that this user can write under [log] in /nonexistent/Brevan_API.ini.\n");
    EXPECT_THAT(namesIn(m_folder.path()), ElementsAre("file"));
}

TEST_F(LogStart, FailsWhereTheUserMayNotWrite)
{
    const uid_t user = geteuid();
    chmod(m_folder.path().c_str(), S_IRUSR | S_IXUSR);
    testing::internal::CaptureStderr();
    ASSERT_EQ(user == 0 ? seteuid(kNobody) : 0, 0);  // root may write anywhere
    const int started = m_registry.start("Test", nullptr, (m_folder / "logs").c_str());
    ASSERT_EQ(seteuid(user), 0);
    EXPECT_EQ(started, -1);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr(": Permission denied."));
    chmod(m_folder.path().c_str(), S_IRWXU);
}

TEST_F(LogStart, SucceedsOnceTheFolderCanBeWritten)
{
    const std::string blocked = m_folder.write("file", "") + "/logs";
    testing::internal::CaptureStderr();
    EXPECT_EQ(m_registry.start("Test", nullptr, blocked.c_str()), -1);
    testing::internal::GetCapturedStderr();
    unlink((m_folder / "file").c_str());
    EXPECT_EQ(m_registry.start("Test", nullptr, blocked.c_str()), 0);
}

TEST_F(LogStart, RefusesATagOrADirectoryThatIsNone)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(m_registry.start(nullptr, nullptr, folderPath().c_str()), -1);
    EXPECT_EQ(m_registry.start("", nullptr, folderPath().c_str()), -1);
    EXPECT_EQ(m_registry.start(std::string(kLongestTag + 1, 't').c_str(), nullptr, folderPath().c_str()), -1);
    EXPECT_EQ(m_registry.start("Test", nullptr, nullptr), -1);
    EXPECT_EQ(m_registry.start("Test", nullptr, ""), -1);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_THAT(said, HasSubstr("a tag has 1 to 40 bytes"));
    EXPECT_THAT(said, HasSubstr("no log directory was given"));
    EXPECT_THAT(namesIn(m_folder.path()), ElementsAre());
}

TEST_F(LogStart, TakesTheLongestTagOfAnyBytes)
{
    EXPECT_EQ(m_registry.start(std::string(kLongestTag, '/').c_str(), nullptr, folderPath().c_str()), 0);
    EXPECT_EQ(namesIn(m_folder.path()).size(), 2U);
}

TEST_F(LogStart, TakesDirectoryAndLevelsFromTheSettings)
{
    const std::string ini = m_folder.write("Brevan_API.ini", "[log]\ndirectory = mine\n[run]\nlevel = error\n");
    EXPECT_EQ(m_registry.start("Test", ini.c_str(), "/nonexistent/logs"), 0);
    m_registry.run("Test", LogLevel::Info, "no");
    m_registry.run("Test", LogLevel::Error, "yes");
    EXPECT_THAT(linesOf(logPath(m_folder / "mine", getpid(), "run.log")), ElementsAre(EndsWith(" yes")));
}

TEST_F(LogStart, NamesABadSettingOnStandardErrorAndInTheRunLog)
{
    const std::string ini = m_folder.write("Brevan_API.ini", "[run]\nlevel = loud\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ(m_registry.start("Test", ini.c_str(), folderPath().c_str()), 0);
    const std::string complaint = ini +
                                  ": setting \"level\" in section [run] cannot be \"loud\", only debug, info, warn, "
                                  "error or off; the default is used.";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "libPlimLogAPI: " + complaint + "\n");
    EXPECT_THAT(runLog(), ElementsAre(EndsWith(complaint)));
}

TEST_F(LogStart, KeepsADirectoryThatWasGivenRelativeWhenTheApplicationMoves)
{
    EXPECT_EQ(inChild([&] {
                  ASSERT_EQ(chdir(m_folder.path().c_str()), 0);
                  EXPECT_EQ(m_registry.start("Test", nullptr, "here"), 0);
                  ASSERT_EQ(chdir("/"), 0);
                  unlink(logPath(m_folder / "here", getpid(), "run.log").c_str());
                  std::this_thread::sleep_for(std::chrono::milliseconds(120));
                  m_registry.run("Test", LogLevel::Info, "text");
                  EXPECT_EQ(linesOf(logPath(m_folder / "here", getpid(), "run.log")).size(), 1U);
              }),
              0);
}

TEST_F(LogStart, LosesAndTearsNoLineOfManyThreads)
{
    constexpr int kThreads = 8;
    constexpr int kLines = 1000;
    const std::string ini = m_folder.write("Brevan_API.ini", "[run]\nmax_file_size_kib = 128\nmax_files = 100\n");
    EXPECT_EQ(m_registry.start("Test", ini.c_str(), folderPath().c_str()), 0);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([this] {
            for (int line = 0; line < kLines; ++line) {
                m_registry.run("Test", LogLevel::Info, "one of many lines");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::size_t whole = 0;
    for (const std::string& name : namesIn(m_folder.path())) {
        for (const std::string& line : linesOf(m_folder / name)) {
            whole += testing::Matches(EndsWith(" one of many lines"))(line) && line.size() < 80 ? 1U : 0U;
        }
    }
    EXPECT_EQ(whole, static_cast<std::size_t>(kThreads * kLines));
}

TEST_F(LogStart, CanHappenWhileOtherThreadsLog)
{
    std::thread writer([this] {
        for (int i = 0; i < 500; ++i) {
            m_registry.run("Test", LogLevel::Info, "text");
        }
    });
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(m_registry.start("Test", nullptr, folderPath().c_str()), 0);
        EXPECT_EQ(m_registry.stop("Test"), 0);
    }
    writer.join();
}

}  // namespace
}  // namespace brevan::plimlog
