#include "scanner/ScanFixture.h"

#include <scsi/sg.h>

#include <cstring>
#include <random>

namespace brevan::test {
namespace {

using Scanner = CDiskScannerHandlerImpl;
using Bytes = std::vector<unsigned char>;

/// What GetDisk83Page says of a disk.
struct Identified {
    int result = 0;
    std::string wwn = "old";
    std::string lunNumber = "old";

    bool operator==(const Identified& other) const
    {
        return result == other.result && wwn == other.wwn && lunNumber == other.lunNumber;
    }
};

void PrintTo(const Identified& identified, std::ostream* out)
{
    *out << identified.result << " \"" << identified.wwn << "\" \"" << identified.lunNumber << '"';
}

Identified identify(std::string device)
{
    Identified identified;
    identified.result = Scanner::GetDisk83Page(device, identified.wwn, identified.lunNumber);
    return identified;
}

class DeviceIdentification : public SdkTest {
protected:
    Identified identifyPage(const Bytes& page)
    {
        devices.addDisk("/dev/disk", FakeDevices::Disk{page});
        return identify("/dev/disk");
    }
};

const Identified kNothing = {-1, "old", "old"};

/// Keeps the whole request.
class CapturingHost final : public HostDevices {
public:
    CapturingHost() : m_other(hostDevicesSeam().replace(*this)) {}
    ~CapturingHost() override { hostDevicesSeam().replace(m_other); }
    int open(const char*, int) override { return -1; }
    void close(int) override {}
    int shell(const char*) override { return -1; }
    bool exists(const char*) override { return false; }
    int scsiGeneric(int fd, sg_io_hdr& asked) override
    {
        descriptor = fd;
        request = asked;
        command.assign(asked.cmdp, asked.cmdp + asked.cmd_len);
        senseIsClear = std::all_of(asked.sbp, asked.sbp + asked.mx_sb_len, [](unsigned char byte) { return byte == 0; });
        return 0;
    }

