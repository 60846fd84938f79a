#ifndef BREVAN_TESTS_SUPPORT_FAKEDEVICES_H
#define BREVAN_TESTS_SUPPORT_FAKEDEVICES_H

#include "scanner/HostDevices.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace brevan::test {

/// The bytes of a page 0x83 whose first designator is `hex` (two digits a byte).
std::vector<unsigned char> page83(const std::string& hex);

/// A host whose disks are pages in memory. From construction to destruction it is the SDK's host.
class FakeDevices final : public HostDevices {
public:
    /// What a disk does. `page` may be shorter than a real one: the rest of the caller's buffer stays as it was.
    struct Disk {
        std::vector<unsigned char> page;
        bool opensForWriting = true;
        bool opens = true;
        int ioctlResult = 0;
        unsigned char scsiStatus = 0;
    };

    FakeDevices();
    ~FakeDevices() override;

    int open(const char* path, int flags) override;
    void close(int fd) override;
    int scsiGeneric(int fd, sg_io_hdr& request) override;
    int shell(const char* command) override;
    bool exists(const char* path) override;

    void addDisk(const std::string& path, Disk disk);
    void addDisk(const std::string& path, const std::string& designatorHex) { addDisk(path, Disk{page83(designatorHex)}); }
    void addFile(const std::string& path);

    /// The first `count` runs of a shell command succeed, later ones fail.
    void succeedShell(int count);

    std::vector<std::string> shellCommands() const;
    std::vector<std::string> opened() const;                        ///< "PATH flags", in order
    std::vector<std::vector<unsigned char>> commandBlocks() const;  ///< of every SCSI command, in order
    std::vector<unsigned int> timeouts() const;
    std::size_t openCount() const;  ///< descriptors that are not closed

private:
    mutable std::mutex m_mutex;
    std::map<std::string, Disk> m_disks;
    std::map<int, std::string> m_descriptors;
    std::set<std::string> m_files;
    std::vector<std::string> m_shellCommands;
    std::vector<std::string> m_opened;
    std::vector<std::vector<unsigned char>> m_commandBlocks;
    std::vector<unsigned int> m_timeouts;
    int m_shellSuccesses = 0;
    int m_nextDescriptor = 100;
    HostDevices& m_real;
};

}  // namespace brevan::test

#endif
