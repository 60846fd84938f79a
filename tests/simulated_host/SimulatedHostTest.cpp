// The search for a disk on a host that is as odd as disks come: it finds the right disk or none, never a wrong one. Runs on the
// simulated host and nowhere else.
#include "SimulatedHost.h"

#include <brevan/LastFailure.h>

#include <sys/sem.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

namespace brevan::test {
namespace {

constexpr key_t kRescanLock = 1235;

TEST_F(SimulatedHost, FindsTheDiskOfAnAttachedLun)
{
    EXPECT_EQ(scan(), "/dev/disk/by-id/../../" + device);
    EXPECT_TRUE(lastFailure().empty()) << lastFailure().text;
    std::string text;
    std::getline(std::ifstream(path), text);
    EXPECT_EQ(text, "volume " + lun->WWN.substr(24) + ", first block");
}

TEST_F(SimulatedHost, LosesADetachedDiskAndFindsItAgain)
{
    client->detach(lun->ID);
    ASSERT_TRUE(lastFailure().empty()) << lastFailure().text;
    EXPECT_EQ(scan(), "");
    EXPECT_NE(lastFailure().text.find(lun->WWN), std::string::npos) << lastFailure().text;
    waitForNewSecond();
    ASSERT_EQ(client->attach(lun->ID), 0);
    EXPECT_EQ(scan(), path) << lastFailure().text;
}

TEST_F(SimulatedHost, TellsASnapshotFromItsLun)
{
    const std::string id = array->addSnapshot("nightly", lun->ID);
    waitForNewSecond();
    ASSERT_EQ(client->attachSnapshot(id), 0);
    ASSERT_TRUE(lastFailure().empty()) << lastFailure().text;
    const std::string found = client->scanSnapshot(id);
    EXPECT_NE(found, "") << lastFailure().text;
    EXPECT_NE(found, path);
    EXPECT_EQ(scan(), path);
}

TEST_F(SimulatedHost, TakesNoDiskByItsNameAlone)
{
    disks.add("saa", fixture("naa-first", otherWwn(1)), {"scsi-1" + lun->WWN});
    EXPECT_EQ(scan(), path);
    disks.unlink("scsi-3" + lun->WWN);
    EXPECT_EQ(scan(), "");
}

TEST_F(SimulatedHost, TakesNoDiskByItsPageAlone)
{
    disks.add("saa", fixture("naa-first", lun->WWN), {"scsi-3" + otherWwn(1)});
    EXPECT_EQ(scan(), path);
    disks.unlink("scsi-3" + lun->WWN);
    EXPECT_EQ(scan(), "");
}

TEST_F(SimulatedHost, TakesNoPartition)
{
    disks.add("saa1", fixture("naa-first", lun->WWN), {"scsi-3" + lun->WWN + "-part1"});
    EXPECT_EQ(scan(), path);
}

TEST_F(SimulatedHost, PassesALinkThatLeadsNowhere)
{
    disks.link("scsi-1" + lun->WWN, "saa");
    EXPECT_EQ(scan(), path);
    disks.link("scsi-3" + lun->WWN, "sab");
    EXPECT_EQ(scan(), "");
}

TEST_F(SimulatedHost, TakesTheFirstOfTwoPathsToOneVolume)
{
    disks.add("saa", fixture("naa-first", lun->WWN), {"scsi-1" + lun->WWN});
    EXPECT_EQ(scan(), "/dev/disk/by-id/../../saa");
}

TEST_F(SimulatedHost, PassesADiskThatHangs)
{
    disks.add("saa", fixture("slow", otherWwn(1)), {"scsi-3" + otherWwn(1)});
    EXPECT_EQ(scan(), path);
}

TEST_F(SimulatedHost, FindsOneDiskAmongTwoThousand)
{
    for (unsigned i = 0; i < 2000; ++i) {
        const std::string wwn = otherWwn(i);
        disks.add("sa" + std::to_string(i), fixture("naa-first", wwn), {"scsi-3" + wwn});
    }
    EXPECT_EQ(scan(), path);
    disks.answer(device, fixture("busy", lun->WWN));
    Disks::asked();
    EXPECT_EQ(scan(), "");
    EXPECT_GE(Disks::asked().size(), 2001U);  // each of them, and those of other tests
}

TEST_F(SimulatedHost, WaitsWhileATemporaryDeviceIsListed)
{
    disks.list("[2:0:0:9]    disk    EXAMPLE  tmp-block        1     /dev/sdz");
    std::thread settles([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        std::filesystem::remove("/run/simulated-host/lsscsi");
    });
    EXPECT_EQ(scan(), path);
    EXPECT_FALSE(std::filesystem::exists("/run/simulated-host/lsscsi"));
    settles.join();
}

/// A page of tests/fixtures/page83/ in place of the disk's own.
struct OddPage {
    const char* name;
    bool isFound;
};

void PrintTo(const OddPage& page, std::ostream* out)
{
    *out << page.name;
}

class DiskPage : public SimulatedHost, public testing::WithParamInterface<OddPage> {};

TEST_P(DiskPage, LeadsToTheRightDiskOrToNone)
{
    disks.answer(device, fixture(GetParam().name, lun->WWN));
    EXPECT_EQ(scan(), GetParam().isFound ? path : "");
}

// Where the first designator is another one, the volume's own further behind is not looked for.
INSTANTIATE_TEST_SUITE_P(Fixtures, DiskPage,
                         testing::Values(OddPage{"naa-first", true}, OddPage{"naa-then-text", true},
                                         OddPage{"text-first", false}, OddPage{"port-first", false},
                                         OddPage{"torn-designator", false}, OddPage{"torn-header", false},
                                         OddPage{"nothing", false}, OddPage{"length-of-none", true},
                                         OddPage{"designator-of-0", false}, OddPage{"designator-of-8", false},
                                         OddPage{"designator-of-31", false}, OddPage{"designator-of-32", false},
                                         OddPage{"designator-of-255", false}, OddPage{"check-condition", false},
                                         OddPage{"busy", false}, OddPage{"timed-out", false}, OddPage{"removed", false},
                                         OddPage{"slow", true}, OddPage{"other-volume", false}),
                         [](const auto& odd) {
                             std::string name = odd.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

/// In a host of its own, since a process that has seen multipath software never forgets it.
class Multipath : public SimulatedHost {
protected:
    void SetUp() override { std::ofstream("/run/simulated-host/message") << "Tendrix path manager: 2 paths rescanned\n"; }
};

TEST_F(Multipath, SearchesAmongDisksOfTheRightNameOnly)
{
    disks.add("saa", fixture("naa-first", lun->WWN), {"scsi-3" + otherWwn(1)});
    EXPECT_EQ(scan(), path);  // the rescan tells of the software
    disks.add("sab", fixture("naa-first", otherWwn(2)), {"scsi-1" + lun->WWN});
    Disks::asked();
    EXPECT_EQ(scan(), path);
    EXPECT_EQ(Disks::asked(), (std::vector<std::string>{"sab", device}));
    disks.answer(device, fixture("busy", lun->WWN));
    EXPECT_EQ(scan(), "");
}

/// In a host of its own without any semaphore set.
using FirstSemaphoreSet = SimulatedHost;

TEST_F(FirstSemaphoreSet, LocksTheRescanThoughItsIdIsZero)
{
    EXPECT_EQ(semget(kRescanLock, 1, 0), 0);
    EXPECT_EQ(semctl(0, 0, GETVAL), 1);
    EXPECT_EQ(scan(), path);
    EXPECT_EQ(semctl(0, 0, GETVAL), 1);
}

}  // namespace
}  // namespace brevan::test
