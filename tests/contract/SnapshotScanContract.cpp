#include "Host.h"
#include "ScanSteps.h"

namespace brevan::contract {
namespace {

const std::string kName = "scanSnapshotAfterAttach";
const std::string kProbe = "100007/1/0 [lsscsi | grep tmp-block]";
const Steps kNoMultipath = "error: Tendrix is not installed";
const Steps kPathIsNull = "warn: snapshot path is NULL.";
const std::string kSettingFile = "stat: /opt/norvane-data-protection/dunmere/microservice/zql_backup/conf/uprescan";

/// The shortcut without a rescan has an enter line, and neither leave line nor record.
const Steps kShortcut = "info: enter ScanSnapshotPreare successfully!";
const Steps kNoShortcut = {kShortcut, "error: Tendrix is not installed."};

std::string scanOf(Sdk& sdk, std::string id)
{
    return sdk.scanner().scanSnapshotAfterAttach(id);
}

const Call kScan = [](Sdk& sdk) { return scanOf(sdk, "7"); };

/// Up to the search. The multipath software is told before the success, unlike in a LUN's scan.
Steps rescanned(const CommandResult& rescan = says(""))
{
    return {kRescanStart, command(kRescan, rescan), kRescanSuccess, command(kProbe, fails(""))};
}

Steps scan(const Steps& steps)
{
    return {kLockMade, scanned(kName, readSnapshot(), {kNoShortcut, steps})};
}

Operation scanSnapshotAfterAttach()
{
    return Operation(kName)
        .succeeds("found", kScan, scan({rescanned(), kNoMultipath, foundAmongAll("Snapshot")}), kDisk)
        .row("unreachable", kScan,
             {kLockMade,
              failed(kName, failed("getSnapshot", sendUnreachable("GET /SNAPSHOT/7", "getSnapshot"), kUnreachable), 1)},
             "")
        .row("refused", kScan,
             {kLockMade,
              failed(kName, failed("getSnapshot", sendRefused("GET /SNAPSHOT/7", "getSnapshot"), kRefused), kRefused)},
             "")
        .row("the disks cannot be listed", kScan, scan({rescanned(), kNoMultipath, listingFails(), kPathIsNull}), "")
        .row("the rescan fails and mentions multipath software", kScan,
             scan({kRescanStart, command(kRescan, fails("no Tendrix disk")),
                   "error: =============upRescan failed: no Tendrix disk", kMultipathSeen, kRescanSuccess,
                   command(kProbe, fails("")), foundByWwn(), "info: ---------GetDiskPathForWWN successfully---------!"}),
             kDisk)
        .row(
            "the lock cannot be had",
            [](Sdk& sdk) {
                Host::instance().failLock();
                return scanOf(sdk, "7");
            },
            {kLockMade,
             failed(kName, {readSnapshot(), kNoShortcut, "error: Lock sem[1] failed.", "error: Get Lock Failed"}, 1)},
            "")
        .refusal(
            "no ID", [](Sdk& sdk) { return scanOf(sdk, ""); },
            {kLockMade, failed(kName, "error: snapshotID is empty! scanSnapshotAfterAttach", 1)}, "");
}

/// The next probe, then a pause. By the runner, unlike a LUN's.
Operation waitsForBusyDevices()
{
    const Steps busy = command(kProbe, prints({"[2:0:0:9] tmp-block"}));
    const Steps pause = "sleep: 1000000";
    const Steps start = {kRescanStart, command(kRescan, says("")), kRescanSuccess, busy};
    const Steps search = {kNoMultipath, foundAmongAll("Snapshot")};
    return Operation(kName)
        .row("busy twice", kScan, scan({start, busy, pause, command(kProbe, fails("")), pause, search}), kDisk)
        .row("busy for good: the search runs anyway", kScan, scan({start, repeated(1500, {busy, pause}), search}), kDisk);
}

/// The first of the process: multipath software is known, but no snapshot has been scanned.
Steps firstScan(const CommandResult& rescan, const Steps& search)
{
    return {kLockMade, lunScanSeesMultipath(),
            scanned(kName, readSnapshot(), {kShortcut, "info: need scan snapshot!", rescanned(rescan), search})};
}

const Steps kNothing = {notFoundByWwn(), listingFails(), kPathIsNull};
const Steps kRescanHasEnded = {kShortcut, "info: wait the scaning ...", "info: running the upRescan end"};
const Steps kTarget = "info: Target Snapshot ID [7]";

/// After a LUN's scan that sees the multipath software, and a first scan of a snapshot.
Call scanAgain(bool withSettingFile)
{
    return [withSettingFile](Sdk& sdk) {
        std::string lun = "7";
        sdk.scanner().scanLunAfterAttach(lun);
        scanOf(sdk, "7");
        if (withSettingFile) {
            Host::instance().useRescanSettingFile();
        }
        const std::string path = scanOf(sdk, "7");
        waitFor(kRescan, withSettingFile ? 3 : 2);
        return path;
    };
}

Operation takesTheShortcut()
{
    const Steps first = firstScan(says(""), kNothing);
    return Operation(kName)
        .row("found without lock and rescan", scanAgain(false),
             {first, scanned(kName, readSnapshot(), {kRescanHasEnded, foundByWwn(), kTarget}), kSettingFile}, kDisk)
        .row("found, and a rescan in the background where the setting file is", scanAgain(true),
             {first, scanned(kName, readSnapshot(), {kRescanHasEnded, foundByWwn(), kTarget}), kSettingFile,
              command(kRescan, says(""))},
             kDisk)
        .row("not found: its own rescan after all", scanAgain(false),
             {first, scanned(kName, readSnapshot(),
                             {kRescanHasEnded, notFoundByWwn(), "info: The target lun is not found.",
                              "info: exit ScanSnapshotPreare successfully!", rescanned(), kNothing})},
             "");
}

void beforeDetach(Sdk& sdk, std::string id)
{
    sdk.scanner().scanSnapshotBeforeDetach(id);
}

/// Checks no ID and asks the array nothing. It ends with "exit", without an exclamation mark, before its record.
Operation scanSnapshotBeforeDetach()
{
    const std::string name = "scanSnapshotBeforeDetach";
    const Steps end = {"info: exit scanSnapshotBeforeDetach successfully", record(name, 0)};
    return Operation(name)
        .succeeds("no multipath software", [](Sdk& sdk) { beforeDetach(sdk, "7"); },
                  {kLockMade, enter(name), kNoMultipath, end})
        .succeeds("no ID", [](Sdk& sdk) { beforeDetach(sdk, ""); }, {kLockMade, enter(name), kNoMultipath, end})
        .row(
            "multipath software",
            [](Sdk& sdk) {
                std::string lun = "7";
                sdk.scanner().scanLunAfterAttach(lun);
                beforeDetach(sdk, "7");
            },
            {kLockMade, lunScanSeesMultipath(), enter(name), end}, "");
}

}  // namespace

Table snapshotScanContract()
{
    return {scanSnapshotAfterAttach(), waitsForBusyDevices(), takesTheShortcut(), scanSnapshotBeforeDetach()};
}

BREVAN_CONTRACT(SnapshotScan, rowsAlone(snapshotScanContract()));

}  // namespace brevan::contract
