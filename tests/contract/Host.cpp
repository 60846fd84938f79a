#include "Host.h"

#include "support/Recorder.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/sem.h>
#include <sys/stat.h>
#include <sys/time.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <ctime>

namespace brevan::contract {
namespace {

void note(const std::string& line)
{
    test::Recorder::instance().logLine(line);
}

std::string hex(const unsigned char* bytes, std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        static const char* const kDigits = "0123456789abcdef";
        text += {kDigits[bytes[i] >> 4], kDigits[bytes[i] & 15]};
    }
    return text;
}

/// Page 0x83 with one designator.
std::string page(const std::string& designator)
{
    std::string bytes(8, '\0');
    bytes[1] = '\x83';
    bytes[7] = static_cast<char>(designator.size() / 2);
    for (std::size_t i = 0; i + 1 < designator.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(designator.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

}  // namespace

Host& Host::instance()
{
    static Host host;
    return host;
}

void Host::reset()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_shell.clear();
    m_disks.clear();
    m_open.clear();
    m_settingFile = false;
    m_lockFails = false;
}

void Host::expectShell(const std::string& line, int result)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_shell.emplace_back(line, result);
}

void Host::addDisk(const std::string& path, const std::string& designator)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_disks[path] = designator;
}

void Host::verify() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    EXPECT_TRUE(m_shell.empty()) << m_shell.size() << " shell commands were expected and did not come";
}

int Host::shell(const char* line)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::string called = std::string("shell: ") + line;
    note(called);
    if (m_shell.empty() || m_shell.front().first != called) {
        ADD_FAILURE() << "unexpected " << called;
        return -1;
    }
    const int result = m_shell.front().second;
    m_shell.pop_front();
    return result;
}

int Host::openDisk(const std::string& path, bool forWriting)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    note((forWriting ? "open: " : "open read-only: ") + path);
    const auto found = m_disks.find(path);
    if (found == m_disks.end() || found->second.empty()) {
        EXPECT_TRUE(found != m_disks.end()) << "unexpected disk: " << path;
        errno = ENOENT;
        return -1;
    }
    const int fd = eventfd(0, EFD_CLOEXEC);  // any descriptor
    m_open[fd] = found->second;
    return fd;
}

bool Host::isDisk(int fd) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_open.count(fd) != 0;
}

int Host::inquire(int fd, void* request)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    auto& inquiry = *static_cast<sg_io_hdr*>(request);
    note("inquiry: " + hex(inquiry.cmdp, inquiry.cmd_len) + ", " + std::to_string(inquiry.dxfer_len) + " bytes, " +
         std::to_string(inquiry.mx_sb_len) + " of sense, " + std::to_string(inquiry.timeout) + " ms");
    EXPECT_EQ(inquiry.interface_id, 'S');
    EXPECT_EQ(inquiry.dxfer_direction, SG_DXFER_FROM_DEV);
    const std::string bytes = page(m_open[fd]);
    std::memcpy(inquiry.dxferp, bytes.data(), bytes.size());
    m_open.erase(fd);
    return 0;
}

}  // namespace brevan::contract

using brevan::contract::Host;
using brevan::test::Recorder;

namespace {

// No objects: these functions are called before this program's objects are made.
constexpr char kDiskFolder[] = "/dev/disk/by-id/";
constexpr char kRescanSettingFile[] = "/opt/norvane-data-protection/dunmere/microservice/zql_backup/conf/uprescan";

/// The C library's own function behind ours.
template <class Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int openAny(const char* path, int flags, mode_t mode)
{
    if (std::strncmp(path, kDiskFolder, sizeof(kDiskFolder) - 1) == 0) {
        return Host::instance().openDisk(path, (flags & O_ACCMODE) == O_RDWR);
    }
    static auto* const own = real<int(const char*, int, ...)>("open");
    return own(path, flags, mode);
}

}  // namespace

// The linker lets these take the place of the C library's in the whole process. Marked visible, or they would stay this program's own.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library's names are reserved ones
#pragma GCC visibility push(default)

extern "C" {

int nanosleep(const timespec* wanted, timespec*)
{
    Recorder::instance().logLine("sleep: " + std::to_string(wanted->tv_sec * 1000000 + wanted->tv_nsec / 1000));
    return 0;
}

int gettimeofday(timeval* __restrict now, void* __restrict) noexcept
{
    now->tv_sec = 1614834367;
    now->tv_usec = 89999;
    return 0;
}

int system(const char* line)
{
    return Host::instance().shell(line);
}

int open(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return openAny(path, flags, mode);
}

int __open_2(const char* path, int flags)
{
    return openAny(path, flags, 0);
}

int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list rest;
    va_start(rest, request);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    if (request == SG_IO && Host::instance().isDisk(fd)) {
        return Host::instance().inquire(fd, argument);
    }
    static auto* const own = real<int(int, unsigned long, ...)>("ioctl");
    return own(fd, request, argument);
}

int stat(const char* __restrict path, struct stat* __restrict status) noexcept
{
    if (std::strcmp(path, kRescanSettingFile) == 0) {
        Recorder::instance().logLine(std::string("stat: ") + kRescanSettingFile);
        return Host::instance().hasSettingFile() ? 0 : -1;
    }
    static auto* const own = real<int(const char*, struct stat*)>("stat");
    return own(path, status);
}

int semop(int id, sembuf* operations, size_t count) noexcept
{
    if (Host::instance().lockFails()) {
        return -1;
    }
    static auto* const own = real<int(int, sembuf*, size_t)>("semop");
    return own(id, operations, count);
}
}

#pragma GCC visibility pop
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
