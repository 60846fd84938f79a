#ifndef BREVAN_DISKSCANNERHANDLER_H
#define BREVAN_DISKSCANNERHANDLER_H

#include <brevan/Handler.h>
#include <brevan/StorageRecords.h>

#include <string>

/// Finds the disk of a volume on this host. See CHandler for what holds for every operation, and mind these deviations:
///   - Nothing throws. An empty path means that there is no such disk or that something failed: brevan::lastFailure()
///     says which.
///   - The after-attach scans hold the host-wide rescan lock (System V semaphore, key 1235, shared with all processes of
///     the host that use this library) from before the rescan until after the disk search, wait for it without a time
///     limit, and then up to 1500 s while a temporary block device ("tmp-block") is listed by lsscsi.
///   - So they may block for long: for others' scans, for the rescan (600 s unless set otherwise in the transport's
///     settings), for busy devices, and up to 60 s for each disk that does not answer. They may be repeated, and called
///     from several threads, which then wait for each other.
///   - They need the rescan script under /opt/root_tool/common, allowed for sudo, and the right to open disks (group
///     disk).
///
/// A disk is the volume's where the first designator of its page 0x83 (SPC-5, 7.7.6 "Device Identification VPD page"), in
/// lower-case hexadecimal, and the identifier in its name under /dev/disk/by-id both equal the volume's WWN.
class BREVAN_API CDiskScannerHandler : public CHandler {
public:
    ~CDiskScannerHandler() override;

    /// Rescans this host and returns the path of the LUN's disk, "/dev/disk/by-id/../../sdX", not normalised; or empty.
    virtual std::string scanLunAfterAttach(std::string& lunId) = 0;

    /// The same for a snapshot. Where multipath software was seen and this process scans for a snapshot already, or did
    /// before, it waits for the end of that rescan and searches without lock and rescan of its own; only where that finds
    /// nothing does it rescan. A disk found so is followed by a rescan in the background, in a thread that nobody waits
    /// for, where the host has the setting file "uprescan".
    virtual std::string scanSnapshotAfterAttach(std::string& snapshotId) = 0;

    /// To be called before the volume is detached. Checks that the LUN can be read (one request), brevan::lastFailure()
    /// says whether it could; changes nothing on this host.
    virtual void scanLunBeforeDetach(std::string& lunId) = 0;

    /// To be called before the volume is detached. Changes nothing on this host and asks the array nothing; the ID is not
    /// checked.
    virtual void scanSnapshotBeforeDetach(std::string& snapshotId) = 0;

    /// Searches the disks that are there already, without rescan and lock, for one with the identifier `wwn` (lower-case
    /// hexadecimal). `id`, the volume's ID, is for the log only. `type`: MOTYPE_LUN or MOTYPE_SNAPSHOT, anything else gives
    /// an empty path. A disk that was found is rescanned once, so that its size is current. Writes no enter and no leave
    /// line, and a record only where a disk was found or the disks could not be listed.
    virtual std::string GetDiskPath(std::string& id, std::string& wwn, MOType type) = 0;
};

#endif
