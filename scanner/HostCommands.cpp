#include "scanner/HostCommands.h"

namespace brevan {
namespace {

constexpr std::uint64_t kRescan = 100003;
constexpr std::uint64_t kRescanDevice = 100004;
constexpr std::uint64_t kBusyDevice = 100007;
constexpr std::uint64_t kListDisks = 100008;
constexpr std::uint64_t kListAllDisks = 100009;

constexpr std::uint64_t kPlain = 0;
constexpr std::uint64_t kPrivileged = 1;

const char* const kScript = "/opt/root_tool/common/security_sudo_v3.sh";

}  // namespace

const char* const kBusyDeviceProbe = "lsscsi | grep tmp-block";
const char* const kRescanSettingFile = "/opt/norvane-data-protection/dunmere/microservice/zql_backup/conf/uprescan";

RunShellCmdInfo rescanCommand()
{
    return {std::string("sudo ") + kScript + " do_uprescan", {}, kRescan, kPrivileged, 0};
}

RunShellCmdInfo rescanDeviceCommand(const std::string& deviceName)
{
    return {std::string("sudo ") + kScript + " dev_rescan '?'", {deviceName}, kRescanDevice, kPrivileged, 0};
}

RunShellCmdInfo busyDeviceCommand()
{
    return {kBusyDeviceProbe, {}, kBusyDevice, kPrivileged, 0};
}

RunShellCmdInfo listDisksCommand(const std::string& wwn)
{
    return {" ls -al /dev/disk/by-id | grep ? | grep -v part | grep scsi-", {wwn}, kListDisks, kPlain, 0};
}

RunShellCmdInfo listAllDisksCommand()
{
    return {"ls -al /dev/disk/by-id | grep -v part | grep scsi-", {}, kListAllDisks, kPlain, 0};
}

CommandOutput runCommand(const RunShellCmdInfo& command)
{
    CommandOutput output;
    output.succeeded = RestToMgr::ExceSystemCmd(command, output.lines, output.errorText) == 0;
    return output;
}

}  // namespace brevan
