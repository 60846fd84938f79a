// Scans of snapshots that meet in one process.
#include "scanner/ScanState.h"
#include "scanner/SnapshotScanFixture.h"

#include "foundation/Clock.h"

#include <future>
#include <stdexcept>

namespace brevan::test {
namespace {

class SnapshotWait : public SnapshotScan {
protected:
    SnapshotWait() { g_multipathInstalled.store(true); }
    ~SnapshotWait() override { wakeAllWaiters(); }

    bool hasLogged(const std::string& line) const { return testing::Value(recorder.log(), testing::Contains(line)); }

    /// A second scan, of snapshot 8 with the other WWN, which starts when the first is in the middle and returns once it
    /// waits.
    void startWaitingScan()
    {
        other = std::async(std::launch::async, [this] { return handler.scanSnapshotAfterAttach(otherId); });
        EXPECT_TRUE(eventually([this] { return hasLogged("info: wait the scaning ..."); }));
    }

    std::string otherId = "8";
    std::future<std::string> other;
};

/// Whenever it is asked for the time it looks whether the waiters could resume.
class WatchingClock final : public Clock {
public:
    WatchingClock() : m_other(clockSeam().replace(*this)) {}
    ~WatchingClock() override { clockSeam().replace(m_other); }

    timeval now() override
    {
        waitersCouldResume = mutexIsFree();
        return {1614834367, 0};
    }
    void sleepMicroseconds(std::uint64_t) override {}

    bool waitersCouldResume = false;

private:
    Clock& m_other;
};

TEST_F(SnapshotWait, LetsAnotherThreadWaitForItsRescanInsteadOfRescanning)
{
    expectSnapshot();
    expectRecord("/SNAPSHOT/", otherId, kOtherWwn);
    expectRescan(doing([this] { startWaitingScan(); }));
    expectBusyProbe(commandFailure(""));
    const Lines search = expectMultipathSearch(wwn, "sdc", true);
    const Lines otherSearch = expectMultipathSearch(kOtherWwn, "sdd", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(other.get(), diskPath("sdd"));
    const Lines first = {kRescanEnd};
    const Lines found = {"info: ---------GetDiskPathForWWN successfully---------!", "record: scanSnapshotAfterAttach 0",
                         "info: leave scanSnapshotAfterAttach successfully!"};
    const Lines otherStart = Lines{"info: enter scanSnapshotAfterAttach successfully!"} + entered("getSnapshot") +
                             Lines(kWaited.begin(), kWaited.end() - 1);
    const Lines otherEnd = Lines{kWaited.back()} + otherSearch +
                           Lines{"info: Target Snapshot ID [8]", "record: scanSnapshotAfterAttach 0",
                                 "info: leave scanSnapshotAfterAttach successfully!"};
    const Lines start = Lines{"info: enter scanSnapshotAfterAttach successfully!"} + entered("getSnapshot") + kNeedsScan +
                        Lines{kRescanStart};
    EXPECT_EQ(newLog(), start + otherStart + first + search + found + otherEnd);
}

TEST_F(SnapshotWait, WakesTheWaitingThreadAlsoWhereItFailsByAnException)
{
    expectSnapshot();
    expectRecord("/SNAPSHOT/", otherId, kOtherWwn);
    expectRescan(doing([this] {
        startWaitingScan();
        throw std::runtime_error("boom");
    }));
    expectMultipathSearch(kOtherWwn, "sdd", true);
    EXPECT_EQ(scan(), "");
    ASSERT_EQ(other.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_EQ(other.get(), diskPath("sdd"));
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(SnapshotWait, RescansItselfWhereTheAwaitedRescanDidNotBringTheDisk)
{
    expectSnapshot();
    expectRecord("/SNAPSHOT/", otherId, kOtherWwn);
    expectRescan(doing([this] { startWaitingScan(); }));
    expectBusyProbe(commandFailure(""));
    expectMultipathSearch(wwn, "sdc", true);
    expectListing(kOtherWwn, commandFailure(""));
    expectRescan();
    expectBusyProbe(commandFailure(""));
    expectMultipathSearch(kOtherWwn, "sdd", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_EQ(other.get(), diskPath("sdd"));
    EXPECT_TRUE(hasLogged(kShortcutFailed[0]));
}

TEST_F(SnapshotWait, IsOverOnlyWhenTheOtherScanHasWrittenItsRecord)
{
    const WatchingClock clock;
    expectSnapshot();
    expectRescan();
    expectBusyProbe(commandFailure(""));
    expectMultipathSearch(wwn, "sdc", true);
    EXPECT_EQ(scan(), diskPath("sdc"));
    EXPECT_FALSE(clock.waitersCouldResume) << "when the scan wrote its last record";
    EXPECT_TRUE(mutexIsFree());
}

}  // namespace
}  // namespace brevan::test
