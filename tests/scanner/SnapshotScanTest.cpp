#include "scanner/ScanState.h"
#include "scanner/SnapshotScanFixture.h"
#include "support/ManagerWithout.h"

#include <future>
#include <stdexcept>

namespace brevan::test {
namespace {

/// A process that has seen multipath software and has rescanned.
class SnapshotShortcut : public SnapshotScan {
protected:
    SnapshotShortcut()
    {
        g_multipathInstalled.store(true);
        SetScanState(UPRESCAN_ENDED);
    }

    const std::size_t threads = threadCount();
    bool awaitNoFurtherThread() const
    {
        return eventually([this] { return threadCount() == threads; });
    }
};

TEST_F(SnapshotScan, RescansTheHostAndFindsTheDisk)
{
    expectSnapshot();
    expectRescan();
    expectBusyProbe(commandFailure(""));
    const Lines search = expectSearch("Snapshot", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(newLog(), scanned(kNoShortcut, {}, search));
    EXPECT_TRUE(lastFailure().empty());
    EXPECT_THAT(devices.shellCommands(), testing::IsEmpty());
    EXPECT_THAT(fakeClock.sleeps(), testing::IsEmpty());
    EXPECT_EQ(GetScanState(), 2);
}

TEST_F(SnapshotScan, TakesADiskThatIsNotFoundForNoFailureOfItsOwn)
{
    expectSnapshot();
    expectRescan(commandFailure("sudo: no"));
    expectBusyProbe(commandFailure(""));
    const Lines search = expectSearch("Snapshot", false);
    EXPECT_EQ(scan(), "");
    EXPECT_EQ(newLog(), scanned(kNoShortcut, {"error: =============upRescan failed: sudo: no"},
                                search + Lines{"warn: snapshot path is NULL."}));
    EXPECT_EQ(lastFailure().text, "the rescan of this host failed: sudo: no");
}

TEST_F(SnapshotScan, NoticesMultipathSoftwareBeforeItSaysThatTheRescanIsOver)
{
    expectSnapshot();
    expectRescan({0, {}, "Tendrix", {}});
    expectBusyProbe(commandFailure(""));
    const Lines search = expectMultipathSearch(wwn, "sdc", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(newLog(), scanned(kNoShortcut, {"info: Tendrix is installed."},
                                search + Lines{"info: ---------GetDiskPathForWWN successfully---------!"}));
}

TEST_F(SnapshotScan, NeedsARescanBeforeTheFirstOfTheProcess)
{
    g_multipathInstalled.store(true);
    expectSnapshot();
    expectRescan();
    expectBusyProbe(commandFailure(""));
    const Lines search = expectMultipathSearch(wwn, "sdc", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(newLog(), scanned(kNeedsScan, {}, search + Lines{"info: ---------GetDiskPathForWWN successfully---------!"}));
}

TEST_F(SnapshotScan, PausesAfterEachRepetitionOfTheProbe)
{
    expectSnapshot();
    expectRescan();
    expectBusyProbe({});
    expectBusyProbe({});
    expectBusyProbe(commandFailure(""));
    expectSearch("Snapshot", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(fakeClock.sleeps(), std::vector<std::uint64_t>(2, 1000000));
}

TEST_F(SnapshotScan, WaitsAtMost1500SecondsAndSearchesAllTheSame)
{
    expectSnapshot();
    expectRescan();
    for (int i = 0; i < 1501; ++i) {
        expectBusyProbe({});
    }
    expectSearch("Snapshot", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(fakeClock.sleeps(), std::vector<std::uint64_t>(1500, 1000000));
}

TEST_F(SnapshotScan, EndsBeforeTheLockWithoutWhatItNeeds)
{
    ManagerWithout lacking(HANDLER_SNAPSHOT);
    CDiskScannerHandlerImpl withoutManager;
    CDiskScannerHandlerImpl withoutHandler(&lacking);
    newLog();
    const struct {
        CDiskScannerHandlerImpl& scanner;
        const char* snapshot;
        const char* message;
    } cases[] = {{withoutManager, "", "snapshotID is empty! "},
                 {withoutManager, "7", "deviceManage is NULL! "},
                 {withoutHandler, "7", "get snapshotHandler fail! "}};
    for (const auto& [scanner, snapshot, message] : cases) {
        std::string wanted = snapshot;
        const std::string text = std::string(message) + "scanSnapshotAfterAttach";
        EXPECT_EQ(scanner.scanSnapshotAfterAttach(wanted), "");
        EXPECT_EQ(newLog(), failed("scanSnapshotAfterAttach", text, 1));
        EXPECT_EQ(lastFailure().text, text);
    }
    EXPECT_FALSE(semaphoreWasTaken());
    EXPECT_EQ(GetScanState(), 0);
}

TEST_F(SnapshotScan, RecordsWhyTheSnapshotCouldNotBeRead)
{
    const struct {
        Answer answer;
        std::string text;
        int inner;
        int outer;
    } cases[] = {{refusal(9, "gone"), "get error response, error code:9, description:gone getSnapshot", 9, 9},
                 {sendFailure(1007), "url error or internet error getSnapshot", 1007, 1}};
    for (const auto& [answer, text, inner, outer] : cases) {
        expect("GET /SNAPSHOT/7", answer);
        EXPECT_EQ(scan(), "");
        EXPECT_EQ(newLog(), entered("scanSnapshotAfterAttach", failed("getSnapshot", text, inner), outer));
        EXPECT_EQ(lastFailure().code, inner);
    }
}

TEST_F(SnapshotScan, HoldsTheLockAndTellsHowFarItIs)
{
    Lines seen;
    const auto note = [&] { seen.push_back(std::to_string(semaphoreValue()) + std::to_string(GetScanState())); };
    expectSnapshot();
    expectRescan(doing(note));
    expectBusyProbe(doing(note, commandFailure("")));
    expectListing(doing(note, printing({listed("scsi-3" + wwn, "sdc")})));
    devices.addDisk(diskPath("sdc"), wwn);
    expectDeviceRescan("sdc", doing(note));
    scan();
    EXPECT_THAT(seen, testing::ElementsAre("01", "01", "02", "02"));
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(SnapshotScan, EndsWhereTheLockCannotBeHad)
{
    makeSemaphore(0);
    const int set = semaphoreId();
    expectSnapshot();
    auto scanning = std::async(std::launch::async, [this] { return scan(); });
    EXPECT_TRUE(eventually([] { return semaphoreWaiters() == 1; }));
    removeSemaphore();
    EXPECT_EQ(scanning.get(), "");
    const Lines lockFailed = {"error: Lock sem[" + std::to_string(set) + "] failed.", "error: Get Lock Failed"};
    EXPECT_EQ(newLog(), entered("scanSnapshotAfterAttach", entered("getSnapshot") + kNoShortcut + lockFailed, 1));
    EXPECT_EQ(GetScanState(), 0) << "no rescan was announced";
}

TEST_F(SnapshotScan, GivesTheLockBackAndAnnouncesTheEndWhoeverThrows)
{
    const std::function<void()> throwing[] = {[] { throw std::runtime_error("boom"); }, [] { throw 1; }};
    for (const auto& action : throwing) {
        for (int probes = 0; probes < 3; ++probes) {
            SetScanState(UPRESCAN_NONE);
            expectSnapshot();
            expectRescan(probes == 0 ? doing(action) : CommandResult());
            for (int i = 1; i <= probes; ++i) {
                expectBusyProbe(i == probes ? doing(action) : CommandResult());
            }
            EXPECT_EQ(scan(), "");
            EXPECT_EQ(newLog().back(), "record: scanSnapshotAfterAttach 1");
            EXPECT_EQ(semaphoreValue(), 1);
            EXPECT_EQ(GetScanState(), 2);
            EXPECT_TRUE(mutexIsFree());
            recorder.verify();
        }
    }
}

TEST_F(SnapshotScan, TakesASearchThatThrowsForADiskThatIsNotThere)
{
    class BrokenSearch final : public CDiskScannerHandlerImpl {
    public:
        using CDiskScannerHandlerImpl::CDiskScannerHandlerImpl;
        std::string GetDiskPath(std::string&, std::string&, MOType) override { throw std::runtime_error("boom"); }
    };
    BrokenSearch broken(&manager);
    newLog();
    expectSnapshot();
    expectRescan();
    expectBusyProbe(commandFailure(""));
    EXPECT_EQ(broken.scanSnapshotAfterAttach(id), "");
    EXPECT_EQ(newLog(), scanned(kNoShortcut, {}, {"error: GetDiskPath failed.", "warn: snapshot path is NULL."}));
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(SnapshotShortcut, FindsTheDiskWithoutLockAndRescan)
{
    expectSnapshot();
    const Lines search = expectMultipathSearch(wwn, "sdc", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(newLog(), entered("scanSnapshotAfterAttach",
                                entered("getSnapshot") + kWaited + search + Lines{"info: Target Snapshot ID [7]"}));
    EXPECT_FALSE(semaphoreWasTaken());
    EXPECT_TRUE(awaitNoFurtherThread());
    EXPECT_TRUE(lastFailure().empty());
}

TEST_F(SnapshotShortcut, RescansWhereItDoesNotFindTheDisk)
{
    expectSnapshot();
    expectListing(wwn, printing({}));
    expectRescan();
    expectBusyProbe(commandFailure(""));
    const Lines search = expectMultipathSearch(wwn, "sdc", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    const Lines missed = kWaited + Lines{"record: GetDiskPathForWWN 0"} + kShortcutFailed;
    const Lines found = {"info: ---------GetDiskPathForWWN successfully---------!"};
    EXPECT_EQ(newLog(), scanned(missed, {}, search + found));
    EXPECT_TRUE(awaitNoFurtherThread());
}

TEST_F(SnapshotShortcut, RescansInTheBackgroundWhereTheSettingFileExists)
{
    devices.addFile("/opt/norvane-data-protection/dunmere/microservice/zql_backup/conf/uprescan");
    std::promise<void> release;
    std::promise<void> started;
    expectSnapshot();
    expectMultipathSearch(wwn, "sdc", true);
    expectRescan(doing([&] {
        started.set_value();
        EXPECT_EQ(release.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready) << "the scan waits";
    }));
    EXPECT_EQ(scan(), diskPath("sdc"));  // it does not wait for the rescan
    EXPECT_EQ(started.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_EQ(newLog().back(), "info: leave scanSnapshotAfterAttach successfully!");
    release.set_value();
    EXPECT_TRUE(awaitNoFurtherThread());
    EXPECT_THAT(newLog(), testing::IsEmpty());
}

TEST_F(SnapshotShortcut, SurvivesABackgroundRescanThatThrows)
{
    devices.addFile("/opt/norvane-data-protection/dunmere/microservice/zql_backup/conf/uprescan");
    std::promise<void> started;
    expectSnapshot();
    expectMultipathSearch(wwn, "sdc", true);
    expectRescan(doing([&] {
        started.set_value();
        throw std::runtime_error("boom");
    }));
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(started.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_TRUE(awaitNoFurtherThread());
}

TEST_F(SnapshotShortcut, ChecksOnlyTheSoftwareBeforeASnapshotIsDetached)
{
    std::string none;
    const Lines leave = {"info: exit scanSnapshotBeforeDetach successfully", "record: scanSnapshotBeforeDetach 0"};
    for (const bool installed : {true, false}) {
        g_multipathInstalled.store(installed);
        handler.scanSnapshotBeforeDetach(none);
        const Lines said = installed ? Lines{} : Lines{kNoMultipath};
        EXPECT_EQ(newLog(), Lines{"info: enter scanSnapshotBeforeDetach successfully!"} + said + leave);
        EXPECT_TRUE(lastFailure().empty());
    }
}

TEST_F(SnapshotShortcut, CanBeTriedAlone)
{
    g_multipathInstalled.store(false);
    EXPECT_EQ(handler.ScanSnapshotPreare("7", wwn), "");
    EXPECT_EQ(newLog(), kNoShortcut);
    g_multipathInstalled.store(true);
    const Lines search = expectMultipathSearch(wwn, "sdc", true);
    EXPECT_EQ(handler.ScanSnapshotPreare("7", wwn), diskPath("sdc"));
    EXPECT_EQ(newLog(), kWaited + search + Lines{"info: Target Snapshot ID [7]"});
    expectListing(wwn, commandFailure(""));
    EXPECT_EQ(handler.ScanSnapshotPreare("7", wwn), "");
    EXPECT_EQ(newLog(), kWaited + Lines{"error: the device is not found"} + kShortcutFailed);
    SetScanState(UPRESCAN_NONE);
    EXPECT_EQ(handler.ScanSnapshotPreare("7", wwn), "");
    EXPECT_EQ(newLog(), kNeedsScan);
}

}  // namespace
}  // namespace brevan::test
