#include "platform/plimlog/LogDirectory.h"

#include "platform/plimlog/LogFileName.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <memory>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brevan::plimlog {
namespace {

constexpr mode_t kDirectoryMode = 0750;
constexpr mode_t kFileMode = 0640;
constexpr int kFirstFreeDescriptor = 3;

class Descriptor {
public:
    explicit Descriptor(int fd) noexcept : m_fd(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (m_fd >= 0) {
            const int error = errno;
            close(m_fd);
            errno = error;
        }
    }

    int get() const noexcept { return m_fd; }
    int release() noexcept { return std::exchange(m_fd, -1); }

private:
    int m_fd;
};

bool isRegular(int fd) noexcept
{
    struct stat status {};
    if (fstat(fd, &status) != 0) {
        return false;
    }
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return S_ISREG(status.st_mode);
}

struct OldFile {
    LogFileName name;
    timespec changed;
};

bool isOlder(const OldFile& left, const OldFile& right)
{
    return std::make_pair(left.changed.tv_sec, left.changed.tv_nsec) <
           std::make_pair(right.changed.tv_sec, right.changed.tv_nsec);
}

bool processLives(pid_t pid)
{
    return kill(pid, 0) == 0 || errno == EPERM;
}

/// Not std::filesystem: its iterator ends the process where memory runs out.
std::vector<OldFile> filesOfEndedProcesses(const std::string& directory, const std::string& tag)
{
    std::vector<OldFile> files;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(directory.c_str()), &closedir);
    while (const dirent* entry = entries ? readdir(entries.get()) : nullptr) {
        const auto name = parseLogFileName(entry->d_name);
        struct stat status {};
        if (name && name->tag == tag && !processLives(name->pid) &&
            fstatat(dirfd(entries.get()), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode)) {
            files.push_back({*name, status.st_mtim});
        }
    }
    return files;
}

/// A process in another container may live although its id says nothing here. It holds a lock on the file that it writes.
bool ownerHoldsLock(const std::string& directory, LogFileName name)
{
    name.generation = 0;
    const Descriptor file(open((directory + "/" + name.text()).c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    return file.get() >= 0 && flock(file.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

}  // namespace

int makeDirectory(const std::string& path) noexcept
{
    try {
        for (std::size_t end = 0; end != std::string::npos;) {
            end = path.find('/', end + 1);
            const std::string part = path.substr(0, end);
            // Where mkdir is refused the part may still be there, for example on a file system that is read-only.
            struct stat status {};
            if (mkdir(part.c_str(), kDirectoryMode) != 0 && errno != EEXIST) {
                const int error = errno;
                if (stat(part.c_str(), &status) != 0) {
                    return error;
                }
            }
            if (stat(part.c_str(), &status) == 0 && !S_ISDIR(status.st_mode)) {
                return ENOTDIR;
            }
        }
        return 0;
    } catch (const std::exception&) {
        return ENOMEM;
    }
}

void pruneOldFiles(const std::string& directory, const std::string& tag, unsigned keep)
{
    std::vector<OldFile> files = filesOfEndedProcesses(directory, tag);
    if (files.size() <= keep) {
        return;
    }
    std::sort(files.begin(), files.end(), isOlder);
    files.resize(files.size() - keep);
    for (const OldFile& file : files) {
        if (!ownerHoldsLock(directory, file.name)) {
            unlink((directory + "/" + file.name.text()).c_str());
        }
    }
}

int readSmallFile(const std::string& path, std::size_t limit, std::string& text)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (file.get() < 0 || !isRegular(file.get())) {
        return errno;
    }
    text.resize(limit + 1);
    std::size_t size = 0;
    ssize_t got = 1;
    while (got > 0 && size < text.size()) {
        got = read(file.get(), text.data() + size, text.size() - size);
        if (got < 0 && errno != EINTR) {
            return errno;
        }
        size += got > 0 ? static_cast<std::size_t>(got) : 0;
        got = got < 0 ? 1 : got;
    }
    text.resize(size);
    return size > limit ? EFBIG : 0;
}

int openLogFile(const std::string& path) noexcept
{
    constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC;
    Descriptor file(open(path.c_str(), kFlags, kFileMode));
    if (file.get() < 0 || !isRegular(file.get())) {
        return -1;
    }
    return file.get() >= kFirstFreeDescriptor ? file.release() : fcntl(file.get(), F_DUPFD_CLOEXEC, kFirstFreeDescriptor);
}

}  // namespace brevan::plimlog
