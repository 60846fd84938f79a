#include "ScanSteps.h"

#include <poll.h>

#include <string>
#include <thread>

// Two threads of a process that scan for snapshots: the second waits for the first one's rescan instead of making its own.

namespace brevan::contract {
namespace {

const std::string kName = "scanSnapshotAfterAttach";
const std::string kProbe = "100007/1/0 [lsscsi | grep tmp-block]";

std::string scanOf(Sdk& sdk, std::string id)
{
    return sdk.scanner().scanSnapshotAfterAttach(id);
}

Sdk* g_sdk = nullptr;
std::thread g_second;
std::string g_secondPath;

/// While the first thread's rescan runs, the second begins and gets as far as it can.
CommandResult beginsSecond()
{
    CommandResult rescan;
    rescan.before = [] {
        g_second = std::thread([] { g_secondPath = scanOf(*g_sdk, "8"); });
        waitFor("info: wait the scaning ...", 1);
    };
    return rescan;
}

/// The rescan has ended and been announced, but the mutex stays held while the first thread searches: the second gets time here, and
/// still writes nothing. (A second that is merely slow writes nothing either, so this may miss a mistake, but never sees a false one.)
CommandResult listsSlowly()
{
    CommandResult list = prints({kDiskLine});
    list.before = [] { poll(nullptr, 0, 50); };
    return list;
}

Steps secondBegins()
{
    return {enter(kName), done("getSnapshot", send("GET /SNAPSHOT/8", R"({"ID":"8","WWN":"6a0b"})")),
            "info: enter ScanSnapshotPreare successfully!", "info: wait the scaning ..."};
}

/// Only by way of the multipath software.
Steps secondEnds()
{
    return {"info: running the upRescan end",
            foundByWwn(),
            "info: Target Snapshot ID [8]",
            record(kName, 0),
            leave(kName),
            "stat: /opt/norvane-data-protection/dunmere/microservice/zql_backup/conf/uprescan"};
}

Steps firstFinds()
{
    return {command(kListByWwn, listsSlowly()),  "info: disk info [" + kDisk + "]",
            "info: strDiskPath [" + kDisk + "]", disk(kDisk, "6a0b"),
            "info: strSnapshotID [0]",           command(kRescanDisk, says("")),
            "record: GetDiskPathForWWN 0",       "info: ---------GetDiskPathForWWN successfully---------!"};
}

std::string scanTwice(Sdk& sdk)
{
    std::string lun = "7";
    sdk.scanner().scanLunAfterAttach(lun);
    g_sdk = &sdk;
    const std::string first = scanOf(sdk, "7");
    g_second.join();
    return first + " " + g_secondPath;
}

}  // namespace

Table sharedRescanContract()
{
    return {Operation(kName).row(
        "a second thread waits until the first one's scan is over", [](Sdk& sdk) { return scanTwice(sdk); },
        {kLockMade, lunScanSeesMultipath(), enter(kName), readSnapshot(), "info: enter ScanSnapshotPreare successfully!",
         "info: need scan snapshot!", kRescanStart, command(kRescan, beginsSecond()), secondBegins(), kRescanSuccess,
         command(kProbe, fails("")), firstFinds(), record(kName, 0), leave(kName), secondEnds()},
        kDisk + " " + kDisk)};
}

BREVAN_CONTRACT(SharedRescan, rowsAlone(sharedRescanContract()));

}  // namespace brevan::contract
