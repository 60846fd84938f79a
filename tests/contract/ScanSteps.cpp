#include "ScanSteps.h"

#include <algorithm>
#include <thread>

namespace brevan::contract {

CommandResult prints(const std::vector<std::string>& lines)
{
    return {0, lines, "", {}};
}

CommandResult fails(const std::string& errorText)
{
    return {1, {}, errorText, {}};
}

CommandResult says(const std::string& text)
{
    return {0, {}, text, {}};
}

Steps scanned(const std::string& operation, const Steps& read, const Steps& more)
{
    return {enter(operation), read, more, record(operation, 0), leave(operation)};
}

Steps readLun()
{
    return done("getLun", send("GET /lun/7", R"({"ID":"7","WWN":"6a0b"})"));
}

Steps readSnapshot()
{
    return done("getSnapshot", send("GET /SNAPSHOT/7", R"({"ID":"7","WWN":"6a0b"})"));
}

Steps foundByWwn()
{
    return {command(kListByWwn, prints({kDiskLine})),
            "info: disk info [" + kDisk + "]",
            "info: strDiskPath [" + kDisk + "]",
            disk(kDisk, "6a0b"),
            "info: strSnapshotID [0]",
            command(kRescanDisk, says("")),
            "record: GetDiskPathForWWN 0"};
}

Steps notFoundByWwn()
{
    return {command(kListByWwn, fails("")), "error: the device is not found"};
}

Steps foundAmongAll(const std::string& kind)
{
    return {command(kListAll, prints({kDiskLine})),
            "info: strLine [" + kDiskLine + "]",
            "info: =========================================\n",
            "info: strDiskPath [" + kDisk + "]",
            disk(kDisk, "6a0b"),
            "info: Target " + kind + " ID [7]",
            "record: GetDiskPath 0",
            command(kRescanDisk, says("")),
            "info: ---------GetDiskPath successfully---------!"};
}

Steps listingFails()
{
    return {command(kListAll, fails("no such folder")), "record: GetDiskPath 1",
            "error: run ls -al /dev/disk/by-id | grep -v part | grep scsi- failed: no such folder"};
}

Steps lunScanSeesMultipath()
{
    return scanned("scanLunAfterAttach", readLun(),
                   {kRescanStart, command(kRescan, says("Tendrix 1.0")), kRescanSuccess, kMultipathSeen,
                    shell("lsscsi | grep tmp-block", 1), notFoundByWwn(), listingFails(), "warn: lun path is NULL."});
}

void waitFor(const std::string& line, std::ptrdiff_t times)
{
    for (std::vector<std::string> log; std::count(log.begin(), log.end(), line) < times;) {
        std::this_thread::yield();
        log = test::Recorder::instance().log();
    }
}

}  // namespace brevan::contract
