#include "platform/plimlog/LogChannel.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <regex>

#include <unistd.h>

namespace brevan::plimlog {
namespace {

using testing::ElementsAre;
using testing::EndsWith;

LogFileName nameOf(LogKind kind)
{
    return {"Test", "program", getpid(), 1, kind, 0};
}

TEST(LogChannel, PutsTimeLevelProcessAndThreadBeforeARunLogLine)
{
    const TestFolder folder;
    LogChannel channel(folder.path(), nameOf(LogKind::Run), {});
    EXPECT_EQ(channel.write(LogLevel::Info, "100% {} done"), 0);
    const std::string ids = std::to_string(getpid()) + " " + std::to_string(gettid());
    const std::regex expected(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} INFO  )" + ids + R"( 100% \{\} done\n)");
    EXPECT_TRUE(std::regex_match(readFile(channel.path()), expected)) << readFile(channel.path());
}

TEST(LogChannel, NamesTheFourLevels)
{
    const TestFolder folder;
    LogChannel channel(folder.path(), nameOf(LogKind::Run), {LogLevel::Debug, 1 << 20, 5});
    for (const LogLevel level : {LogLevel::Debug, LogLevel::Info, LogLevel::Warn, LogLevel::Error}) {
        EXPECT_EQ(channel.write(level, "text"), 0);
    }
    std::string levels;
    for (const std::string& line : linesOf(channel.path())) {
        levels += line.substr(24, 6);
    }
    EXPECT_EQ(levels, "DEBUG INFO  WARN  ERROR ");
}

TEST(LogChannel, WritesARecordAlone)
{
    const TestFolder folder;
    LogChannel channel(folder.path(), nameOf(LogKind::Interface), {});
    EXPECT_EQ(channel.write(LogLevel::Error, "a\tb"), 0);
    EXPECT_EQ(readFile(channel.path()), "a\tb\n");
}

TEST(LogChannel, LeavesOutWhatIsBelowItsLevel)
{
    const TestFolder folder;
    LogChannel channel(folder.path(), nameOf(LogKind::Run), {LogLevel::Warn, 1 << 20, 5});
    EXPECT_EQ(channel.write(LogLevel::Info, "no"), 0);
    EXPECT_EQ(channel.write(LogLevel::Warn, "yes"), 0);
    EXPECT_THAT(linesOf(channel.path()), ElementsAre(EndsWith(" yes")));
}

TEST(LogChannel, WritesNothingWhenItIsOff)
{
    const TestFolder folder;
    LogChannel channel(folder.path(), nameOf(LogKind::Run), {LogLevel::Off, 1 << 20, 5});
    EXPECT_EQ(channel.write(LogLevel::Error, "no"), 0);
    EXPECT_EQ(readFile(channel.path()), "");
}

TEST(LogChannel, SaysWhyALineCouldNotBeWritten)
{
    const TestFolder folder;
    LogChannel channel(folder.write("file", "") + "/logs", nameOf(LogKind::Run), {});
    EXPECT_EQ(channel.open(), ENOTDIR);
    EXPECT_EQ(channel.write(LogLevel::Error, "text"), ENOTDIR);
}

}
}
