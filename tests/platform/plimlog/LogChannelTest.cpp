#include "platform/plimlog/LogChannel.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>

#include <unistd.h>

namespace brevan::plimlog {
namespace {

using testing::ElementsAre;
using testing::EndsWith;

LogFileName nameOf(LogKind kind)
{
    return {"Test", "program", getpid(), 1, kind, 0};
}

std::string digitsBlotted(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
    return text;
}

TEST(LogChannel, PutsTimeLevelProcessAndThreadBeforeARunLogLine)
{
    const TestFolder folder;
    LogChannel channel(folder.path(), nameOf(LogKind::Run), {});
    EXPECT_EQ(channel.write(LogLevel::Info, "100% {} done"), 0);
    const std::string ids = std::to_string(getpid()) + " " + std::to_string(gettid());
    const std::string line = readFile(channel.path());
    EXPECT_EQ(digitsBlotted(line.substr(0, 23)), "0000-00-00 00:00:00.000");
    EXPECT_EQ(line.substr(23), " INFO  " + ids + " 100% {} done\n");
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

}  // namespace
}  // namespace brevan::plimlog
