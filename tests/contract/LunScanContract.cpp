#include "Host.h"
#include "ScanSteps.h"

namespace brevan::contract {
namespace {

const std::string kName = "scanLunAfterAttach";
const char* const kProbe = "lsscsi | grep tmp-block";
const Steps kNoMultipath = "error: Tendrix is not installed";
const Steps kPathIsNull = "warn: lun path is NULL.";

std::string scanOf(Sdk& sdk, std::string id)
{
    return sdk.scanner().scanLunAfterAttach(id);
}

const Call kScan = [](Sdk& sdk) { return scanOf(sdk, "7"); };

/// Up to the search.
Steps rescanned(const CommandResult& rescan = says(""))
{
    return {kRescanStart, command(kRescan, rescan), kRescanSuccess, shell(kProbe, 1)};
}

Steps scan(const Steps& steps)
{
    return {kLockMade, scanned(kName, readLun(), steps)};
}

/// Nothing throws: what fails before the lock is held gives an empty path.
Operation scanLunAfterAttach()
{
    return Operation(kName)
        .succeeds("found", kScan, scan({rescanned(), kNoMultipath, foundAmongAll("Lun")}), kDisk)
        .row("unreachable", kScan,
             {kLockMade, failed(kName, failed("getLun", sendUnreachable("GET /lun/7", "getLun"), kUnreachable), 1)}, "")
        .row("refused", kScan,
             {kLockMade, failed(kName, failed("getLun", sendRefused("GET /lun/7", "getLun"), kRefused), kRefused)}, "")
        .row("not found", kScan,
             scan({rescanned(), kNoMultipath, command(kListAll, prints({})),
                   "info: =========================================\n", kPathIsNull}),
             "")
        .row("the disks cannot be listed", kScan, scan({rescanned(), kNoMultipath, listingFails(), kPathIsNull}), "")
        .row("the rescan fails: the search goes on", kScan,
             scan({kRescanStart, command(kRescan, fails("no script")), "error: =============upRescan failed: no script",
                   kRescanSuccess, shell(kProbe, 1), kNoMultipath, foundAmongAll("Lun")}),
             kDisk)
        .row(
            "the lock cannot be had",
            [](Sdk& sdk) {
                Host::instance().failLock();
                return scanOf(sdk, "7");
            },
            {kLockMade, failed(kName, {readLun(), "error: Lock sem[1] failed.", "error: Get Lock Failed"}, 1)}, "")
        .refusal(
            "no ID", [](Sdk& sdk) { return scanOf(sdk, ""); },
            {kLockMade, failed(kName, "error: lunID is empty! scanLunAfterAttach", 1)}, "");
}

Operation searches()
{
    return Operation(kName).row(
        "multipath software is seen: the search goes its way first", kScan,
        scan({kRescanStart, command(kRescan, fails("no Tendrix disk")),
              "error: =============upRescan failed: no Tendrix disk", kRescanSuccess, kMultipathSeen, shell(kProbe, 1),
              foundByWwn(), "info: ---------GetDiskPathForWWN successfully---------!"}),
        kDisk);
}

/// A pause, then the next probe. By system(), unlike a snapshot's.
Operation waitsForBusyDevices()
{
    const Steps busy = shell(kProbe, 0);
    const Steps pause = "sleep: 1000000";
    return Operation(kName)
        .row("busy twice", kScan,
             scan({kRescanStart, command(kRescan, says("")), kRescanSuccess, busy, pause, busy, pause, shell(kProbe, 1),
                   kNoMultipath, foundAmongAll("Lun")}),
             kDisk)
        .row("busy for good: the search runs anyway", kScan,
             scan({kRescanStart, command(kRescan, says("")), kRescanSuccess, repeated(1500, {busy, pause}), busy,
                   kNoMultipath, foundAmongAll("Lun")}),
             kDisk);
}

void beforeDetach(Sdk& sdk, std::string id)
{
    sdk.scanner().scanLunBeforeDetach(id);
}

/// Runs no command.
Operation scanLunBeforeDetach()
{
    const std::string name = "scanLunBeforeDetach";
    const Call before = [](Sdk& sdk) { beforeDetach(sdk, "7"); };
    return Operation(name)
        .succeeds("no multipath software", before, {kLockMade, scanned(name, readLun(), kNoMultipath)})
        .row("unreachable", before,
             {kLockMade, failed(name, failed("getLun", sendUnreachable("GET /lun/7", "getLun"), kUnreachable), 1)}, "")
        .row("refused", before,
             {kLockMade, failed(name, failed("getLun", sendRefused("GET /lun/7", "getLun"), kRefused), kRefused)}, "")
        .succeeds("multipath software",
                  [](Sdk& sdk) {
                      scanOf(sdk, "7");
                      beforeDetach(sdk, "7");
                  },
                  {kLockMade, lunScanSeesMultipath(), scanned(name, readLun(), {})})
        .refusal(
            "no ID", [](Sdk& sdk) { beforeDetach(sdk, ""); },
            {kLockMade, failed(name, "error: lunID is empty! scanLunBeforeDetach", 1)}, "");
}

}  // namespace

Table lunScanContract()
{
    return {scanLunAfterAttach(), searches(), waitsForBusyDevices(), scanLunBeforeDetach()};
}

BREVAN_CONTRACT(LunScan, rowsAlone(lunScanContract()));

}  // namespace brevan::contract
