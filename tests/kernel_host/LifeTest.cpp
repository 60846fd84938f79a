// The whole life of a LUN and of its snapshot on one host, round after round. Runs inside the kernel host and nowhere else.
#include "HostDisks.h"
#include "KernelHost.h"

#include <malloc.h>

#include <cstdio>
#include <filesystem>
#include <iterator>

namespace brevan::test {
namespace {

std::size_t openDescriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

std::size_t threads()
{
    const std::filesystem::directory_iterator all("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

/// A volume on its way: its identity, and its disk while it has one.
struct Volume {
    std::string id;
    std::string wwn;
    std::string path;
};

class Life : public KernelHost {
protected:
    /// What stands at the beginning of the volume, at the array.
    static std::string atTheArray(const Volume& volume)
    {
        std::string bytes(kPatternBytes, '\0');
        std::ifstream("/tmp/array/volumes/" + volume.wwn + ".img", std::ios::binary).read(bytes.data(), kPatternBytes);
        return bytes;
    }

    Volume attachLun();
    Volume attachSnapshotOf(const Volume& lun, const std::string& name);
    void takeAway(const Volume& lun, const Volume& snapshot);
    void live(int round);

    ArrayConsole console{*array};
};

Volume Life::attachLun()
{
    Volume lun;
    const LunMO created = attachedDisk(lun.path);
    lun.id = created.ID;
    lun.wwn = created.WWN;
    EXPECT_EQ(lunNumber(lun.wwn), 1U) << "a LUN number of an earlier round is still taken";
    EXPECT_EQ(wwnBySgInq(lun.path), lun.wwn);
    return lun;
}

Volume Life::attachSnapshotOf(const Volume& lun, const std::string& name)
{
    Volume snapshot;
    snapshot.id = array->addSnapshot(name, lun.id);
    snapshot.wwn = array->volumeWwn(snapshot.id);
    waitForNewSecond();
    EXPECT_EQ(client.attachSnapshot(snapshot.id), 0);
    EXPECT_TRUE(lastFailure().empty()) << lastFailure().text;
    snapshot.path = client.scanSnapshot(snapshot.id);
    EXPECT_TRUE(lastFailure().empty()) << lastFailure().text;
    EXPECT_EQ(lunNumber(snapshot.wwn), 2U);
    EXPECT_EQ(wwnBySgInq(snapshot.path), snapshot.wwn);
    return snapshot;
}

/// As docs/host-setup.md tells: the call before the detach, the disk deleted, then the detach.
void Life::takeAway(const Volume& lun, const Volume& snapshot)
{
    client.beforeSnapshotDetach(snapshot.id);
    deleteDisk(snapshot.path);
    client.detachSnapshot(snapshot.id);
    EXPECT_TRUE(lastFailure().empty()) << lastFailure().text;
    client.beforeDetach(lun.id);
    deleteDisk(lun.path);
    client.detachLun(lun.id);
    EXPECT_TRUE(lastFailure().empty()) << lastFailure().text;
    EXPECT_FALSE(isExposed(lun.wwn) || isExposed(snapshot.wwn));
    EXPECT_EQ(client.scan(lun.id), "");
    console.remove("/snapshot/" + snapshot.id);
    console.remove("/lun/" + lun.id);
}

void Life::live(int round)
{
    const std::string before = pattern(2 * round);
    const std::string after = pattern(2 * round + 1);
    const Volume lun = attachLun();
    writeDisk(lun.path, before);
    EXPECT_TRUE(atTheArray(lun) == before);
    const Volume snapshot = attachSnapshotOf(lun, "nightly_" + std::to_string(round));
    ASSERT_TRUE(lun.path != snapshot.path && !snapshot.path.empty());
    writeDisk(lun.path, after);
    EXPECT_TRUE(readDisk(snapshot.path) == before);
    EXPECT_TRUE(readDisk(lun.path) == after);
    EXPECT_TRUE(atTheArray(snapshot) == before);
    EXPECT_TRUE(atTheArray(lun) == after);
    takeAway(lun, snapshot);
}

/// What would grow from round to round if something were left behind.
struct Left {
    std::size_t descriptors = openDescriptors();
    std::size_t threadCount = threads();
    std::size_t heap = mallinfo2().uordblks;
};

TEST_F(Life, OfALunAndItsSnapshotLeavesNothingBehind)
{
    const int rounds = amount("rounds", 10);
    live(0);  // connections, log files and caches come with the first
    const Left first;
    for (int round = 1; round < rounds; ++round) {
        live(round);
        ASSERT_FALSE(HasFailure()) << "in round " << round;
        EXPECT_EQ(diskNames(), std::vector<std::string>());
        EXPECT_EQ(linkNames(), std::vector<std::string>());
    }
    const Left last;
    EXPECT_EQ(last.descriptors, first.descriptors);
    EXPECT_EQ(last.threadCount, first.threadCount);
    std::printf("heap after the first round %zu, after %d rounds %zu bytes\n", first.heap, rounds, last.heap);
    // The array lives in this process, too, and keeps host groups and views: 35 KB in 10 rounds, 63 KB in 50.
    EXPECT_LT(last.heap, first.heap + 49152 + 2048 * static_cast<std::size_t>(rounds));
    // By contract host, host groups and mapping views stay; all else of the rounds is gone.
    EXPECT_EQ(console.count("/host"), 1);
    EXPECT_EQ(console.count("/hostgroup"), 2 * rounds);
    EXPECT_EQ(console.count("/mappingview"), 2 * rounds);
    for (const char* kind : {"/lun", "/snapshot", "/lungroup"}) {
        EXPECT_EQ(console.count(kind), 0) << kind;
    }
    EXPECT_TRUE(std::filesystem::is_empty("/tmp/array/volumes"));
}

/// Whatever rescans the host between the two makes the disk anew, while the array still shows the volume.
TEST_F(Life, OfADiskBeginsAgainWithARescanBeforeTheDetach)
{
    const Volume lun = attachLun();
    client.beforeDetach(lun.id);
    deleteDisk(lun.path);
    EXPECT_EQ(diskNames().size(), 0U);
    run(kRescanHost);
    EXPECT_EQ(diskNames().size(), 1U);
    client.detachLun(lun.id);
    EXPECT_EQ(diskNames().size(), 1U) << "nobody tells the host";
    for (const std::string& name : diskNames()) {
        deleteDisk(name);
    }
    run(kRescanHost);
    EXPECT_EQ(diskNames().size(), 0U);
    console.remove("/lun/" + lun.id);
}

}  // namespace
}  // namespace brevan::test
