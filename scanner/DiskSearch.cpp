// The search for the disk of a volume among those that the host lists under /dev/disk/by-id.
#include "scanner/DiskScannerHandlerImpl.h"

#include "foundation/FailureState.h"
#include "foundation/Operation.h"
#include "foundation/RunLog.h"
#include "scanner/ByIdListing.h"
#include "scanner/HostCommands.h"
#include "scanner/ScanState.h"

#include <brevan/LastFailure.h>

#include <algorithm>
#include <cerrno>
#include <optional>

using namespace brevan;

namespace {

// Neither "enter" nor "leave"; the records are written where the search says so: meant.
constexpr OperationStyle kSearch = {"GetDiskPath", "", ""};
constexpr OperationStyle kMultipathSearch = {"GetDiskPathForWWN", "", ""};

constexpr const char* kNotFoundAdvice =
    "Check that the volume is mapped to this host's initiator, that the initiator is logged in, and that this user may open "
    "disks (group disk).";

constexpr const char* kDeniedAdvice = "Run the application as root or as a member of group disk, which may open disks.";

const char* typeName(MOType type)
{
    return type == MOTYPE_LUN ? "Lun" : type == MOTYPE_SNAPSHOT ? "Snapshot" : nullptr;
}

/// What a candidate's own page says; both empty where it cannot be read, because this user may not, or otherwise.
struct Identity {
    std::string wwn;
    std::string lunNumber;
    bool denied = false;
};

Identity identityOf(std::string path)
{
    Identity identity;
    errno = 0;
    const int result = CDiskScannerHandlerImpl::GetDisk83Page(path, identity.wwn, identity.lunNumber);
    identity.denied = result != 0 && (errno == EACCES || errno == EPERM);
    return identity;
}

/// The page decides, and the name must agree. Nothing matches a volume without a name.
bool matches(const std::string& wanted, const std::string& fromPage, const std::string& fromName)
{
    return !wanted.empty() && fromPage == wanted && fromName == wanted;
}

/// Makes the size of the disk current. `what` is named where that fails; the disk is the right one all the same.
void rescanDevice(const std::string& path, const std::string& what)
{
    const CommandOutput output = runCommand(rescanDeviceCommand(deviceName(path)));
    if (!output.succeeded) {
        COMMLOG(OS_LOG_ERROR, "run %s failed: %s", what.c_str(), output.errorText.c_str());
    }
}

/// Walks the lines of the multipath route up to the first disk that matches.
std::string firstMatch(const std::vector<std::string>& lines, const std::string& wwn)
{
    for (const std::string& line : lines) {
        std::string path = candidatePath(line);
        COMMLOG(OS_LOG_INFO, "disk info [%s]", path.c_str());
        const auto identifier = lineIdentifier(line);
        if (!identifier) {
            continue;
        }
        COMMLOG(OS_LOG_INFO, "strDiskPath [%s]", path.c_str());
        const Identity identity = identityOf(path);
        COMMLOG(OS_LOG_INFO, "strSnapshotID [%s]", identity.lunNumber.c_str());
        if (matches(wwn, identity.wwn, *identifier)) {
            const std::string name = deviceName(path);
            rescanDevice(path, rescanDeviceCommand(name).shellCmd);
            return path;
        }
    }
    return std::string();
}

/// A disk that has the volume's name and may be it, but this user has no right to ask: said here, since the listing alone looks as if
/// there were no such disk.
void tellDenied(const Operation& operation, const std::string& path, const std::string& wwn)
{
    const std::string text = "no right to open " + path + ", which is named after the WWN \"" + wwn + "\"";
    COMMLOG(OS_LOG_ERROR, "%s", text.c_str());
    operation.note(text, kDeniedAdvice);
}

/// The same in the general route, where a disk carries several names.
std::string firstMatch(const Operation& operation, const std::map<std::string, std::vector<std::string>>& disks,
                       const std::string& wwn, const char* type, const std::string& id)
{
    std::string denied;
    for (const auto& [path, identifiers] : disks) {
        COMMLOG(OS_LOG_INFO, "strDiskPath [%s]", path.c_str());
        const Identity identity = identityOf(path);
        COMMLOG(OS_LOG_INFO, "Target %s ID [%s]", type, id.c_str());
        const bool found = std::any_of(identifiers.begin(), identifiers.end(),
                                       [&, page = &identity.wwn](const auto& name) { return matches(wwn, *page, name); });
        if (found) {
            return path;
        }
        if (identity.denied && std::find(identifiers.begin(), identifiers.end(), wwn) != identifiers.end()) {
            denied = path;
        }
    }
    if (!denied.empty()) {
        tellDenied(operation, denied, wwn);
    }
    return std::string();
}

/// Disks that can be seen by everybody, without multipath software.
std::string searchAllDisks(Operation& operation, const std::string& id, const std::string& wwn, const char* type)
{
    const RunShellCmdInfo command = listAllDisksCommand();
    const CommandOutput listing = runCommand(command);
    if (!listing.succeeded) {
        operation.record(FAILURE_REFUSED);
        COMMLOG(OS_LOG_ERROR, "run %s failed: %s", command.shellCmd.c_str(), listing.errorText.c_str());
        return std::string();
    }
    const auto disks = groupByPath(listing.lines);
    COMMLOG(OS_LOG_INFO, "=========================================\n");
    std::string path = firstMatch(operation, disks, wwn, type, id);
    if (!path.empty()) {
        operation.record(FAILURE_NONE);
        rescanDevice(path, deviceName(path));
        COMMLOG(OS_LOG_INFO, "---------GetDiskPath successfully---------!");
    }
    return path;
}

}  // namespace

std::string CDiskScannerHandlerImpl::GetDiskPathForWWN(const std::string& wwn)
{
    return performQuietly(Operation(kMultipathSearch), std::string(), [&](Operation& operation) {
        operation.endSilently();
        if (!g_multipathInstalled.load()) {
            COMMLOG(OS_LOG_ERROR, "Tendrix is not installed");
            return std::string();
        }
        const CommandOutput listing = runCommand(listDisksCommand(wwn));
        if (!listing.succeeded) {
            COMMLOG(OS_LOG_ERROR, "the device is not found");
            return std::string();
        }
        std::string path = firstMatch(listing.lines, wwn);
        operation.record(FAILURE_NONE);  // whether or not a disk was found: meant
        return path;
    });
}

std::string CDiskScannerHandlerImpl::GetDiskPath(std::string& id, std::string& wwn, MOType type)
{
    return performQuietly(Operation(kSearch), std::string(), [&](Operation& operation) {
        operation.endSilently();
        const char* name = typeName(type);
        if (name == nullptr) {
            COMMLOG(OS_LOG_ERROR, "moType is wrong!");
            operation.note("moType is wrong!", "Pass MOTYPE_LUN or MOTYPE_SNAPSHOT.");
            return std::string();
        }
        std::string path = GetDiskPathForWWN(wwn);
        if (!path.empty()) {
            COMMLOG(OS_LOG_INFO, "---------GetDiskPathForWWN successfully---------!");
            return path;
        }
        path = searchAllDisks(operation, id, wwn, name);
        if (path.empty()) {
            operation.note(std::string("no disk of this host carries the WWN \"") + wwn + "\" of " + name + " " + id,
                           kNotFoundAdvice);
        }
        return path;
    });
}
