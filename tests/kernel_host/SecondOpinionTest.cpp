// What other programs of the host say of a disk's identity, beside what the library says: docs/disk-identity.md tells where they differ. Runs
// inside the kernel host and nowhere else.
#include "HostDisks.h"
#include "KernelHost.h"

#include <gmock/gmock.h>

#include <sstream>

namespace brevan::test {
namespace {

using testing::HasSubstr;

/// A word behind `key` in what a command says, up to the next blank.
std::string wordBehind(const std::string& key, const std::string& command)
{
    const std::string said = run(command);
    const auto begin = said.find(key);
    std::istringstream rest(begin == std::string::npos ? "" : said.substr(begin + key.size()));
    std::string word;
    rest >> word;
    return word;
}

/// The name that each of the others has for a disk, without what they put before it.
struct Opinions {
    explicit Opinions(const std::string& device)
        : sgInq(wordBehind("[0x", "sg_inq -p 0x83 " + device)),
          sgVpd(wordBehind("  0x", "sg_vpd -p di -q " + device)),
          udev(wordBehind("ID_SERIAL=", "udevadm info -q property " + device)),
          scsiId(wordBehind("", "/lib/udev/scsi_id -g " + device)),
          lsscsi(run("lsscsi -i | grep " + device))
    {
    }
    std::string sgInq;
    std::string sgVpd;
    std::string udev;
    std::string scsiId;
    std::string lsscsi;
};

class SecondOpinion : public KernelHost {
protected:
    std::string search(std::string wwn)
    {
        std::string id = "7";
        return client.get<CDiskScannerHandler>(HANDLER_DISK_SCANNER).GetDiskPath(id, wwn, MOTYPE_LUN);
    }
    void TearDown() override
    {
        for (const std::string& name : diskNames()) {
            deleteDisk(name);
        }
    }
};

TEST_F(SecondOpinion, OfFiveProgramsIsTheSameForEveryVolume)
{
    for (int i = 0; i < 3; ++i) {
        std::string path;
        const LunMO lun = attachedDisk(path);
        const Opinions others("/dev/" + nameOf(path));
        EXPECT_EQ(others.sgInq, lun.WWN + "]");
        EXPECT_EQ(others.sgVpd, lun.WWN);
        EXPECT_EQ(others.udev, "3" + lun.WWN);
        EXPECT_EQ(others.scsiId, "3" + lun.WWN);
        EXPECT_THAT(others.lsscsi, HasSubstr(" 3" + lun.WWN + "\n"));
    }
}

/// The others take the best designator, the library the first: here that is a text, and the NAA stands behind it.
TEST_F(SecondOpinion, DiffersWhereATextComesFirst)
{
    addDebugDisk();
    ASSERT_EQ(diskNames().size(), 1U);
    const Opinions others("/dev/" + diskNames()[0]);
    ASSERT_EQ(others.udev.size(), 17U);
    EXPECT_EQ(others.scsiId, others.udev);
    EXPECT_EQ("3" + others.sgVpd, others.udev);
    EXPECT_EQ("3" + others.sgInq, others.udev + "]");
    EXPECT_THAT(others.lsscsi, HasSubstr(" " + others.udev + "\n"));
    EXPECT_THAT(linkNames(), testing::Contains("scsi-" + others.udev));
    EXPECT_EQ(search(others.sgVpd), "");
    removeDebugDisk();
}

}  // namespace
}  // namespace brevan::test
