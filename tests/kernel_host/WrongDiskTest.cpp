// Disks that look like the volume's and are not, on a real kernel: the search returns the right one or none. Runs inside the
// kernel host and nowhere else.
#include "HostDisks.h"
#include "KernelHost.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace brevan::test {
namespace {

using Names = std::vector<std::string>;

Names linksOf(const std::string& wwn)
{
    return {"scsi-3" + wwn, "wwn-0x" + wwn};
}

/// The disk of a test's own LUN; afterwards the host has neither disk nor link, and the array shows nothing.
class WrongDisk : public KernelHost {
protected:
    void SetUp() override
    {
        KernelHost::SetUp();
        lun = attachedDisk(path);
    }

    void TearDown() override
    {
        for (const std::string& id : attached) {
            client.detach(id);
        }
        client.detach(lun.ID);
        for (const std::string& name : diskNames()) {
            deleteDisk("/dev/" + name);
        }
        std::filesystem::remove_all(kByIdFolder);
    }

    /// The search alone, which changes nothing on the host.
    std::string search(std::string wwn)
    {
        std::string id = "7";
        return client.get<CDiskScannerHandler>(HANDLER_DISK_SCANNER).GetDiskPath(id, wwn, MOTYPE_LUN);
    }

    LunMO another()
    {
        const LunMO other = attachedLun();
        attached.push_back(other.ID);
        return other;
    }

    static void link(const std::string& name, const std::string& disk)
    {
        std::filesystem::create_symlink("../../" + disk, kByIdFolder + name);
    }

    LunMO lun;
    std::string path;
    Names attached;
};

TEST_F(WrongDisk, IsNotTakenWhereAnotherVolumeGotTheSameLunNumber)
{
    client.detach(lun.ID);
    const LunMO other = another();
    ASSERT_EQ(lunNumber(other.WWN), 1U);
    // The host has not noticed: the links keep the old name, the page tells the truth.
    EXPECT_EQ(linkNames(), linksOf(lun.WWN));
    EXPECT_EQ(wwnBySgInq(path), other.WWN);
    EXPECT_EQ(client.scan(other.ID), "");
    EXPECT_NE(lastFailure().text.find(other.WWN), std::string::npos) << lastFailure().text;
    // But the scan has opened the disk for writing, and so udev looks at it again: the next scan is right.
    run("udevadm settle");
    EXPECT_EQ(linkNames(), linksOf(other.WWN));
    EXPECT_EQ(client.scan(lun.ID), "");
    EXPECT_EQ(client.scan(other.ID), path) << lastFailure().text;
}

TEST_F(WrongDisk, IsNeitherWhereItIsDeletedFirst)
{
    client.detach(lun.ID);
    deleteDisk(path);
    const LunMO other = another();
    EXPECT_EQ(client.scan(other.ID), path) << lastFailure().text;
    EXPECT_EQ(linkNames(), linksOf(other.WWN));
}

TEST_F(WrongDisk, IsToldFromOneWhoseWwnDiffersInTheLastDigit)
{
    const LunMO other = another();
    ASSERT_EQ(other.WWN.substr(0, 31), lun.WWN.substr(0, 31));
    const std::string otherPath = client.scan(other.ID);
    writeDisk(otherPath, pattern(2));
    writeDisk(path, pattern(1));
    EXPECT_EQ(client.scan(lun.ID), path);
    EXPECT_NE(otherPath, path);
    EXPECT_TRUE(readDisk(otherPath) == pattern(2));
}

TEST_F(WrongDisk, IsNotTakenForALinkThatLeadsToIt)
{
    const LunMO other = another();
    const std::string otherPath = client.scan(other.ID);
    std::filesystem::remove(kByIdFolder + linksOf(lun.WWN)[0]);
    link(linksOf(lun.WWN)[0], nameOf(otherPath));
    EXPECT_EQ(search(lun.WWN), "");
    EXPECT_EQ(search(other.WWN), otherPath);
}

TEST_F(WrongDisk, IsNoneWhereTheLinkLeadsNowhere)
{
    link("scsi-1" + lun.WWN, "sdzz");
    EXPECT_EQ(client.scan(lun.ID), path);
    client.detach(lun.ID);
    deleteDisk(path);
    link("scsi-3" + lun.WWN, "sdzz");
    EXPECT_EQ(client.scan(lun.ID), "");
    EXPECT_NE(lastFailure().text.find(lun.WWN), std::string::npos) << lastFailure().text;
}

TEST_F(WrongDisk, IsNoneWhereTheDiskAnswersWithCheckCondition)
{
    client.detach(lun.ID);  // the host keeps disk and links
    EXPECT_EQ(linkNames(), linksOf(lun.WWN));
    EXPECT_EQ(wwnBySgInq(path), "");
    EXPECT_NE(run("sg_raw -r 255 " + path + " 12 01 83 00 ff 00 || true").find("Check Condition"), std::string::npos);
    EXPECT_EQ(client.scan(lun.ID), "");
    // The disk stays, but not its names: opened for writing by the scan, it was looked at by udev, which could not read it.
    run("udevadm settle");
    EXPECT_EQ(diskNames(), Names{nameOf(path)});
    EXPECT_EQ(linkNames(), Names());
}

TEST_F(WrongDisk, IsNoneWhereTheFirstDesignatorIsAText)
{
    addDebugDisk();
    const Names links = linkNames();
    const auto link =
        std::find_if(links.begin(), links.end(), [](const auto& name) { return name.rfind("scsi-3333", 0) == 0; });
    ASSERT_NE(link, links.end());  // udev names it after its second designator
    EXPECT_EQ(search(link->substr(6)), "");
    EXPECT_EQ(client.scan(lun.ID), path);
    removeDebugDisk();
}

std::string inCapitals(std::string wwn)
{
    std::transform(wwn.begin(), wwn.end(), wwn.begin(), [](unsigned char c) { return std::toupper(c); });
    return wwn;
}

/// A WWN is compared as the array wrote it, and pages and links have small letters.
TEST_F(WrongDisk, IsNoneWhereTheArraySaysTheWwnInCapitals)
{
    const std::string upper = inCapitals(lun.WWN);
    ASSERT_NE(upper, lun.WWN);
    array->addFaults(R"({"operation": "GET /lun/{id}", "do": ["upper case", "upper case"]})");
    EXPECT_EQ(client.scan(lun.ID), "");  // and no link has that name
    EXPECT_NE(lastFailure().text.find(upper), std::string::npos) << lastFailure().text;
    link("scsi-3" + upper, nameOf(path));
    EXPECT_EQ(client.scan(lun.ID), "");  // the disk behind the link is the right one, its page says it in small letters
    EXPECT_NE(lastFailure().text.find(upper), std::string::npos) << lastFailure().text;
    EXPECT_EQ(array->faultsLeft(), 0U);
    EXPECT_EQ(client.scan(lun.ID), path) << lastFailure().text;
}

TEST_F(WrongDisk, IsNoneForAnUpperCaseWwn)
{
    const std::string upper = inCapitals(lun.WWN);
    link("scsi-3" + upper, nameOf(path));
    EXPECT_EQ(search(upper), "");
    EXPECT_EQ(search(lun.WWN), path);
}

}  // namespace
}  // namespace brevan::test
