#include "platform/plimlog/TagLog.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <stdexcept>
#include <thread>

#include <unistd.h>

namespace brevan::plimlog {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

constexpr InterfaceCall kCall{"Test", "1", "", "getLun", "", "", "", "", "", "0", ""};

/// Puts a file where the folder of the logs was, and waits until that is noticed.
void blockFolder(const TestFolder& folder)
{
    std::filesystem::remove_all(folder / "logs");
    folder.write("logs", "");
    std::this_thread::sleep_for(std::chrono::milliseconds(120));
}

TEST(TagLog, WritesARunLogAndAnInterfaceLog)
{
    const TestFolder folder;
    Complaints complaints;
    TagLog log("Test", folder.path(), {}, complaints);
    log.run(LogLevel::Info, "a message");
    log.record(kCall, true);
    EXPECT_THAT(linesOf(logPath(folder.path(), getpid(), "run.log")), ElementsAre(EndsWith(" a message")));
    EXPECT_THAT(linesOf(logPath(folder.path(), getpid(), "interface.log")), ElementsAre(HasSubstr("\tINFO\t0\tgetLun\t")));
}

TEST(TagLog, LetsNoMessageForgeALine)
{
    const TestFolder folder;
    Complaints complaints;
    TagLog log("Test", folder.path(), {}, complaints);
    log.run(LogLevel::Info, "end\n2021-03-04 05:06:07.089 ERROR 1 1 forged");
    EXPECT_THAT(linesOf(logPath(folder.path(), getpid(), "run.log")),
                ElementsAre(EndsWith("end\\n2021-03-04 05:06:07.089 ERROR 1 1 forged")));
}

TEST(TagLog, FailsAtOnceWhereTheFolderCannotBeMade)
{
    const TestFolder folder;
    Complaints complaints;
    const std::string blocked = folder.write("file", "") + "/logs";
    try {
        TagLog log("Test", blocked, {}, complaints);
        FAIL() << "it started";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "cannot write " + logPath(blocked, getpid(), "run.log") + ": Not a directory");
    }
}

TEST(TagLog, CountsLostLinesSaysSoOnceAndWritesTheCountLater)
{
    const TestFolder folder;
    Complaints complaints;
    TagLog log("Test", folder / "logs", {}, complaints);
    testing::internal::CaptureStderr();
    blockFolder(folder);
    log.run(LogLevel::Info, "lost");
    log.run(LogLevel::Info, "lost");
    std::filesystem::remove(folder / "logs");
    log.run(LogLevel::Info, "written");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "libPlimLogAPI: cannot write " + logPath(folder / "logs", getpid(), "run.log") +
                  ": Not a directory. Lines are lost until this is mended; the run log will say how many.\n");
    EXPECT_THAT(linesOf(logPath(folder / "logs", getpid(), "run.log")),
                ElementsAre(EndsWith("2 log lines were lost here: Not a directory"), EndsWith(" written")));
}

TEST(TagLog, ReportsLostRecordsInTheRunLogOnly)
{
    const TestFolder folder;
    Complaints complaints;
    TagLog log("Test", folder / "logs", {}, complaints);
    testing::internal::CaptureStderr();
    blockFolder(folder);
    log.record(kCall, true);
    std::filesystem::remove(folder / "logs");
    log.record(kCall, false);
    testing::internal::GetCapturedStderr();
    EXPECT_THAT(linesOf(logPath(folder / "logs", getpid(), "interface.log")), ElementsAre(HasSubstr("\tERROR\t")));
    EXPECT_THAT(linesOf(logPath(folder / "logs", getpid(), "run.log")), ElementsAre(HasSubstr("WARN  ")));
}

TEST(TagLog, PrunesWhatEndedProcessesLeft)
{
    const TestFolder folder;
    Complaints complaints;
    const std::string old = logPath(folder.path(), endedProcess(), "run.log");
    folder.write(std::filesystem::path(old).filename(), "");
    LogSettings settings;
    settings.keepOldFiles = 0;
    TagLog log("Test", folder.path(), settings, complaints);
    EXPECT_FALSE(std::filesystem::exists(old));
}

}  // namespace
}  // namespace brevan::plimlog
