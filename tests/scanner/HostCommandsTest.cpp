#include "scanner/HostCommands.h"

#include "support/SdkTest.h"

namespace brevan::test {
namespace {

using HostCommands = SdkTest;

TEST_F(HostCommands, CarryTheExactTextsAndNumbersThatTheRunnerKnows)
{
    const struct {
        RunShellCmdInfo command;
        std::uint64_t code;
        std::uint64_t type;
        const char* text;
        std::vector<std::string> parameters;
    } cases[] = {
        {rescanCommand(), 100003, 1, "sudo /opt/root_tool/common/security_sudo_v3.sh do_uprescan", {}},
        {rescanDeviceCommand("sdc"), 100004, 1, "sudo /opt/root_tool/common/security_sudo_v3.sh dev_rescan '?'", {"sdc"}},
        {busyDeviceCommand(), 100007, 1, "lsscsi | grep tmp-block", {}},
        {listDisksCommand("6ab"), 100008, 0, " ls -al /dev/disk/by-id | grep ? | grep -v part | grep scsi-", {"6ab"}},
        {listAllDisksCommand(), 100009, 0, "ls -al /dev/disk/by-id | grep -v part | grep scsi-", {}},
    };
    for (const auto& [command, code, type, text, parameters] : cases) {
        EXPECT_EQ(command.shellCmd, text);
        EXPECT_EQ(command.cmdCode, code);
        EXPECT_EQ(command.cmdType, type);
        EXPECT_EQ(command.requestId, 0U);
        EXPECT_EQ(command.param, parameters);
    }
}

TEST_F(HostCommands, NameTheProbeAndTheSettingFile)
{
    EXPECT_STREQ(kBusyDeviceProbe, "lsscsi | grep tmp-block");
    EXPECT_STREQ(kRescanSettingFile, "/opt/norvane-data-protection/dunmere/microservice/zql_backup/conf/uprescan");
}

TEST_F(HostCommands, HandOverWhatTheCommandSaid)
{
    const std::string listing = "100009/0/0 [ls -al /dev/disk/by-id | grep -v part | grep scsi-]";
    recorder.expectCommand(listing, {0, {"a", "b"}, "text", {}});
    recorder.expectCommand(listing, {2, {"c"}, "failed", {}});
    recorder.expectCommand(listing, {-1, {}, "", {}});
    const CommandOutput good = runCommand(listAllDisksCommand());
    EXPECT_TRUE(good.succeeded);
    EXPECT_THAT(good.lines, testing::ElementsAre("a", "b"));
    EXPECT_EQ(good.errorText, "text");
    const CommandOutput bad = runCommand(listAllDisksCommand());
    EXPECT_FALSE(bad.succeeded);
    EXPECT_EQ(bad.errorText, "failed");
    EXPECT_FALSE(runCommand(listAllDisksCommand()).succeeded);
}

}  // namespace
}  // namespace brevan::test
