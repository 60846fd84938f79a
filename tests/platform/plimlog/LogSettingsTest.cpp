#include "platform/plimlog/LogSettings.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <filesystem>

#include <sys/stat.h>

namespace brevan::plimlog {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

LogSettings settingsOf(const std::string& text)
{
    const TestFolder folder;
    return readLogSettings(folder.write("Brevan_API.ini", text).c_str());
}

void expectDefaults(const LogSettings& settings)
{
    EXPECT_EQ(settings.directory, "");
    EXPECT_EQ(settings.keepOldFiles, 40U);
    for (const ChannelSettings& channel : {settings.run, settings.interface}) {
        EXPECT_EQ(channel.level, LogLevel::Info);
        EXPECT_EQ(channel.maxFileBytes, 10U * 1024 * 1024);
        EXPECT_EQ(channel.maxFiles, 5U);
    }
}

TEST(LogSettings, AreTheDefaultsWithoutAWordWhereThereIsNoFile)
{
    const TestFolder folder;
    const std::string belowAFile = folder.write("file", "") + "/x.ini";
    for (const char* path : {static_cast<const char*>(nullptr), "", "/nonexistent/x.ini", belowAFile.c_str()}) {
        const LogSettings settings = readLogSettings(path);
        expectDefaults(settings);
        EXPECT_THAT(settings.complaints, IsEmpty());
    }
}

TEST(LogSettings, AreAllRead)
{
    const LogSettings settings = settingsOf(
        "[log]\ndirectory = /var/x/\nkeep_old_files = 0 ; none\n"
        "[run]\nlevel = debug\nmax_file_size_kib = 128\nmax_files = 1\n"
        "[interface]\r\nlevel=off\r\nmax_file_size_kib: 1048576\r\nmax_files=100\r\n");
    EXPECT_THAT(settings.complaints, IsEmpty());
    EXPECT_EQ(settings.directory, "/var/x/");
    EXPECT_EQ(settings.keepOldFiles, 0U);
    EXPECT_EQ(settings.run.level, LogLevel::Debug);
    EXPECT_EQ(settings.run.maxFileBytes, 128U * 1024);
    EXPECT_EQ(settings.run.maxFiles, 1U);
    EXPECT_EQ(settings.interface.level, LogLevel::Off);
    EXPECT_EQ(settings.interface.maxFileBytes, 1024U * 1024 * 1024);
    EXPECT_EQ(settings.interface.maxFiles, 100U);
}

TEST(LogSettings, TakeARelativeDirectoryFromTheFoldersOwnPlace)
{
    const TestFolder folder;
    const std::string path = folder.write("Brevan_API.ini", "[log]\ndirectory = ../elsewhere/logs\n");
    EXPECT_EQ(readLogSettings(path.c_str()).directory,
              std::filesystem::path(folder.path()).parent_path() / "elsewhere/logs");
}

TEST(LogSettings, NameWhatIsUnknownAndGoOn)
{
    const LogSettings settings = settingsOf("[run]\ncolour = red\nmax_files = 7\n[walk]\nlevel = info\nlevel\n");
    EXPECT_EQ(settings.run.maxFiles, 7U);
    EXPECT_THAT(settings.complaints,
                ElementsAre(AllOf(HasSubstr("Brevan_API.ini: "), HasSubstr("\"colour\" in section [run] is unknown")),
                            HasSubstr("\"level\" in section [walk] is unknown"), HasSubstr("line 6 is neither")));
}

TEST(LogSettings, UseTheDefaultForAValueThatCannotBe)
{
    for (const char* line :
         {"[run]\nlevel = loud", "[run]\nlevel =", "[interface]\nlevel = INFO", "[run]\nmax_files = 0",
          "[run]\nmax_files = 101", "[interface]\nmax_files = 5x", "[run]\nmax_files = -1", "[run]\nmax_file_size_kib = 127",
          "[run]\nmax_file_size_kib = 1048577", "[interface]\nmax_file_size_kib = 99999999999999999999",
          "[log]\nkeep_old_files = 10001", "[log]\nkeep_old_files = 1 2", "[log]\ndirectory ="}) {
        const LogSettings settings = settingsOf(line);
        expectDefaults(settings);
        EXPECT_THAT(settings.complaints, ElementsAre(AllOf(HasSubstr("cannot be \""), HasSubstr("the default is used"))))
            << line;
    }
}

TEST(LogSettings, SayWhichValuesCanBe)
{
    EXPECT_THAT(settingsOf("[run]\nlevel = loud").complaints,
                ElementsAre(HasSubstr("only debug, info, warn, error or off;")));
    EXPECT_THAT(settingsOf("[run]\nmax_files = 0").complaints, ElementsAre(HasSubstr("only a whole number from 1 to 100;")));
}

TEST(LogSettings, KeepTheFirstOfTwoValues)
{
    const LogSettings settings = settingsOf("[run]\nmax_files = 3\nmax_files = 4\n");
    EXPECT_EQ(settings.run.maxFiles, 3U);
    EXPECT_THAT(settings.complaints, ElementsAre(HasSubstr("given twice")));
}

TEST(LogSettings, IgnoreALineThatIsTooLongButNotTheOnesAfterIt)
{
    const std::string path(300, 'p');
    const LogSettings settings =
        settingsOf("; " + path + "\n[log]\ndirectory = /" + path + "\n[run]\nmax_files = 9\nnonsense\n");
    EXPECT_EQ(settings.directory, "");
    EXPECT_EQ(settings.run.maxFiles, 9U);
    EXPECT_THAT(settings.complaints, ElementsAre(HasSubstr("line 3 is longer than"), HasSubstr("line 6 is neither")));
}

TEST(LogSettings, ReadOnBehindAZeroByte)
{
    using namespace std::string_literals;
    const LogSettings settings = settingsOf("[run]\nmax_files = 6\0\n[interface]\nmax_files = 8\n"s);
    EXPECT_EQ(settings.interface.maxFiles, 8U);
    EXPECT_THAT(settings.complaints, ElementsAre(HasSubstr("cannot be \"6?\"")));
}

TEST(LogSettings, SayThatTheFileCannotBeRead)
{
    const TestFolder folder;
    mkfifo((folder / "fifo").c_str(), 0600);
    const std::string large = folder.write("large", std::string(65 * 1024, '\n'));
    for (const std::string& path : {folder.path(), folder / "fifo", large}) {
        const LogSettings settings = readLogSettings(path.c_str());
        expectDefaults(settings);
        EXPECT_THAT(settings.complaints, ElementsAre(AllOf(HasSubstr(path), HasSubstr("cannot be read"))));
    }
}

TEST(LogSettings, InTheShippedFileAreTheDefaultsAndTheSystemsLogFolder)
{
    LogSettings settings = readLogSettings(BREVAN_ROOT "/platform/plimlog/Brevan_API.ini");
    EXPECT_THAT(settings.complaints, IsEmpty());
    EXPECT_EQ(settings.directory, "/var/log/brevan");
    settings.directory.clear();
    expectDefaults(settings);
}

}  // namespace
}  // namespace brevan::plimlog
