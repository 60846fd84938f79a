#include "platform/plimlog/RotatingFile.h"

#include "platform/plimlog/LogDirectory.h"
#include "platform/plimlog/ProcessIds.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <utility>

#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brevan::plimlog {
namespace {

constexpr unsigned kMostInstances = 100;

/// A write past the process's own limit on file sizes would end the process by a signal.
std::uint64_t withinProcessLimit(std::uint64_t bytes) noexcept
{
    rlimit limit{};
    return getrlimit(RLIMIT_FSIZE, &limit) == 0 ? std::min<std::uint64_t>(bytes, limit.rlim_cur) : bytes;
}

}  // namespace

RotatingFile::RotatingFile(std::string directory, LogFileName name, std::uint64_t maxBytes, unsigned maxFiles)
    : m_directory(std::move(directory)),
      m_name(std::move(name)),
      m_maxBytes(withinProcessLimit(maxBytes)),
      m_maxFiles(maxFiles),
      m_owner(currentProcessId())
{
}

RotatingFile::~RotatingFile()
{
    close();
}

int RotatingFile::open() noexcept
{
    if (m_fd >= 0) {
        return 0;
    }
    try {
        int error = openOnce();
        if (error == ENOENT) {
            error = makeDirectory(m_directory);
            error = error == 0 ? openOnce() : error;
        }
        return error;
    } catch (const std::exception&) {
        return ENOMEM;
    }
}

/// Takes the first instance of the name that no other process holds. The lock tells processes apart which have the same
/// id because they live in different containers.
int RotatingFile::openOnce()
{
    for (; m_name.instance <= kMostInstances; ++m_name.instance) {
        m_fd = openLogFile(path());
        if (m_fd < 0) {
            return errno;
        }
        struct stat status {};
        const bool held = flock(m_fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (!held && fstat(m_fd, &status) == 0) {
            m_size = static_cast<std::uint64_t>(status.st_size);
            return 0;
        }
        ::close(m_fd);  // never close(): the lock is not ours
        m_fd = -1;
    }
    m_name.instance = 1;
    return EBUSY;
}

int RotatingFile::write(std::string_view line) noexcept
{
    int error = makeRoom(line.size());
    if (error == 0) {
        error = append(line);
    }
    return error;
}

/// Closes a file that was removed, so that the next line makes it anew.
void RotatingFile::lookForFile() noexcept
{
    const auto now = Clock::now();
    struct stat status {};
    if (m_fd < 0 || now < m_nextLook || fstat(m_fd, &status) != 0) {
        return;
    }
    m_nextLook = now + kLookInterval;
    m_size = static_cast<std::uint64_t>(status.st_size);
    if (status.st_nlink == 0) {
        close();
    }
}

/// Sees to it that an open file is there and can take `bytes` more.
int RotatingFile::makeRoom(std::size_t bytes) noexcept
{
    if (bytes > m_maxBytes) {
        return EFBIG;
    }
    lookForFile();
    int error = open();
    if (error == 0 && m_size > 0 && m_size + bytes > m_maxBytes) {
        error = rotate();
    }
    return error;
}

int RotatingFile::rotate() noexcept
{
    try {
        for (unsigned generation = m_maxFiles - 1; generation > 0; --generation) {
            if (std::rename(pathOf(generation - 1).c_str(), pathOf(generation).c_str()) != 0 && errno != ENOENT) {
                return errno;
            }
        }
        if (m_maxFiles == 1 && ftruncate(m_fd, 0) != 0) {
            return errno;
        }
        close();
        return open();
    } catch (const std::exception&) {
        return ENOMEM;
    }
}

int RotatingFile::append(std::string_view line) noexcept
{
    std::size_t done = 0;
    while (done < line.size()) {
        const ssize_t wrote = ::write(m_fd, line.data() + done, line.size() - done);
        if (wrote < 0 && errno == EINTR) {
            continue;
        }
        if (wrote <= 0) {
            const int error = wrote < 0 ? errno : EIO;
            takeBack(done);
            return error;
        }
        done += static_cast<std::size_t>(wrote);
    }
    m_size += done;
    return 0;
}

/// Removes the beginning of a line whose end found no room.
void RotatingFile::takeBack(std::size_t bytes) noexcept
{
    struct stat status {};
    if (bytes > 0 && fstat(m_fd, &status) == 0) {
        [[maybe_unused]] const int result = ftruncate(m_fd, status.st_size - static_cast<off_t>(bytes));
    }
}

void RotatingFile::close() noexcept
{
    if (m_fd < 0) {
        return;
    }
    if (m_owner == currentProcessId()) {
        flock(m_fd, LOCK_UN);  // a child of fork may keep the descriptor open for long
    }
    ::close(m_fd);
    m_fd = -1;
}

std::string RotatingFile::pathOf(unsigned generation) const
{
    LogFileName name = m_name;
    name.generation = generation;
    return m_directory + "/" + name.text();
}

}  // namespace brevan::plimlog
