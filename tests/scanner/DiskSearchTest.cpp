#include "scanner/ScanFixture.h"
#include "scanner/ScanState.h"

#include <stdexcept>

namespace brevan::test {
namespace {

class DiskSearch : public ScanTest {
protected:
    std::string find(MOType type = MOTYPE_LUN) { return handler.GetDiskPath(id, wwn, type); }

    /// A disk whose page and name carry the wanted WWN, unless told otherwise.
    std::string disk(const std::string& device, const std::string& inName = kWwn, const std::string& inPage = kWwn)
    {
        devices.addDisk(diskPath(device), inPage);
        return listed("scsi-3" + inName, device);
    }
};

class MultipathSearch : public DiskSearch {
protected:
    MultipathSearch() { g_multipathInstalled.store(true); }
};

TEST_F(DiskSearch, FindsTheDiskOfAVolume)
{
    for (const auto& [type, name] : {std::pair(MOTYPE_LUN, "Lun"), std::pair(MOTYPE_SNAPSHOT, "Snapshot")}) {
        const Lines log = expectSearch(name, true);
        EXPECT_EQ(find(type), diskPath("sdc"));
        EXPECT_EQ(newLog(), log);
        EXPECT_TRUE(lastFailure().empty());
        recorder.verify();
    }
}

TEST_F(DiskSearch, RunsNothingForAnotherTypeOfObject)
{
    for (const int type : {0, 14, 21, 256, -1}) {
        EXPECT_EQ(find(static_cast<MOType>(type)), "");
        EXPECT_THAT(newLog(), testing::ElementsAre("error: moType is wrong!"));
        EXPECT_EQ(lastFailure().text, "moType is wrong!");
        EXPECT_EQ(lastFailure().operation, "GetDiskPath");
    }
}

TEST_F(DiskSearch, SaysWhatWasNotFoundAndWhatToCheck)
{
    const Lines log = expectSearch("Lun", false);
    EXPECT_EQ(find(), "");
    EXPECT_EQ(newLog(), log);
    EXPECT_EQ(lastFailure().text, "no disk of this host carries the WWN \"" + wwn + "\" of Lun 7");
    EXPECT_THAT(lastFailure().advice, testing::HasSubstr("mapped to this host's initiator"));
}

TEST_F(DiskSearch, RecordsAListingThatFails)
{
    expectListing(commandFailure("no such folder"));
    EXPECT_EQ(find(), "");
    EXPECT_THAT(newLog(), testing::ElementsAre(
                              kNoMultipath, "record: GetDiskPath 1",
                              "error: run ls -al /dev/disk/by-id | grep -v part | grep scsi- failed: no such folder"));
    EXPECT_FALSE(lastFailure().empty());
}

TEST_F(DiskSearch, ReturnsThePathAlsoWhereTheDeviceCannotBeRescanned)
{
    expectListing(printing({disk("sdc")}));
    expectDeviceRescan("sdc", commandFailure("not allowed"));
    EXPECT_EQ(find(), diskPath("sdc"));
    EXPECT_THAT(newLog(), testing::IsSupersetOf({"record: GetDiskPath 0", "error: run sdc failed: not allowed",
                                                 "info: ---------GetDiskPath successfully---------!"}));
    EXPECT_TRUE(lastFailure().empty());
}

TEST_F(DiskSearch, VisitsDisksInAscendingOrderOfPathsUpToTheFirstMatch)
{
    expectListing(printing({disk("sdd"), disk("sdc"), disk("sdb", kWwn, kOtherWwn), disk("sdaa", kOtherWwn)}));
    expectDeviceRescan("sdc");
    EXPECT_EQ(find(), diskPath("sdc"));
    EXPECT_THAT(devices.opened(), testing::ElementsAre(diskPath("sdaa") + " rw nonblock", diskPath("sdb") + " rw nonblock",
                                                       diskPath("sdc") + " rw nonblock"));
}

TEST_F(DiskSearch, TakesADiskUnderAWwnName)
{
    devices.addDisk(diskPath("sdc"), kWwn);
    const std::string name = listed(std::string("wwn-0x") + kWwn, "sdc") + "\n";
    for (const auto& names : {Lines{name}, Lines{listed("scsi-0QEMU_disk", "sdc"), name}}) {
        expectListing(printing(names));
        expectDeviceRescan("sdc");
        EXPECT_EQ(find(), diskPath("sdc"));
        recorder.verify();
    }
}

TEST_F(DiskSearch, NeedsBothPageAndNameToAgree)
{
    const std::string name = "scsi-3";
    const std::string upper = "6001405ABCDEF0123456789A0000010A";
    const struct {
        std::string wanted;
        std::string pageOfSdc;
        std::vector<std::string> listing;
    } cases[] = {
        {kWwn, kWwn, {listed(name + kOtherWwn, "sdc")}},
        {kWwn, kOtherWwn, {listed(name + kWwn, "sdc")}},
        {kWwn, kOtherWwn, {listed(name + kWwn, "sdc"), listed(name + kOtherWwn, "sdb")}},
        {upper, kWwn, {listed(name + upper, "sdc")}},
        {kWwn, kWwn, {listed(name + std::string(kWwn).substr(0, 30), "sdc")}},
        {kWwn, kWwn, {listed(name + kWwn, "sdz")}},
        {"", "", {listed(name, "sdc"), listed(name, "sdz")}},
        {kWwn, kWwn, {"total 0", "scsi-", listed("scsi-", "sdc"), "../", std::string(4096, 'x')}},
        {kWwn, kWwn, {}},
    };
    devices.addDisk(diskPath("sdb"), kWwn);
    for (const auto& [wanted, pageOfSdc, listing] : cases) {
        wwn = wanted;
        devices.addDisk(diskPath("sdc"), pageOfSdc);
        expectListing(printing(listing));
        EXPECT_EQ(find(), "") << testing::PrintToString(listing);
        recorder.verify();
    }
}

TEST_F(DiskSearch, GoesOnAfterADiskThatCannotBeRead)
{
    const std::string broken = disk("sdb");
    devices.addDisk(diskPath("sdb"), FakeDevices::Disk{page83(kWwn), true, true, -1});
    expectListing(printing({broken, disk("sdc")}));
    expectDeviceRescan("sdc");
    EXPECT_EQ(find(), diskPath("sdc"));
}

TEST_F(DiskSearch, SaysWhichDiskOfThatNameThisUserMayNotOpen)
{
    const Lines found = {listed(std::string("scsi-3") + kWwn, "sdc"), listed(std::string("scsi-3") + kOtherWwn, "sdb")};
    for (const char* device : {"sdb", "sdc"}) {
        devices.addDisk(diskPath(device), FakeDevices::Disk{page83(kWwn), true, false});
    }
    expectListing(printing(found));
    EXPECT_EQ(find(), "");
    const std::string text = "no right to open " + diskPath("sdc") + ", which is named after the WWN \"" + wwn + "\"";
    EXPECT_EQ(newLog().back(), "error: " + text);
    EXPECT_EQ(lastFailure().text, text);
    EXPECT_THAT(lastFailure().advice, testing::HasSubstr("group disk"));
    devices.addDisk(diskPath("sdc"),
                    FakeDevices::Disk{page83(kWwn), true, true, -1});  // it may be opened, but does not answer
    expectListing(printing(found));
    EXPECT_EQ(find(), "");
    EXPECT_THAT(lastFailure().text, testing::StartsWith("no disk of this host"));
}

TEST_F(DiskSearch, TurnsAnExceptionOfTheRunnerIntoAFailure)
{
    expectListing(doing([] { throw std::runtime_error("boom"); }));
    EXPECT_EQ(find(), "");
    EXPECT_THAT(newLog(),
                testing::ElementsAre(kNoMultipath, "error: unexpected failure: boom GetDiskPath", "record: GetDiskPath 1"));
    EXPECT_EQ(lastFailure().text, "unexpected failure: boom GetDiskPath");
}

TEST_F(DiskSearch, HasNoMultipathRouteWithoutTheSoftware)
{
    EXPECT_EQ(handler.GetDiskPathForWWN(wwn), "");
    EXPECT_THAT(newLog(), testing::ElementsAre(kNoMultipath));
}

TEST_F(MultipathSearch, FindsTheDiskAndAsksNoFurther)
{
    const Lines log = expectMultipathSearch(wwn, "sdc", true);
    EXPECT_EQ(find(), diskPath("sdc"));
    EXPECT_EQ(newLog(), log + Lines{"info: ---------GetDiskPathForWWN successfully---------!"});
    EXPECT_TRUE(lastFailure().empty());
}

TEST_F(MultipathSearch, FallsThroughToTheGeneralRoute)
{
    const Lines first = expectMultipathSearch(wwn, "sdb", false);
    Lines second = expectSearch("Lun", true);
    second.erase(second.begin());  // it says nothing of missing software
    EXPECT_EQ(find(), diskPath("sdc"));
    EXPECT_EQ(newLog(), first + second);
}

TEST_F(MultipathSearch, GivesNothingWhereTheListingFails)
{
    expectListing(wwn, commandFailure(""));
    EXPECT_EQ(handler.GetDiskPathForWWN(wwn), "");
    EXPECT_THAT(newLog(), testing::ElementsAre("error: the device is not found"));
}

TEST_F(MultipathSearch, WalksTheLinesInTheirOrder)
{
    const std::string nowhere = std::string("scsi-3") + kWwn;
    expectListing(wwn, printing({"ata-x -> ../../sda", nowhere, disk("sdd", kOtherWwn), disk("sdc") + "\n", disk("sdb")}));
    expectDeviceRescan("sdc");
    EXPECT_EQ(handler.GetDiskPathForWWN(wwn), diskPath("sdc"));
    EXPECT_THAT(newLog(), testing::ElementsAre("info: disk info [/dev/disk/by-id/../../sda]",
                                               "info: disk info [/dev/disk/by-id/]", "info: strDiskPath [/dev/disk/by-id/]",
                                               "info: strSnapshotID []", "info: disk info [/dev/disk/by-id/../../sdd]",
                                               "info: strDiskPath [/dev/disk/by-id/../../sdd]", "info: strSnapshotID [266]",
                                               "info: disk info [/dev/disk/by-id/../../sdc]",
                                               "info: strDiskPath [/dev/disk/by-id/../../sdc]", "info: strSnapshotID [266]",
                                               "record: GetDiskPathForWWN 0"));
}

TEST_F(MultipathSearch, NamesTheCommandThatDidNotRescanTheDisk)
{
    expectListing(wwn, printing({disk("sdc")}));
    expectDeviceRescan("sdc", commandFailure("not allowed"));
    EXPECT_EQ(handler.GetDiskPathForWWN(wwn), diskPath("sdc"));
    EXPECT_THAT(newLog(), testing::Contains("error: run sudo /opt/root_tool/common/security_sudo_v3.sh dev_rescan '?' "
                                            "failed: not allowed"));
}

TEST_F(MultipathSearch, RecordsSuccessAlsoWhereNoDiskMatches)
{
    expectListing("", printing({listed("scsi-3", "sdc"), disk("sdc", "", "")}));
    EXPECT_EQ(handler.GetDiskPathForWWN(""), "");
    EXPECT_EQ(newLog().back(), "record: GetDiskPathForWWN 0");
}

TEST_F(MultipathSearch, SurvivesAnExceptionOfAnyType)
{
    expectListing(wwn, doing([] { throw 1; }));  // NOLINT(hicpp-exception-baseclass): any type is the point
    EXPECT_EQ(handler.GetDiskPathForWWN(wwn), "");
    EXPECT_THAT(newLog(), testing::ElementsAre("error: unexpected failure: no standard exception GetDiskPathForWWN",
                                               "record: GetDiskPathForWWN 1"));
}

}  // namespace
}  // namespace brevan::test
