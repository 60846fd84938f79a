// A log folder on a real, full file system: a small one in memory, mounted for one child process.

#include "PlimLogAPI.h"

#include "PlimLogSupport.h"

#include <gmock/gmock.h>

#include <fstream>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace brevan::plimlog {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;

constexpr int kNotPermitted = 77;
constexpr const char* kLost = " log lines were lost here: No space left on device";

/// Mounts a file system of 256 KiB on `path`, seen by this process only.
bool mountSmallDisk(const std::string& path)
{
    const uid_t user = getuid();
    const gid_t group = getgid();
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return false;
        }
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", path.c_str(), "tmpfs", 0, "size=256k") == 0;
}

/// Logs until nothing fits any more, makes room, and looks at what is there.
void fillAndRecover(const TestFolder& folder)
{
    const std::string message(400, 'm');
    dup2(STDOUT_FILENO, STDERR_FILENO);
    ASSERT_EQ(LogInit("Test", nullptr, nullptr, folder.path().c_str()), 0);
    folder.write("ballast", std::string(64 * 1024, 'b'));
    for (int i = 0; i < 1000; ++i) {
        Log_Run_Info("Test", message.c_str());
    }
    const std::string path = logPath(folder.path(), getpid(), "run.log");
    // A short line, the count of the lost ones, may still fit where a long one does not.
    EXPECT_THAT(linesOf(path), Each(AnyOf(EndsWith(" " + message), EndsWith(kLost))));
    EXPECT_THAT(readFile(path), EndsWith("\n"));
    unlink((folder / "ballast").c_str());
    Log_Run_Info("Test", "room again");
    const std::vector<std::string> lines = linesOf(path);
    EXPECT_THAT(lines, Contains(AllOf(EndsWith(kLost), HasSubstr(" WARN  "))));
    EXPECT_THAT(lines.back(), EndsWith(" room again"));
}

TEST(DiskFull, LosesWholeLinesCountsThemAndGoesOnWhenThereIsRoom)
{
    const TestFolder folder;
    const int status = inChild([&] {
        if (!mountSmallDisk(folder.path())) {
            _exit(kNotPermitted);
        }
        fillAndRecover(folder);
    });
    if (status == kNotPermitted) {
        GTEST_SKIP() << "this user may not mount anything here";
    }
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace brevan::plimlog
