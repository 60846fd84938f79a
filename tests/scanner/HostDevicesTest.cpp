#include "scanner/HostDevices.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace brevan::test {
namespace {

std::filesystem::path newFolder()
{
    char name[] = "/tmp/brevan-host-XXXXXX";
    return mkdtemp(name) != nullptr ? name : throw std::runtime_error("no folder for the test");
}

/// The real host, but nothing outside a folder of the test's own.
class OwnHostDevices : public testing::Test {
    const std::filesystem::path m_folder = newFolder();

protected:
    OwnHostDevices()
    {
        std::ofstream(file) << "content";
        std::filesystem::create_symlink("nowhere", dangling);
    }
    ~OwnHostDevices() override { std::filesystem::remove_all(m_folder); }

    HostDevices& host = hostDevices();
    const std::string file = m_folder / "file";
    const std::string dangling = m_folder / "dangling";
};

TEST_F(OwnHostDevices, OpensAFileSoThatChildrenDoNotInheritIt)
{
    for (const int flags : {O_RDONLY | O_NONBLOCK, O_RDWR | O_NONBLOCK}) {
        const int fd = host.open(file.c_str(), flags);
        ASSERT_GE(fd, 0);
        EXPECT_NE(fcntl(fd, F_GETFD) & FD_CLOEXEC, 0);
        EXPECT_EQ(fcntl(fd, F_GETFL) & (O_ACCMODE | O_NONBLOCK), flags);
        host.close(fd);
        EXPECT_EQ(fcntl(fd, F_GETFD), -1);
    }
}

TEST_F(OwnHostDevices, TakesNoStandardDescriptorForADisk)
{
    const pid_t child = fork();
    if (child == 0) {
        close(STDOUT_FILENO);
        const int fd = host.open(file.c_str(), O_RDWR | O_NONBLOCK);
        const bool isCloseOnExec = (fcntl(fd, F_GETFD) & FD_CLOEXEC) != 0;
        _exit(fd > STDERR_FILENO && isCloseOnExec && fcntl(STDOUT_FILENO, F_GETFD) == -1 ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(OwnHostDevices, CannotOpenWhatIsNotThere)
{
    EXPECT_EQ(host.open(dangling.c_str(), O_RDONLY), -1);
    EXPECT_EQ(host.open((file + "/below").c_str(), O_RDONLY), -1);
    EXPECT_EQ(host.open("", O_RDONLY), -1);
}

TEST_F(OwnHostDevices, SaysWhetherAFileExists)
{
    EXPECT_TRUE(host.exists(file.c_str()));
    EXPECT_FALSE(host.exists((file + "x").c_str()));
    EXPECT_FALSE(host.exists(dangling.c_str()));
}

TEST_F(OwnHostDevices, RunsAShellCommandAndGivesItsStatus)
{
    EXPECT_EQ(host.shell("true"), 0);
    EXPECT_EQ(host.shell(("grep -q content " + file).c_str()), 0);
    EXPECT_NE(host.shell(("grep -q other " + file).c_str()), 0);
    EXPECT_EQ(WEXITSTATUS(host.shell("exit 3")), 3);
}

TEST_F(OwnHostDevices, GetsNoScsiAnswerFromAPlainFile)
{
    const int fd = host.open(file.c_str(), O_RDONLY);
    sg_io_hdr request{};
    request.interface_id = 'S';
    EXPECT_EQ(host.scsiGeneric(fd, request), -1);
    host.close(fd);
    EXPECT_EQ(host.scsiGeneric(-1, request), -1);
}

}  // namespace
}  // namespace brevan::test
