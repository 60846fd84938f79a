#include "ScanSteps.h"

namespace brevan::contract {
namespace {

const std::string kName = "GetDiskPath";
const Steps kNoMultipath = "error: Tendrix is not installed";
const char* const kRuler = "info: =========================================\n";

std::string pathOf(Sdk& sdk, std::string wwn, MOType type)
{
    std::string id = "7";
    return sdk.scanner().GetDiskPath(id, wwn, type);
}

const Call kSearch = [](Sdk& sdk) { return pathOf(sdk, "6a0b", MOTYPE_LUN); };

std::string link(const std::string& name, const std::string& target)
{
    return "lrwxrwxrwx 1 root root 9 Mar  4 05:06 " + name + " -> ../../" + target;
}

Steps listing(const std::vector<std::string>& lines)
{
    Steps steps = command(kListAll, prints(lines));
    for (const std::string& line : lines) {
        steps += "info: strLine [" + line + "]";
    }
    return {kLockMade, kNoMultipath, steps, kRuler};
}

/// One candidate, whose page holds this identifier.
Steps candidate(const std::string& device, const std::string& designator)
{
    const std::string path = "/dev/disk/by-id/../../" + device;
    return {"info: strDiskPath [" + path + "]", disk(path, designator), "info: Target Lun ID [7]"};
}

const Steps kFound = {"record: GetDiskPath 0", command(kRescanDisk, says("")),
                      "info: ---------GetDiskPath successfully---------!"};

/// Neither enter nor leave line. A record where a disk was found and where the disks cannot be listed, none where none matches.
Operation getDiskPath()
{
    return Operation(kName)
        .succeeds("a LUN's disk", kSearch, {kLockMade, kNoMultipath, foundAmongAll("Lun")}, kDisk)
        .succeeds(
            "a snapshot's disk", [](Sdk& sdk) { return pathOf(sdk, "6a0b", MOTYPE_SNAPSHOT); },
            {kLockMade, kNoMultipath, foundAmongAll("Snapshot")}, kDisk)
        .row("no disk matches: no record", kSearch, {listing({link("scsi-36a0c", "sdc")}), candidate("sdc", "6a0c")}, "")
        .row("the disks cannot be listed", kSearch, {kLockMade, kNoMultipath, listingFails()}, "")
        .row("the disk's rescan fails: found all the same", kSearch,
             {listing({link("scsi-36a0b", "sdc")}), candidate("sdc", "6a0b"), "record: GetDiskPath 0",
              command(kRescanDisk, fails("no such device")), "error: run sdc failed: no such device",
              "info: ---------GetDiskPath successfully---------!"},
             kDisk)
        .refusal(
            "another type", [](Sdk& sdk) { return pathOf(sdk, "6a0b", MOTYPE_HOST); },
            {kLockMade, "error: moType is wrong!"}, "");
}

Operation candidates()
{
    const std::string sdb = "/dev/disk/by-id/../../sdb";
    return Operation(kName)
        .row("in the order of their paths; both of a disk's names count", kSearch,
             {listing({link("scsi-36a0b", "sdc"), link("wwn-0x6a0a", "sdb"), link("wwn-0x6a0b", "sdc")}),
              candidate("sdb", "6a0a"), candidate("sdc", "6a0b"), kFound},
             kDisk)
        .row("the name and the page must both be the volume's", kSearch,
             {listing({link("scsi-36a0b", "sdb"), link("scsi-36a0c", "sdc")}), candidate("sdb", "6a0c"),
              candidate("sdc", "6a0b")},
             "")
        .row("a disk that opens neither way does not match", kSearch,
             {listing({link("scsi-36a0b", "sdb"), link("scsi-36a0b", "sdc")}), "info: strDiskPath [" + sdb + "]",
              unopenable(sdb), "info: Target Lun ID [7]", candidate("sdc", "6a0b"), kFound},
             kDisk)
        .row(
            "capital letters never match", [](Sdk& sdk) { return pathOf(sdk, "6A0B", MOTYPE_LUN); },
            {listing({link("scsi-36a0b", "sdc")}), candidate("sdc", "6a0b")}, "")
        .row("lines that name no disk are passed over", kSearch,
             {kLockMade, kNoMultipath, command(kListAll, prints({"total 0", link("scsi-36a0b", "sdc")})),
              "info: strLine [" + link("scsi-36a0b", "sdc") + "]", kRuler, candidate("sdc", "6a0b"), kFound},
             kDisk);
}

/// The identifier is the page's first designator, of at most 31 bytes.
Operation identifiers()
{
    const std::string longest(62, 'a');
    const std::string tooLong(64, 'a');
    return Operation(kName)
        .row(
            "31 bytes", [longest](Sdk& sdk) { return pathOf(sdk, longest, MOTYPE_LUN); },
            {listing({link("scsi-3" + longest, "sdc")}), candidate("sdc", longest), kFound}, kDisk)
        .row(
            "32 bytes", [tooLong](Sdk& sdk) { return pathOf(sdk, tooLong, MOTYPE_LUN); },
            {listing({link("scsi-3" + tooLong, "sdc")}), candidate("sdc", tooLong)}, "");
}

std::string searchByWwn(Sdk& sdk, const std::string& wwn)
{
    std::string lun = "7";
    sdk.scanner().scanLunAfterAttach(lun);
    return pathOf(sdk, wwn, MOTYPE_LUN);
}

/// The last four of 16 bytes are told as a number of 32 bits with a sign.
Operation lunNumbers()
{
    const std::string head = "6a0b00112233445566778899";
    const auto search = [](const std::string& wwn) -> Call { return [wwn](Sdk& sdk) { return searchByWwn(sdk, wwn); }; };
    const auto found = [](const std::string& wwn, const std::string& number) -> Steps {
        return {kLockMade,
                lunScanSeesMultipath(),
                command("100008/0/0 [ ls -al /dev/disk/by-id | grep ? | grep -v part | grep scsi-] (" + wwn + ")",
                        prints({link("scsi-3" + wwn, "sdc")})),
                "info: disk info [" + kDisk + "]",
                "info: strDiskPath [" + kDisk + "]",
                disk(kDisk, wwn),
                "info: strSnapshotID [" + number + "]",
                command(kRescanDisk, says("")),
                "record: GetDiskPathForWWN 0",
                "info: ---------GetDiskPathForWWN successfully---------!"};
    };
    return Operation(kName)
        .row("266", search(head + "0000010a"), found(head + "0000010a", "266"), kDisk)
        .row("all bits set", search(head + "ffffffff"), found(head + "ffffffff", "-1"), kDisk)
        // -2147483648, of which ten characters are kept.
        .row("the sign bit", search(head + "80000000"), found(head + "80000000", "-214748364"), kDisk);
}

/// By way of the multipath software, which a LUN's scan has seen: a record of its own name, whether a disk matches or not.
Operation byWwn()
{
    const Call search = [](Sdk& sdk) { return searchByWwn(sdk, "6a0b"); };
    const Steps start = {kLockMade, lunScanSeesMultipath()};
    const Steps otherDisk = {command(kListByWwn, prints({link("scsi-36a0b", "sdc")})),
                             "info: disk info [" + kDisk + "]",
                             "info: strDiskPath [" + kDisk + "]",
                             disk(kDisk, "6a0c"),
                             "info: strSnapshotID [0]",
                             "record: GetDiskPathForWWN 0"};
    const Steps rescanFails = {
        command(kListByWwn, prints({link("scsi-36a0b", "sdc")})),
        "info: disk info [" + kDisk + "]",
        "info: strDiskPath [" + kDisk + "]",
        disk(kDisk, "6a0b"),
        "info: strSnapshotID [0]",
        command(kRescanDisk, fails("no such device")),
        "error: run sudo /opt/root_tool/common/security_sudo_v3.sh dev_rescan '?' failed: no such device",
        "record: GetDiskPathForWWN 0"};
    const char* const kSuccess = "info: ---------GetDiskPathForWWN successfully---------!";
    return Operation(kName)
        .row("found", search, {start, foundByWwn(), kSuccess}, kDisk)
        .row("the disk's rescan fails: found all the same", search, {start, rescanFails, kSuccess}, kDisk)
        .row("nothing listed: all disks are searched, one record", search, {start, notFoundByWwn(), foundAmongAll("Lun")},
             kDisk)
        .row("no match: all disks are searched, two records", search, {start, otherDisk, listingFails()}, "");
}

}  // namespace

Table diskPathContract()
{
    return {getDiskPath(), candidates(), identifiers(), lunNumbers(), byWwn()};
}

BREVAN_CONTRACT(DiskPath, rowsAlone(diskPathContract()));

}  // namespace brevan::contract
