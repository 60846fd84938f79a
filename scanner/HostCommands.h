#ifndef BREVAN_SCANNER_HOSTCOMMANDS_H
#define BREVAN_SCANNER_HOSTCOMMANDS_H

#include <RestToMgr.h>

#include <string>
#include <vector>

// The commands that the scanner has run, with their numbers. Blanks count: the runner knows these texts and no others.

namespace brevan {

/// Rescans the host's SCSI buses; needs root, through sudo.
RunShellCmdInfo rescanCommand();

/// Rescans one disk, so that its size is current; needs root, through sudo.
RunShellCmdInfo rescanDeviceCommand(const std::string& deviceName);

/// Succeeds while a temporary block device is listed.
RunShellCmdInfo busyDeviceCommand();

/// Lists the disks by their identifiers: those with `wwn` in their line, or all.
RunShellCmdInfo listDisksCommand(const std::string& wwn);
RunShellCmdInfo listAllDisksCommand();

/// The same probe for system(), which the scan of a LUN uses.
extern const char* const kBusyDeviceProbe;

/// Where this file exists, a snapshot that was found without a rescan is followed by one in the background.
extern const char* const kRescanSettingFile;

/// What a command said.
struct CommandOutput {
    bool succeeded = false;
    std::vector<std::string> lines;
    std::string errorText;
};

CommandOutput runCommand(const RunShellCmdInfo& command);

}  // namespace brevan

#endif
