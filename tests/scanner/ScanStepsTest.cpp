#include "scanner/ScanSteps.h"

#include "scanner/ScanFixture.h"
#include "support/ManagerWithout.h"

#include <brevan/SnapshotHandler.h>

#include <future>
#include <stdexcept>

namespace brevan::test {
namespace {

constexpr Lookup<CSnapshotHandler, SnapshotMO> kLookup = {HANDLER_SNAPSHOT, "no id! ", "no handler! ",
                                                          &CSnapshotHandler::getSnapshot};

class ScanSteps : public ScanTest {
protected:
    Operation operation{"someScan"};

    std::optional<SnapshotMO> lookUpSeven() { return lookUp(operation, &manager, "7", kLookup); }

    void expectFailure(const Lines& log, int code, const std::string& text)
    {
        EXPECT_EQ(newLog(), log);
        EXPECT_EQ(lastFailure().code, code);
        EXPECT_EQ(lastFailure().text, text);
        operation.succeed();
        EXPECT_THAT(newLog(), testing::IsEmpty()) << "the operation had not ended";
    }
};

TEST_F(ScanSteps, LookUpTheVolumesRecord)
{
    expectRecord("/SNAPSHOT/", "7", kWwn);
    const auto record = lookUpSeven();
    ASSERT_TRUE(record.has_value());
    EXPECT_EQ(record->WWN, kWwn);
    EXPECT_EQ(newLog(), entered("getSnapshot"));
}

TEST_F(ScanSteps, EndForAnEmptyIdBeforeAnythingElse)
{
    EXPECT_FALSE(lookUp(operation, nullptr, "", kLookup).has_value());
    expectFailure({"error: no id! someScan", "record: someScan 1"}, 1, "no id! someScan");
}

TEST_F(ScanSteps, EndWithoutADeviceManager)
{
    EXPECT_FALSE(lookUp(operation, nullptr, "7", kLookup).has_value());
    expectFailure({"error: deviceManage is NULL! someScan", "record: someScan 1"}, 1, "deviceManage is NULL! someScan");
}

TEST_F(ScanSteps, EndWithoutTheHandler)
{
    ManagerWithout lacking(HANDLER_SNAPSHOT);
    EXPECT_FALSE(lookUp(operation, &lacking, "7", kLookup).has_value());
    EXPECT_THAT(lacking.asked, testing::ElementsAre(HANDLER_SNAPSHOT));
    expectFailure({"error: no handler! someScan", "record: someScan 1"}, 1, "no handler! someScan");
}

TEST_F(ScanSteps, EndWithTheCodeOfTheArray)
{
    expect("GET /SNAPSHOT/7", refusal(1077937880, "gone"));
    EXPECT_FALSE(lookUpSeven().has_value());
    const std::string text = "get error response, error code:1077937880, description:gone getSnapshot";
    expectFailure(failed("getSnapshot", text, 1077937880) + Lines{"record: someScan 1077937880"}, 1077937880, text);
}

TEST_F(ScanSteps, EndWithOneForAFailureWithoutACode)
{
    expect("GET /SNAPSHOT/7", sendFailure(1005));
    EXPECT_FALSE(lookUpSeven().has_value());
    const std::string text = "url error or internet error getSnapshot";
    expectFailure(failed("getSnapshot", text, 1005) + Lines{"record: someScan 1"}, 1005, text);
}

TEST_F(ScanSteps, EndWithTheReasonWhereTheLockCannotBeHad)
{
    makeSemaphore(0);
    auto waiting = std::async(std::launch::async, [&] {
        UpRescanLock lock;
        const HeldRescanLock held(lock);
        EXPECT_FALSE(requireLock(operation, held));
        return lastFailure();
    });
    EXPECT_TRUE(eventually([] { return semaphoreWaiters() == 1; }));
    const std::string set = std::to_string(semaphoreId());
    removeSemaphore();
    const Failure failure = waiting.get();
    EXPECT_EQ(failure.text, "Get Lock Failed: Identifier removed (System V semaphore, key 1235)");
    EXPECT_THAT(failure.advice, testing::StartsWith("Scan again"));
    EXPECT_THAT(newLog(), testing::ElementsAre("error: Lock sem[" + set + "] failed.", "error: Get Lock Failed",
                                               "record: someScan 1"));
}

TEST_F(ScanSteps, RescanTheHostAndHandOverWhatItSaid)
{
    expectRescan({0, {"line"}, "all of it", {}});
    EXPECT_EQ(rescanHost(operation), "all of it");
    EXPECT_THAT(newLog(), testing::ElementsAre(kRescanStart));
    EXPECT_TRUE(lastFailure().empty());
}

TEST_F(ScanSteps, KeepWhyTheRescanFailedAndWhatToDo)
{
    expectRescan(commandFailure("sudo: %s not allowed"));
    EXPECT_EQ(rescanHost(operation), "sudo: %s not allowed");
    EXPECT_THAT(newLog(), testing::ElementsAre(kRescanStart, "error: =============upRescan failed: sudo: %s not allowed"));
    EXPECT_EQ(lastFailure().operation, "someScan");
    EXPECT_EQ(lastFailure().text, "the rescan of this host failed: sudo: %s not allowed");
    EXPECT_THAT(lastFailure().advice, testing::HasSubstr("sudo"));
}

TEST_F(ScanSteps, TakeASearchThatThrowsForOneThatFoundNothing)
{
    EXPECT_EQ(searchQuietly([] { return std::string("/dev/sdc"); }), "/dev/sdc");
    EXPECT_THAT(newLog(), testing::IsEmpty());
    EXPECT_EQ(searchQuietly([]() -> std::string { throw std::runtime_error("boom"); }), "");
    EXPECT_EQ(searchQuietly([]() -> std::string { throw 1; }), "");  // NOLINT(hicpp-exception-baseclass)
    EXPECT_THAT(newLog(), testing::ElementsAre("error: GetDiskPath failed.", "error: GetDiskPath failed."));
}

}  // namespace
}  // namespace brevan::test
