// The simulated host's disks answer SG_IO as the kernel does for a SCSI disk.
#include "Disks.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <vector>

namespace brevan::test {
namespace {

constexpr unsigned char kNoise = 0xA5;
constexpr const char* kPage = "00 83 00 04 01 03 00 00   # eight bytes\n";

/// A disk "sdx", and one command to it whose buffers are full of noise.
class ScsiGeneric : public testing::Test {
protected:
    ScsiGeneric()
    {
        data.fill(kNoise);
        sense.fill(kNoise);
        request.interface_id = 'S';
        request.dxfer_direction = SG_DXFER_FROM_DEV;
        request.mx_sb_len = 16;
        request.dxfer_len = static_cast<unsigned>(data.size());
        request.dxferp = data.data();
        request.sbp = sense.data();
    }

    int send(std::vector<unsigned char> command, const std::string& answer)
    {
        disks.add("sdx", answer, {});
        const int fd = open("/dev/sdx", O_RDONLY);
        request.cmdp = command.data();
        request.cmd_len = static_cast<unsigned char>(command.size());
        const int result = ioctl(fd, SG_IO, &request);
        const int error = errno;
        close(fd);
        errno = error;
        return result;
    }

    /// INQUIRY for page 0x83 with that allocation length.
    int inquire(const std::string& answer, unsigned char allocated = 255)
    {
        return send({0x12, 1, 0x83, 0, allocated, 0}, answer);
    }

    Disks disks;
    std::array<unsigned char, 32> data{};
    std::array<unsigned char, 32> sense{};
    sg_io_hdr request{};
};

TEST_F(ScsiGeneric, DeliversThePageAndNothingElse)
{
    ASSERT_EQ(inquire(kPage), 0);
    EXPECT_EQ(data[1], 0x83);
    EXPECT_EQ(data[7], 0);
    EXPECT_EQ(data[8], kNoise);
    EXPECT_EQ(request.resid, 24);
    EXPECT_EQ(request.status, 0);
    EXPECT_EQ(request.sb_len_wr, 0);
    EXPECT_EQ(request.info & SG_INFO_OK_MASK, static_cast<unsigned>(SG_INFO_OK));
}

TEST_F(ScsiGeneric, SendsNoMoreThanTheAllocationLength)
{
    ASSERT_EQ(inquire(kPage, 5), 0);
    EXPECT_EQ(data[4], 1);
    EXPECT_EQ(data[5], kNoise);
    EXPECT_EQ(request.resid, 27);
}

TEST_F(ScsiGeneric, SendsNoMoreThanTheBufferHolds)
{
    request.dxfer_len = 6;
    ASSERT_EQ(inquire(kPage), 0);
    EXPECT_EQ(data[6], kNoise);
    EXPECT_EQ(request.resid, 0);
}

TEST_F(ScsiGeneric, DeliversStatusAndAsMuchSenseAsHasRoom)
{
    ASSERT_EQ(inquire("status 02\nsense 70 00 06 00 00 00 00 0a 00 00 00 00 29 00 00 00 00 00\n"), 0);
    EXPECT_EQ(request.status, 2);
    EXPECT_EQ(request.masked_status, 1);
    EXPECT_EQ(request.sb_len_wr, 16);
    EXPECT_EQ(sense[12], 0x29);
    EXPECT_EQ(sense[16], kNoise);
    EXPECT_EQ(request.info & SG_INFO_OK_MASK, static_cast<unsigned>(SG_INFO_CHECK));
    EXPECT_EQ(data[0], kNoise);
}

TEST_F(ScsiGeneric, TellsOfTheAdaptersStatus)
{
    ASSERT_EQ(inquire("host-status 03\n"), 0);
    EXPECT_EQ(request.status, 0);
    EXPECT_EQ(request.host_status, 3);
    EXPECT_EQ(request.resid, 32);
}

TEST_F(ScsiGeneric, RefusesOtherCommandsAndPages)
{
    ASSERT_EQ(send({0x12, 1, 0x80, 0, 255, 0}, kPage), 0);
    EXPECT_EQ(request.status, 2);
    EXPECT_EQ(sense[12], 0x24);
    ASSERT_EQ(send({0x00, 0, 0, 0, 0, 0}, kPage), 0);
    EXPECT_EQ(request.status, 2);
    EXPECT_EQ(sense[12], 0x20);
}

TEST_F(ScsiGeneric, FailsAsTheKernelDoes)
{
    EXPECT_EQ(inquire("errno 6\n"), -1);
    EXPECT_EQ(errno, ENXIO);
    request.interface_id = 'Q';
    EXPECT_EQ(inquire(kPage), -1);
    EXPECT_EQ(errno, ENOSYS);
}

TEST_F(ScsiGeneric, LeavesOtherFilesAlone)
{
    const int fd = open("/dev/null", O_RDONLY);
    EXPECT_EQ(ioctl(fd, SG_IO, &request), -1);
    EXPECT_EQ(errno, ENOTTY);
    close(fd);
}

}  // namespace
}  // namespace brevan::test
