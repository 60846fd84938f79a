#include "scanner/ScanFixture.h"
#include "scanner/ScanState.h"
#include "support/ManagerWithout.h"

#include <future>
#include <stdexcept>

namespace brevan::test {
namespace {

class LunScan : public ScanTest {
protected:
    std::string scan() { return handler.scanLunAfterAttach(id); }

    void expectLun() { expectRecord("/lun/", id, wwn); }
};

/// All that a scan logs around its rescan, its notice of multipath software and its search.
Lines scanned(const Lines& rescan, const Lines& rest)
{
    return entered("scanLunAfterAttach", entered("getLun") + Lines{kRescanStart} + rescan + Lines{kRescanEnd} + rest);
}

/// A search that ends with an exception.
class BrokenSearch final : public CDiskScannerHandlerImpl {
public:
    using CDiskScannerHandlerImpl::CDiskScannerHandlerImpl;
    std::string GetDiskPath(std::string&, std::string&, MOType) override { throw std::runtime_error("boom"); }
};

TEST_F(LunScan, RescansTheHostAndFindsTheDisk)
{
    expectLun();
    expectRescan();
    const Lines search = expectSearch("Lun", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(newLog(), scanned({}, search));
    EXPECT_TRUE(lastFailure().empty());
    EXPECT_THAT(devices.shellCommands(), testing::ElementsAre("lsscsi | grep tmp-block"));
    EXPECT_THAT(fakeClock.sleeps(), testing::IsEmpty());
    EXPECT_EQ(GetScanState(), 0);
}

TEST_F(LunScan, TakesADiskThatIsNotFoundForNoFailureOfItsOwn)
{
    expectLun();
    expectRescan();
    const Lines search = expectSearch("Lun", false);
    EXPECT_EQ(scan(), "");
    EXPECT_EQ(newLog(), scanned({}, search + Lines{"warn: lun path is NULL."}));
    EXPECT_THAT(lastFailure().text, testing::HasSubstr("no disk of this host carries"));
}

TEST_F(LunScan, GoesOnAfterARescanThatFailed)
{
    for (const bool found : {true, false}) {
        expectLun();
        expectRescan(commandFailure("sudo: no"));
        const Lines search = expectSearch("Lun", found);
        EXPECT_EQ(scan(), found ? diskPath("sdc") : "");
        const Lines missing = found ? Lines{} : Lines{"warn: lun path is NULL."};
        EXPECT_EQ(newLog(), scanned({"error: =============upRescan failed: sudo: no"}, search + missing));
        EXPECT_EQ(lastFailure().text, found ? "" : "the rescan of this host failed: sudo: no");
        recorder.verify();
    }
}

TEST_F(LunScan, SearchesThroughTheMultipathSoftwareThatTheRescanMentions)
{
    expectLun();
    expectRescan(commandFailure("Tendrix 21 is here"));
    const Lines search = expectMultipathSearch(wwn, "sdc", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    const Lines found = {"info: ---------GetDiskPathForWWN successfully---------!"};
    EXPECT_EQ(newLog(), scanned({"error: =============upRescan failed: Tendrix 21 is here"},
                                Lines{"info: Tendrix is installed."} + search + found));
    EXPECT_TRUE(g_multipathInstalled.load());
}

TEST_F(LunScan, WaitsWhileATemporaryDeviceIsListed)
{
    devices.succeedShell(3);
    expectLun();
    expectRescan();
    expectSearch("Lun", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(devices.shellCommands(), std::vector<std::string>(4, "lsscsi | grep tmp-block"));
    EXPECT_EQ(fakeClock.sleeps(), std::vector<std::uint64_t>(3, 1000000));
}

TEST_F(LunScan, WaitsAtMost1500SecondsAndSearchesAllTheSame)
{
    devices.succeedShell(5000);
    expectLun();
    expectRescan();
    expectSearch("Lun", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(devices.shellCommands().size(), 1501U);
    EXPECT_EQ(fakeClock.sleeps(), std::vector<std::uint64_t>(1500, 1000000));
}

TEST_F(LunScan, TakesASearchThatThrowsForADiskThatIsNotThere)
{
    BrokenSearch broken(&manager);
    newLog();
    expectLun();
    expectRescan();
    EXPECT_EQ(broken.scanLunAfterAttach(id), "");
    EXPECT_EQ(newLog(), scanned({}, {"error: GetDiskPath failed.", "warn: lun path is NULL."}));
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(LunScan, EndsBeforeTheLockWithoutWhatItNeeds)
{
    ManagerWithout lacking(HANDLER_LUN);
    CDiskScannerHandlerImpl withoutManager;
    CDiskScannerHandlerImpl withoutHandler(&lacking);
    newLog();
    const struct {
        CDiskScannerHandlerImpl& scanner;
        const char* lun;
        const char* message;
    } cases[] = {{withoutManager, "", "lunID is empty! "},
                 {withoutManager, "7", "deviceManage is NULL! "},
                 {withoutHandler, "7", "get lunHandler fail! "}};
    for (const auto& [scanner, lun, message] : cases) {
        std::string wanted = lun;
        EXPECT_EQ(scanner.scanLunAfterAttach(wanted), "");
        EXPECT_EQ(newLog(), failed("scanLunAfterAttach", std::string(message) + "scanLunAfterAttach", 1));
        EXPECT_EQ(lastFailure().text, std::string(message) + "scanLunAfterAttach");
        scanner.scanLunBeforeDetach(wanted);
        EXPECT_EQ(newLog(), failed("scanLunBeforeDetach", std::string(message) + "scanLunBeforeDetach", 1));
    }
    EXPECT_FALSE(semaphoreWasTaken());
}

TEST_F(LunScan, RecordsWhyTheLunCouldNotBeRead)
{
    const struct {
        Answer answer;
        std::string text;
        int inner;
        int outer;
    } cases[] = {{refusal(-401, "gone"), "get error response, error code:-401, description:gone getLun", -401, -401},
                 {sendFailure(1007), "url error or internet error getLun", 1007, 1}};
    for (const auto& [answer, text, inner, outer] : cases) {
        for (const std::string operation : {"scanLunAfterAttach", "scanLunBeforeDetach"}) {
            expect("GET /lun/7", answer);
            operation == "scanLunAfterAttach" ? static_cast<void>(scan()) : handler.scanLunBeforeDetach(id);
            EXPECT_EQ(newLog(), entered(operation, failed("getLun", text, inner), outer));
            EXPECT_EQ(lastFailure().code, inner);
        }
    }
}

TEST_F(LunScan, HoldsTheLockFromBeforeTheRescanUntilAfterTheSearch)
{
    Lines values;
    const auto note = [&] { values.push_back(std::to_string(semaphoreValue())); };
    Answer lun = answer(R"({"ID":"7","WWN":")" + wwn + R"("})");
    lun.before = note;
    expect("GET /lun/7", lun);
    expectRescan(doing(note));
    expectListing(doing(note, printing({listed("scsi-3" + wwn, "sdc")})));
    devices.addDisk(diskPath("sdc"), wwn);
    expectDeviceRescan("sdc", doing(note));
    scan();
    EXPECT_THAT(values, testing::ElementsAre("1", "0", "0", "0"));
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(LunScan, EndsWhereTheLockCannotBeHad)
{
    makeSemaphore(0);
    const int set = semaphoreId();
    expectLun();
    Failure failure;
    auto scanning = std::async(std::launch::async, [&] {
        EXPECT_EQ(scan(), "");
        failure = lastFailure();
    });
    EXPECT_TRUE(eventually([] { return semaphoreWaiters() == 1; }));
    removeSemaphore();
    scanning.get();
    const Lines lockFailed = {"error: Lock sem[" + std::to_string(set) + "] failed.", "error: Get Lock Failed"};
    EXPECT_EQ(newLog(), entered("scanLunAfterAttach", entered("getLun") + lockFailed, 1));
    EXPECT_EQ(failure.text, "Get Lock Failed: Identifier removed (System V semaphore, key 1235)");
    EXPECT_THAT(failure.advice, testing::StartsWith("Scan again"));
}

TEST_F(LunScan, GivesTheLockBackWhoeverThrows)
{
    const std::function<void()> throwing[] = {[] { throw std::runtime_error("boom"); },
                                              [] { throw PlimAPIExceptionWithErrCode(5, "boom"); }, [] { throw 1; }};
    for (const auto& action : throwing) {
        expectLun();
        expectRescan(doing(action));
        EXPECT_EQ(scan(), "");
        EXPECT_EQ(semaphoreValue(), 1);
        EXPECT_THAT(newLog().back(), testing::StartsWith("record: scanLunAfterAttach "));
        expectLun();
        expectRescan();
        expectListing(doing(action));
        EXPECT_EQ(scan(), "");
        EXPECT_EQ(semaphoreValue(), 1);
        EXPECT_EQ(newLog().back(), "info: leave scanLunAfterAttach successfully!");
        recorder.verify();
    }
}

TEST_F(LunScan, RecordsAnExceptionOfTheRunnerAsAFailure)
{
    expectLun();
    expectRescan(doing([] { throw std::runtime_error("boom"); }));
    EXPECT_EQ(scan(), "");
    const std::string text = "unexpected failure: boom scanLunAfterAttach";
    EXPECT_EQ(newLog(), entered("scanLunAfterAttach", entered("getLun") + Lines{kRescanStart, "error: " + text}, 1));
    EXPECT_EQ(lastFailure().text, text);
}

TEST_F(LunScan, LetsTwoThreadsScanOneAfterTheOther)
{
    std::string second = "8";
    std::future<std::string> other;
    expectLun();
    expectRecord("/lun/", "8", kOtherWwn);
    expectRescan(doing([&] {
        other = std::async(std::launch::async, [&] { return handler.scanLunAfterAttach(second); });
        EXPECT_TRUE(eventually([] { return semaphoreWaiters() == 1; }));
    }));
    expectSearch("Lun", true);
    expectRescan();
    expectListing(printing({listed(std::string("scsi-3") + kOtherWwn, "sdd")}));
    devices.addDisk(diskPath("sdd"), kOtherWwn);
    expectDeviceRescan("sdd");
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(other.get(), diskPath("sdd"));
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(LunScan, ChecksTheLunBeforeItIsDetached)
{
    expectLun();
    handler.scanLunBeforeDetach(id);
    EXPECT_EQ(newLog(), entered("scanLunBeforeDetach", entered("getLun") + Lines{kNoMultipath}));
    EXPECT_TRUE(lastFailure().empty());
    g_multipathInstalled.store(true);
    expectLun();
    handler.scanLunBeforeDetach(id);
    EXPECT_EQ(newLog(), entered("scanLunBeforeDetach", entered("getLun")));
}

}  // namespace
}  // namespace brevan::test
