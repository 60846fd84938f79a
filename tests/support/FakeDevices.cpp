#include "support/FakeDevices.h"

#include <fcntl.h>
#include <scsi/sg.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace brevan::test {

std::vector<unsigned char> page83(const std::string& hex)
{
    const std::size_t length = hex.size() / 2;
    // Peripheral, page code, page length (2 bytes), code set, type NAA of the logical unit, reserved, designator length.
    std::vector<unsigned char> page = {0, 0x83, 0, static_cast<unsigned char>(length + 4),
                                       1, 3,    0, static_cast<unsigned char>(length)};
    for (std::size_t i = 0; i < length; ++i) {
        page.push_back(static_cast<unsigned char>(std::stoi(hex.substr(2 * i, 2), nullptr, 16)));
    }
    return page;
}

FakeDevices::FakeDevices() : m_real(hostDevicesSeam().replace(*this)) {}

FakeDevices::~FakeDevices()
{
    hostDevicesSeam().replace(m_real);
}

int FakeDevices::open(const char* path, int flags)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const bool forWriting = (flags & O_ACCMODE) == O_RDWR;
    m_opened.push_back(std::string(path) + (forWriting ? " rw" : " ro") + ((flags & O_NONBLOCK) != 0 ? " nonblock" : ""));
    const auto disk = m_disks.find(path);
    if (disk == m_disks.end()) {
        errno = ENOENT;
        return -1;
    }
    if (!disk->second.opens || (forWriting && !disk->second.opensForWriting)) {
        errno = EACCES;
        return -1;
    }
    m_descriptors[m_nextDescriptor] = path;
    return m_nextDescriptor++;
}

void FakeDevices::close(int fd)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_descriptors.erase(fd);
}

int FakeDevices::scsiGeneric(int fd, sg_io_hdr& request)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_commandBlocks.emplace_back(request.cmdp, request.cmdp + request.cmd_len);
    m_timeouts.push_back(request.timeout);
    const auto descriptor = m_descriptors.find(fd);
    if (descriptor == m_descriptors.end()) {
        errno = EBADF;
        return -1;
    }
    const Disk& disk = m_disks.at(descriptor->second);
    const std::size_t count = std::min<std::size_t>(disk.page.size(), request.dxfer_len);
    if (count != 0) {
        std::memcpy(request.dxferp, disk.page.data(), count);
    }
    request.status = disk.scsiStatus;
    return disk.ioctlResult;
}

int FakeDevices::shell(const char* command)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_shellCommands.emplace_back(command);
    return m_shellSuccesses-- > 0 ? 0 : 256;
}

bool FakeDevices::exists(const char* path)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_files.count(path) != 0;
}

void FakeDevices::addDisk(const std::string& path, Disk disk)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_disks[path] = std::move(disk);
}

void FakeDevices::addFile(const std::string& path)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_files.insert(path);
}

void FakeDevices::succeedShell(int count)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_shellSuccesses = count;
}

std::vector<std::string> FakeDevices::shellCommands() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_shellCommands;
}

std::vector<std::string> FakeDevices::opened() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_opened;
}

std::vector<std::vector<unsigned char>> FakeDevices::commandBlocks() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_commandBlocks;
}

std::vector<unsigned int> FakeDevices::timeouts() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_timeouts;
}

std::size_t FakeDevices::openCount() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_descriptors.size();
}

}  // namespace brevan::test
