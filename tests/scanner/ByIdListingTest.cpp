#include "scanner/ByIdListing.h"

#include "support/SdkTest.h"

#include <random>

namespace brevan::test {
namespace {

using ByIdListing = SdkTest;

TEST_F(ByIdListing, TakesThePathAsTheLinkHasIt)
{
    const std::pair<const char*, const char*> cases[] = {
        {"lrwxrwxrwx 1 root root 9 Jan 1 00:00 scsi-36ab -> ../../sdc", "/dev/disk/by-id/../../sdc"},
        {"scsi-36ab -> ../../sdc\n\n", "/dev/disk/by-id/../../sdc"},
        {"scsi-36ab -> ../../dm-0 \n", "/dev/disk/by-id/../../dm-0 "},
        {"a ../b ../c", "/dev/disk/by-id/../b ../c"},
        {"scsi-36ab", "/dev/disk/by-id/"},
        {"..", "/dev/disk/by-id/"},
        {"", "/dev/disk/by-id/"},
    };
    for (const auto& [line, path] : cases) {
        EXPECT_EQ(candidatePath(line), path) << line;
    }
}

TEST_F(ByIdListing, DropsSixCharactersOfTheName)
{
    const std::pair<const char*, const char*> cases[] = {
        {"x scsi-36001405 -> ../../sdc", "6001405"},
        {"x wwn-0x6001405 -> ../../sdc", "6001405"},
        {"x wwn-0x6001405 scsi-3999 -> ../../sdc", "999"},
        {"scsi-SVENDOR_disk_1 -> ../../sdc", "VENDOR_disk_1"},
        {"scsi-36001405", "6001405"},
        {"scsi-3 -> ../../sdc", ""},
        {"wwn-0x -> ../../sdc", ""},
    };
    for (const auto& [line, identifier] : cases) {
        EXPECT_EQ(lineIdentifier(line), std::optional<std::string>(identifier)) << line;
    }
}

TEST_F(ByIdListing, SkipsNamesThatAreMissingOrTooShort)
{
    for (const char* line :
         {"", "scsi-", "scsi- -> ../../sdc", "wwn-0 -> ../../sdc", "ata-disk -> ../../sdc", "SCSI-36ab"}) {
        EXPECT_EQ(lineIdentifier(line), std::nullopt) << line;
    }
}

TEST_F(ByIdListing, GroupsTheNamesOfEachDiskInAscendingOrderOfPaths)
{
    const auto disks =
        groupByPath({"scsi-3bbb -> ../../sdc\n", "scsi-3aaa -> ../../sdb", "total 0", "scsi-3none", "wwn-0xbbb -> ../../sdc",
                     "ata-x -> ../../sdd", "scsi- -> ../../sde", "scsi-3ccc -> ../../sdaa"});
    const std::map<std::string, std::vector<std::string>> expected = {{"/dev/disk/by-id/../../sdaa", {"ccc"}},
                                                                      {"/dev/disk/by-id/../../sdb", {"aaa"}},
                                                                      {"/dev/disk/by-id/../../sdc", {"bbb", "bbb"}}};
    EXPECT_EQ(disks, expected);
    EXPECT_THAT(newLog(),
                testing::ElementsAre("info: strLine [scsi-3bbb -> ../../sdc]", "info: strLine [scsi-3aaa -> ../../sdb]",
                                     "info: strLine [wwn-0xbbb -> ../../sdc]", "info: strLine [ata-x -> ../../sdd]",
                                     "info: strLine [scsi- -> ../../sde]", "info: strLine [scsi-3ccc -> ../../sdaa]"));
}

TEST_F(ByIdListing, NamesTheDeviceByWhatIsBehindTheLastSlash)
{
    EXPECT_EQ(deviceName("/dev/disk/by-id/../../sdc"), "sdc");
    EXPECT_EQ(deviceName("/dev/disk/by-id/"), "");
    EXPECT_EQ(deviceName("sdc"), "sdc");
    EXPECT_EQ(deviceName(""), "");
}

std::string randomLine(std::mt19937& random)
{
    static const char* const kPieces[] = {"scsi-", "wwn-",      "../", "../../sdc", " -> ", " ",
                                          "\n",    "0x6001405", "3",   "/",         "."};
    std::string line;
    for (unsigned int pieces = random() % 8; pieces > 0; --pieces) {
        if (random() % 4 == 0) {
            line += static_cast<char>(random() % 256);
        } else {
            line += kPieces[random() % std::size(kPieces)];
        }
    }
    return line;
}

TEST_F(ByIdListing, MakesSenseOfAnyText)
{
    std::mt19937 random(20210304);  // NOLINT(cert-msc51-cpp): the same inputs in every run
    for (int i = 0; i < 20000; ++i) {
        const std::string line = randomLine(random);
        const std::string path = candidatePath(line);
        ASSERT_EQ(path.compare(0, 16, "/dev/disk/by-id/"), 0) << line;
        ASSERT_NE(path.back(), '\n') << line;
        ASSERT_EQ(path.size() > 16, line.find("../") != std::string::npos) << line;
        const auto identifier = lineIdentifier(line);
        const bool named = line.find("scsi-") != std::string::npos || line.find("wwn-") != std::string::npos;
        ASSERT_TRUE(named || !identifier) << line;
        ASSERT_TRUE(!identifier ||
                    (identifier->find(' ') == std::string::npos && line.find(*identifier, 6) != std::string::npos))
            << line;
        const auto disks = groupByPath({line});
        ASSERT_LE(disks.size(), 1U);
        ASSERT_TRUE(disks.empty() || (disks.begin()->first.size() > 16 && disks.begin()->second.size() == 1)) << line;
    }
}

}  // namespace
}  // namespace brevan::test
