// The application as an ordinary user, whose only way up is sudo with the sudoers file of host/. Runs inside the kernel host and nowhere else.
#include "HostDisks.h"
#include "KernelHost.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace brevan::test {
namespace {

using testing::HasSubstr;

constexpr const char* kAccount = "games";  // one that every host has, in no group but its own
constexpr const char* kScript = "/opt/root_tool/common/security_sudo_v3.sh";
constexpr const char* kTrap = "/tmp/trap/";

std::string programFolder()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

/// A LUN that is attached, and an account. This process itself never scans: the lock would belong to root.
class Privilege : public KernelHost {
protected:
    void SetUp() override
    {
        KernelHost::SetUp();
        lun = attachedLun();
        run("mkdir -p " + logs + " && chmod 777 " + logs);
        run("rm -rf /tmp/trap && mkdir -m 777 /tmp/trap");
    }
    void TearDown() override
    {
        client.detach(lun.ID);
        for (const std::string& name : diskNames()) {
            deleteDisk(name);
        }
        run("ipcrm -S 1235 || true");
        run("rm -f " + logs + "/*");
    }

    /// A scan by the account, member of these groups only; what it says.
    std::string scanAs(const std::string& groups, const std::string& environment = "")
    {
        run(std::string("usermod -G '") + groups + "' " + kAccount);
        const std::string scan =
            programFolder() + "/kernel_host_client " + std::to_string(array->port()) + " scan " + lun.ID;
        return run("setpriv --reuid games --regid games --init-groups --inh-caps=-all env " + environment + " " +
                   terminal(scan));
    }
    /// As from a login, with a terminal on which sudo could ask.
    std::string terminal(const std::string& command) const
    {
        return hasTerminal ? "timeout 60 script -qec '" + command + "' /dev/null" : command;
    }
    static std::string runLog() { return run("cat " + logs + "/*run.log"); }

    static const std::string logs;
    bool hasTerminal = false;
    LunMO lun;
};

const std::string Privilege::logs = programFolder() + "/../lib/logs";

TEST_F(Privilege, OfGroupsBrevanAndDiskIsEnough)
{
    const std::string said = scanAs("brevan,disk");
    EXPECT_THAT(said, HasSubstr("result: /dev/disk/by-id/../../sd"));
    EXPECT_THAT(said, HasSubstr("operation: \n"));
}

TEST_F(Privilege, ThatIsMissingForDisksIsNamed)
{
    const std::string said = scanAs("brevan");
    EXPECT_THAT(said, HasSubstr("result: \noperation: GetDiskPath\n"));
    EXPECT_THAT(said, HasSubstr("text: no right to open /dev/disk/by-id/../../sd"));
    EXPECT_THAT(said, HasSubstr("group disk"));
    EXPECT_THAT(runLog(), HasSubstr("no right to open /dev/disk/by-id/../../sd"));
}

TEST_F(Privilege, ThatIsMissingForTheRescanIsNamed)
{
    const std::string said = scanAs("disk");
    EXPECT_THAT(said, HasSubstr("result: \noperation: scanLunAfterAttach\n"));
    EXPECT_THAT(said, HasSubstr("text: the rescan of this host failed: sudo: "));
    EXPECT_THAT(said, HasSubstr("advice: Check that the rescan script is installed and that sudo lets this user run it."));
    EXPECT_THAT(runLog(), HasSubstr("=============upRescan failed: sudo: "));
}

TEST_F(Privilege, IsNotAskedForOnATerminal)
{
    hasTerminal = true;
    EXPECT_THAT(scanAs("disk"), HasSubstr("text: the rescan of this host failed: sudo: "));
}

TEST_F(Privilege, ToRunAScriptThatIsMissingIsNamed)
{
    run(std::string("mv ") + kScript + " /tmp/script");
    const std::string said = scanAs("brevan,disk");
    run(std::string("mv /tmp/script ") + kScript);
    EXPECT_THAT(said, HasSubstr("text: the rescan of this host failed: sudo: "));
    EXPECT_THAT(said, HasSubstr(kScript));
}

/// In PATH before the real one: notes who runs it, then runs the real one.
void trapProgram(const std::string& name)
{
    const std::string file = kTrap + name;
    writeFile(file, "#!/bin/sh\n: >>/tmp/trap/" + name + "-$(id -u)\nPATH=/usr/sbin:/usr/bin exec " + name + " \"$@\"\n");
    run("chmod 755 " + file);
}

TEST_F(Privilege, IsNotPassedToAnythingOfTheCallersEnvironment)
{
    for (const char* name : {"lsscsi", "flock", "udevadm", "iscsiadm", "timeout"}) {
        trapProgram(name);
    }
    writeFile("/tmp/trap/profile", ": >>/tmp/trap/profile-$(id -u)\n");
    run("chmod 644 /tmp/trap/profile");
    const std::string said =
        scanAs("brevan,disk", "PATH=/tmp/trap:/usr/sbin:/usr/bin:/sbin:/bin LD_PRELOAD=" + programFolder() +
                                  "/libpreload_trap.so BASH_ENV=/tmp/trap/profile BREVAN_LOCK=/tmp/trap/lock");
    EXPECT_THAT(said, HasSubstr("result: /dev/disk/by-id/../../sd"));
    const std::string notes = run("ls /tmp/trap");
    EXPECT_THAT(notes, HasSubstr("lsscsi-5\n"));  // the traps do work, for what runs as the user (games: 5)
    EXPECT_THAT(notes, HasSubstr("preloaded-5\n"));
    EXPECT_THAT(notes, Not(HasSubstr("-0\n")));
    for (const char* name : {"flock-", "udevadm-", "iscsiadm-", "timeout-", "profile-"}) {
        EXPECT_THAT(notes, Not(HasSubstr(name)));
    }
}

}  // namespace
}  // namespace brevan::test
