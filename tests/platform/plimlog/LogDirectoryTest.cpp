#include "platform/plimlog/LogDirectory.h"

#include "platform/plimlog/LogFileName.h"
#include "platform/plimlog/RotatingFile.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brevan::plimlog {
namespace {

using testing::ElementsAre;

mode_t modeOf(const std::string& path)
{
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

/// An empty log file of process `pid` that was last written at second `changed`.
std::string putLogFile(const TestFolder& folder, pid_t pid, LogKind kind, unsigned generation, time_t changed)
{
    const std::string name = LogFileName{"Test", "other", pid, 1, kind, generation}.text();
    const timespec times[] = {{changed, 0}, {changed, 0}};
    utimensat(AT_FDCWD, folder.write(name, "").c_str(), times, 0);
    return name;
}

TEST(LogDirectory, IsMadeWithAllThatIsMissingAboveIt)
{
    const TestFolder folder;
    EXPECT_EQ(makeDirectory(folder / "a/b/c"), 0);
    EXPECT_EQ(makeDirectory(folder / "a/b/c/"), 0);
    EXPECT_EQ(modeOf(folder / "a"), 0750U);
    EXPECT_EQ(modeOf(folder / "a/b/c"), 0750U);
}

TEST(LogDirectory, CannotBeMadeBelowAFile)
{
    const TestFolder folder;
    folder.write("file", "");
    EXPECT_EQ(makeDirectory(folder / "file"), ENOTDIR);
    EXPECT_EQ(makeDirectory(folder / "file/logs"), ENOTDIR);
}

TEST(LogDirectory, LosesTheOldestFilesOfEndedProcesses)
{
    const TestFolder folder;
    const pid_t ended = endedProcess();
    const std::string old = putLogFile(folder, ended, LogKind::Run, 1, 1000);
    const std::string middle = putLogFile(folder, ended, LogKind::Interface, 0, 2000);
    const std::string young = putLogFile(folder, ended, LogKind::Run, 0, 3000);
    pruneOldFiles(folder.path(), "Test", 2);
    EXPECT_THAT(namesIn(folder.path()), ElementsAre(middle, young));
    pruneOldFiles(folder.path(), "Test", 0);
    EXPECT_THAT(namesIn(folder.path()), ElementsAre());
}

TEST(LogDirectory, KeepsFilesOfLiveProcessesOfOtherTagsAndOfOthers)
{
    const TestFolder folder;
    const std::string ofALiveOne = putLogFile(folder, getppid(), LogKind::Run, 3, 1000);
    const std::string ended = std::to_string(endedProcess());
    folder.write("Tag.other." + ended + ".run.log", "");
    folder.write("notes.txt", "");
    mkdir((folder / ("Test.folder." + ended + ".run.log")).c_str(), 0700);
    pruneOldFiles(folder.path(), "Test", 0);
    EXPECT_THAT(namesIn(folder.path()), testing::UnorderedElementsAre("Tag.other." + ended + ".run.log", ofALiveOne,
                                                                      "Test.folder." + ended + ".run.log", "notes.txt"));
}

TEST(LogDirectory, KeepsFilesWhoseOwnerHoldsItsLockUnderAnIdThatSaysNothingHere)
{
    const TestFolder folder;
    const pid_t ended = endedProcess();
    RotatingFile file(folder.path(), LogFileName{"Test", "other", ended, 1, LogKind::Run, 0}, 1 << 20, 5);
    ASSERT_EQ(file.write("line\n"), 0);
    const std::string older = putLogFile(folder, ended, LogKind::Run, 1, 1000);
    const std::string otherLog = putLogFile(folder, ended, LogKind::Interface, 0, 1000);
    pruneOldFiles(folder.path(), "Test", 0);
    EXPECT_THAT(namesIn(folder.path()), ElementsAre(older, LogFileName{"Test", "other", ended, 1, LogKind::Run, 0}.text()));
}

TEST(LogDirectory, IsNotPrunedWhereThereIsNone)
{
    EXPECT_NO_THROW(pruneOldFiles("/nonexistent/logs", "Test", 0));
}

TEST(LogDirectory, OpensOnlyRegularFiles)
{
    const TestFolder folder;
    mkfifo((folder / "fifo").c_str(), 0600);
    ASSERT_EQ(symlink("/dev/null", (folder / "link").c_str()), 0);
    mkdir((folder / "folder").c_str(), 0700);
    for (const char* name : {"fifo", "link", "folder"}) {
        EXPECT_EQ(openLogFile(folder / name), -1) << name;
        EXPECT_NE(errno, 0);
    }
    const int reader = open((folder / "fifo").c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(openLogFile(folder / "fifo"), -1);
    EXPECT_EQ(errno, EINVAL);
    close(reader);
}

TEST(LogDirectory, MakesFilesThatOthersCannotRead)
{
    const TestFolder folder;
    const int fd = openLogFile(folder / "file");
    EXPECT_EQ(modeOf(folder / "file"), 0640U);
    EXPECT_EQ(fcntl(fd, F_GETFD), FD_CLOEXEC);
    close(fd);
}

TEST(LogDirectory, TakesNoStandardDescriptorForALog)
{
    const TestFolder folder;
    EXPECT_EQ(inChild([&] {
                  close(STDIN_FILENO);
                  EXPECT_GT(openLogFile(folder / "file"), STDERR_FILENO);
                  EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1);
              }),
              0);
}

}  // namespace
}  // namespace brevan::plimlog
