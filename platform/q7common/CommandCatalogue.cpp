#include "CommandCatalogue.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace brevan {

namespace {

struct KnownCommand {
    std::uint64_t code;
    std::uint64_t type;
    const char* commandLine;
};

constexpr KnownCommand kCommands[] = {
    {100003, 1, "sudo /opt/root_tool/common/security_sudo_v3.sh do_uprescan"},
    {100004, 1, "sudo /opt/root_tool/common/security_sudo_v3.sh dev_rescan '?'"},
    {100007, 1, "lsscsi | grep tmp-block"},
    // The blank in front is part of the command line: whoever sends it writes it so.
    {100008, 0, " ls -al /dev/disk/by-id | grep ? | grep -v part | grep scsi-"},
    {100009, 0, "ls -al /dev/disk/by-id | grep -v part | grep scsi-"},
};

}  // namespace

bool isKnownCommand(const RunShellCmdInfo& command)
{
    return std::any_of(std::begin(kCommands), std::end(kCommands), [&command](const KnownCommand& known) {
        return known.code == command.cmdCode && known.type == command.cmdType && known.commandLine == command.shellCmd;
    });
}

}  // namespace brevan