    int descriptor = -1;
    sg_io_hdr request{};
    Bytes command;
    bool senseIsClear = false;

private:
    HostDevices& m_other;
};

TEST_F(DeviceIdentification, SendsOneInquiryForThePage)
{
    CapturingHost host;
    unsigned char buffer[256];
    EXPECT_EQ(Scanner::GetDiskPage(7, 0xB0, buffer), 0);
    EXPECT_EQ(host.descriptor, 7);
    EXPECT_EQ(host.command, (Bytes{0x12, 0x01, 0xB0, 0x00, 0xFF, 0x00}));
    EXPECT_EQ(host.request.interface_id, 'S');
    EXPECT_EQ(host.request.dxfer_direction, SG_DXFER_FROM_DEV);
    EXPECT_EQ(host.request.dxfer_len, 256U);
    EXPECT_EQ(host.request.dxferp, buffer);
    EXPECT_EQ(host.request.mx_sb_len, 64);
    EXPECT_EQ(host.request.timeout, 60000U);
    EXPECT_EQ(host.request.iovec_count, 0);
    EXPECT_EQ(host.request.flags, 0U);
    EXPECT_TRUE(host.senseIsClear);
}

TEST_F(DeviceIdentification, GivesTheFirstDesignatorAndTheLunNumber)
{
    devices.addDisk("/dev/disk", kWwn);
    EXPECT_EQ(identify("/dev/disk"), (Identified{0, kWwn, "266"}));
    EXPECT_THAT(devices.opened(), testing::ElementsAre("/dev/disk rw nonblock"));
    EXPECT_THAT(devices.commandBlocks(), testing::ElementsAre(Bytes{0x12, 0x01, 0x83, 0x00, 0xFF, 0x00}));
    EXPECT_EQ(devices.openCount(), 0U);
    EXPECT_THAT(newLog(), testing::IsEmpty());
}

TEST_F(DeviceIdentification, WritesTheLunNumberAsASignedNumber)
{
    const std::pair<const char*, const char*> cases[] = {
        {"ffffffff", "-1"}, {"00000000", "0"}, {"7fffffff", "2147483647"}, {"80000001", "-214748364"}};
    for (const auto& [hex, number] : cases) {
        const std::string wwn = std::string("6001405abcdef0123456789a") + hex;
        devices.addDisk("/dev/disk", wwn);
        EXPECT_EQ(identify("/dev/disk"), (Identified{0, wwn, number}));
    }
}

TEST_F(DeviceIdentification, TakesADesignatorOfAtMost31Bytes)
{
    for (const std::size_t length : {0U, 1U, 8U, 16U, 31U}) {
        const std::string hex(2 * length, 'c');
        EXPECT_EQ(identifyPage(page83(hex)).wwn, hex) << length;
    }
    for (const std::size_t length : {32U, 33U, 127U, 128U, 200U, 248U}) {
        EXPECT_EQ(identifyPage(page83(std::string(2 * length, 'c'))), kNothing) << length;
    }
    EXPECT_EQ(devices.openCount(), 0U);
}

TEST_F(DeviceIdentification, LooksOnlyAtTheLengthAndTheBytesOfTheFirstDesignator)
{
    Bytes page = page83("aabb");
    page[1] = 0x00;
    page[4] = page[5] = page[6] = 0xFF;
    page.insert(page.end(), {1, 3, 0, 2, 0xcc, 0xdd});
    EXPECT_EQ(identifyPage(page), (Identified{0, "aabb", "0"}));
}

TEST_F(DeviceIdentification, FillsAPageThatIsShorterThanItClaimsWithZeros)
{
    Bytes page = page83(kWwn);
    page.resize(10);
    EXPECT_EQ(identifyPage(page), (Identified{0, "6001" + std::string(28, '0'), "0"}));
    EXPECT_EQ(identifyPage({}), (Identified{0, "", "0"}));
}

TEST_F(DeviceIdentification, OpensADiskThatCannotBeWrittenForReading)
{
    FakeDevices::Disk disk{page83(kWwn)};
    disk.opensForWriting = false;
    devices.addDisk("/dev/disk", disk);
    EXPECT_EQ(identify("/dev/disk").wwn, kWwn);
    EXPECT_THAT(devices.opened(), testing::ElementsAre("/dev/disk rw nonblock", "/dev/disk ro nonblock"));
    EXPECT_EQ(devices.openCount(), 0U);
}

TEST_F(DeviceIdentification, FailsForADiskThatCannotBeOpened)
{
    FakeDevices::Disk locked{page83(kWwn)};
    locked.opens = false;
    devices.addDisk("/dev/locked", locked);
    EXPECT_EQ(identify("/dev/locked"), kNothing);
    EXPECT_EQ(identify("/dev/none"), kNothing);
    EXPECT_EQ(devices.opened().size(), 4U);
    EXPECT_THAT(devices.commandBlocks(), testing::IsEmpty());
}

TEST_F(DeviceIdentification, FailsForADiskThatDoesNotAnswerAndClosesIt)
{
    FakeDevices::Disk silent{page83(kWwn)};
    silent.ioctlResult = -1;
    FakeDevices::Disk checking{page83(kWwn)};
    checking.scsiStatus = 2;  // CHECK CONDITION
    for (const FakeDevices::Disk& disk : {silent, checking}) {
        devices.addDisk("/dev/disk", disk);
        EXPECT_EQ(identify("/dev/disk"), kNothing);
        EXPECT_EQ(devices.openCount(), 0U);
    }
}

TEST_F(DeviceIdentification, OpensNothingForAnEmptyName)
{
    EXPECT_EQ(identify(""), kNothing);
    EXPECT_THAT(devices.opened(), testing::IsEmpty());
    EXPECT_THAT(newLog(), testing::ElementsAre("info: strDevice is empty! GetDisk83Page"));
}

/// What must come out for a page, reckoned apart from the code under test.
Identified expectedOf(Bytes page)
{
    page.resize(256);
    if (page[7] > 31) {
        return kNothing;
    }
    std::string wwn;
    for (std::size_t i = 0; i < page[7]; ++i) {
        wwn += "0123456789abcdef"[page[8 + i] / 16];
        wwn += "0123456789abcdef"[page[8 + i] % 16];
    }
    std::int64_t number = page[20] * 0x1000000LL + page[21] * 0x10000 + page[22] * 0x100 + page[23];
    number -= number >= 0x80000000LL ? 0x100000000LL : 0;
    return {0, wwn, std::to_string(number).substr(0, 10)};
}

TEST_F(DeviceIdentification, MakesSenseOfAnyPage)
{
    std::mt19937 random(20210304);  // NOLINT(cert-msc51-cpp): the same inputs in every run
    for (int i = 0; i < 20000; ++i) {
        Bytes page(random() % 2 == 0 ? random() % 48 : random() % 300);
        std::generate(page.begin(), page.end(), [&] { return static_cast<unsigned char>(random()); });
        if (page.size() > 7 && random() % 2 == 0) {
            page[7] = static_cast<unsigned char>(random() % 40);
        }
        ASSERT_EQ(identifyPage(page), expectedOf(page)) << testing::PrintToString(page);
    }
    EXPECT_EQ(devices.openCount(), 0U);
}

}  // namespace
}  // namespace brevan::test
