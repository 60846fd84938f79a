#ifndef BREVAN_TESTS_CONTRACT_SCANSTEPS_H
#define BREVAN_TESTS_CONTRACT_SCANSTEPS_H

#include "Contract.h"

#include <cstddef>

// What the scans consist of. A process remembers that it has seen the multipath software and that a snapshot scan has run, so each of
// their rows has a process of its own. Volume 7 with the WWN 6a0b, whose disk is sdc.

namespace brevan::contract {

/// Fetching the scanner makes the host-wide lock, once.
inline const Steps kLockMade = "info: InitLock Succeed.New semId:[1]";

inline const std::string kRescan = "100003/1/0 [sudo /opt/root_tool/common/security_sudo_v3.sh do_uprescan]";
inline const std::string kRescanDisk = "100004/1/0 [sudo /opt/root_tool/common/security_sudo_v3.sh dev_rescan '?'] (sdc)";
inline const std::string kListByWwn = "100008/0/0 [ ls -al /dev/disk/by-id | grep ? | grep -v part | grep scsi-] (6a0b)";
inline const std::string kListAll = "100009/0/0 [ls -al /dev/disk/by-id | grep -v part | grep scsi-]";

inline const Steps kRescanStart = "info: =============upRescan start============";
inline const Steps kRescanSuccess = "info: ============Rescan -r success=============\n";  // after a failed one, too
inline const Steps kMultipathSeen = "info: Tendrix is installed.";

inline const std::string kDisk = "/dev/disk/by-id/../../sdc";
inline const std::string kDiskLine = "lrwxrwxrwx 1 root root 9 Mar  4 05:06 scsi-36a0b -> ../../sdc";

CommandResult prints(const std::vector<std::string>& lines);
CommandResult fails(const std::string& errorText);

/// A command that succeeds and says `text` where its errors go.
CommandResult says(const std::string& text);

/// "enter", the volume's read, and what follows; then the record and the leave line.
Steps scanned(const std::string& operation, const Steps& read, const Steps& more);

Steps readLun();
Steps readSnapshot();

/// The search by way of the multipath software.
Steps foundByWwn();
Steps notFoundByWwn();

/// The search among all disks: found, or the listing fails. `kind`: "Lun" or "Snapshot".
Steps foundAmongAll(const std::string& kind);
Steps listingFails();

/// A LUN scan that finds nothing but the multipath software.
Steps lunScanSeesMultipath();

/// Until the line has been logged that many times.
void waitFor(const std::string& line, std::ptrdiff_t times);

}  // namespace brevan::contract

#endif
