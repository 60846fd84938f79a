#include "HostDisks.h"

#include "KernelHost.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace brevan::test {
namespace {

constexpr std::size_t kBlock = 4096;

std::vector<std::string> namesIn(const std::string& folder)
{
    std::vector<std::string> names;
    std::error_code missing;  // udev makes and removes the folder with the first and the last link
    for (const auto& entry : std::filesystem::directory_iterator(folder, missing)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

[[noreturn]] void fail(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// An open disk, and memory as O_DIRECT wants it.
class DirectDisk {
public:
    DirectDisk(const std::string& path, int flags) : m_fd(open(path.c_str(), flags | O_DIRECT | O_CLOEXEC))
    {
        if (m_fd < 0) {
            fail(path);
        }
    }
    ~DirectDisk() { close(m_fd); }
    DirectDisk(const DirectDisk&) = delete;
    DirectDisk& operator=(const DirectDisk&) = delete;

    int fd() const { return m_fd; }
    char* memory() const { return m_memory.get(); }

private:
    int m_fd;
    std::unique_ptr<char, void (*)(void*)> m_memory{static_cast<char*>(std::aligned_alloc(kBlock, kPatternBytes)),
                                                    std::free};
};

}  // namespace

std::vector<std::string> diskNames()
{
    std::vector<std::string> names = namesIn("/sys/block");
    names.erase(std::remove_if(names.begin(), names.end(), [](const auto& name) { return name.rfind("sd", 0) != 0; }),
                names.end());
    return names;
}

std::vector<std::string> linkNames()
{
    return namesIn(kByIdFolder);
}

std::string nameOf(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

std::string wwnBySgInq(const std::string& path)
{
    const std::string page = run("sg_inq -p 0x83 " + path + " || true");
    const auto begin = page.find("[0x6");
    return begin == std::string::npos ? "" : page.substr(begin + 3, 32);
}

void deleteDisk(const std::string& path)
{
    run("echo 1 >/sys/block/" + nameOf(path) + "/device/delete && udevadm settle");
}

void addDebugDisk(const std::string& parameters)
{
    run("modprobe scsi_debug dev_size_mb=8 " + parameters + " && udevadm settle");
}

void removeDebugDisk()
{
    run("for i in $(seq 200); do rmmod scsi_debug 2>/dev/null && break; sleep 0.1; done; udevadm settle");  // udev may have it open
}

std::string pattern(int number)
{
    std::string bytes(kPatternBytes, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(static_cast<std::size_t>(number) * 31 + i + i / 512);
    }
    return bytes;
}

void writeDisk(const std::string& path, const std::string& bytes)
{
    const DirectDisk disk(path, O_WRONLY);
    std::memcpy(disk.memory(), bytes.data(), kPatternBytes);
    if (pwrite(disk.fd(), disk.memory(), kPatternBytes, 0) != static_cast<ssize_t>(kPatternBytes) || fsync(disk.fd()) != 0) {
        fail("writing " + path);
    }
}

std::string readDisk(const std::string& path)
{
    const DirectDisk disk(path, O_RDONLY);
    if (pread(disk.fd(), disk.memory(), kPatternBytes, 0) != static_cast<ssize_t>(kPatternBytes)) {
        fail("reading " + path);
    }
    return {disk.memory(), kPatternBytes};
}

}  // namespace brevan::test
