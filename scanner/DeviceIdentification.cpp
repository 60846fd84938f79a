// The identity of one disk, from the disk itself.
#include "scanner/DiskScannerHandlerImpl.h"

#include "foundation/RunLog.h"
#include "scanner/HostDevices.h"
#include "scanner/NullArgument.h"

#include <fcntl.h>
#include <safe_mem_lib.h>
#include <scsi/sg.h>

#include <array>

using brevan::hostDevices;
using brevan::isNull;

namespace {

constexpr unsigned char kInquiry = 0x12;         // SPC-5, 6.6, table 141: operation code
constexpr unsigned char kEnableVpd = 0x01;       // SPC-5, 6.6: EVPD, bit 0 of byte 1
constexpr unsigned char kAllocation = 0xFF;      // SPC-5, 6.6: allocation length, low byte
constexpr unsigned char kIdentification = 0x83;  // SPC-5, 7.7.6: device identification page
constexpr int kDesignatorLengthAt = 7;           // SPC-5, 7.7.6.1: byte 3 of the first designation descriptor
constexpr int kDesignatorAt = 8;                 // SPC-5, 7.7.6.1: byte 4 of the same
constexpr int kLunNumberAt = 20;
constexpr int kLunNumberLength = 9;  // for four bytes: the conversion halves it
constexpr unsigned int kTimeoutMilliseconds = 60000;
constexpr int kWwnTextSize = 64;
constexpr int kNumberTextSize = 11;

/// An open disk; tried for writing first, since some drivers pass commands only then.
class OpenDisk {
public:
    explicit OpenDisk(const std::string& path) : m_fd(hostDevices().open(path.c_str(), O_RDWR | O_NONBLOCK))
    {
        if (m_fd < 0) {
            m_fd = hostDevices().open(path.c_str(), O_RDONLY | O_NONBLOCK);
        }
    }
    ~OpenDisk()
    {
        if (m_fd >= 0) {
            hostDevices().close(m_fd);
        }
    }
    OpenDisk(const OpenDisk&) = delete;
    OpenDisk& operator=(const OpenDisk&) = delete;

    int fd() const { return m_fd; }

private:
    int m_fd;
};

using Page = std::array<unsigned char, CDiskScannerHandlerImpl::kPageSize>;

int readIdentification(const std::string& device, Page& page)
{
    const OpenDisk disk(device);
    return disk.fd() < 0 ? -1 : CDiskScannerHandlerImpl::GetDiskPage(disk.fd(), kIdentification, page.data());
}

/// The designator's bytes as text. -1 where it is too long for the text.
int designatorText(Page& page, std::string& wwnOut)
{
    const int length = page[kDesignatorLengthAt];
    if (length * 2 >= kWwnTextSize) {
        return -1;
    }
    std::array<char, kWwnTextSize> text{};
    const int result = CDiskScannerHandlerImpl::BinaryToAscii(text.data(), kWwnTextSize, page.data(), kDesignatorAt, length);
    if (result == 0) {
        wwnOut = text.data();
    }
    return result;
}

/// The number that the log names; a disk without one is as good.
std::string lunNumberText(Page& page)
{
    std::array<unsigned char, kNumberTextSize> hex{};
    std::array<char, kNumberTextSize> decimal{};
    CDiskScannerHandlerImpl::ConvertLUNIDtoAscii(hex.data(), kNumberTextSize, page.data() + kLunNumberAt, kLunNumberLength);
    CDiskScannerHandlerImpl::HextoDec(decimal.data(), reinterpret_cast<char*>(hex.data()), kNumberTextSize);
    return decimal.data();
}

}  // namespace

int CDiskScannerHandlerImpl::GetDiskPage(int fd, unsigned char pageCode, unsigned char* buffer)
{
    if (isNull(buffer, "aucBuffer", "GetDiskPage")) {
        return -1;
    }
    std::array<unsigned char, 6> command = {kInquiry, kEnableVpd, pageCode, 0x00, kAllocation, 0x00};
    std::array<unsigned char, 64> sense{};
    sg_io_hdr request{};
    if (memset_s(&request, sizeof request, 0, sizeof request) != EOK) {
        return -1;
    }
    request.interface_id = 'S';
    request.dxfer_direction = SG_DXFER_FROM_DEV;
    request.cmd_len = static_cast<unsigned char>(command.size());
    request.mx_sb_len = static_cast<unsigned char>(sense.size());
    request.dxfer_len = kPageSize;
    request.dxferp = buffer;
    request.cmdp = command.data();
    request.sbp = sense.data();
    request.timeout = kTimeoutMilliseconds;
    return hostDevices().scsiGeneric(fd, request) == 0 && request.status == 0 ? 0 : -1;
}

int CDiskScannerHandlerImpl::GetDisk83Page(std::string& device, std::string& wwnOut, std::string& lunIdOut)
{
    if (device.empty()) {
        COMMLOG(OS_LOG_INFO, "strDevice is empty! GetDisk83Page");
        return -1;
    }
    Page page{};
    int result = readIdentification(device, page);
    if (result == 0) {
        result = designatorText(page, wwnOut);
    }
    if (result == 0) {
        lunIdOut = lunNumberText(page);
    }
    return result;
}
