#ifndef BREVAN_TESTS_KERNEL_HOST_HOSTDISKS_H
#define BREVAN_TESTS_KERNEL_HOST_HOSTDISKS_H

#include <cstddef>
#include <string>
#include <vector>

// The disks of this host without the library: what sysfs, udev and other programs say of them.

namespace brevan::test {

constexpr const char* kByIdFolder = "/dev/disk/by-id/";
constexpr std::size_t kPatternBytes = 64 << 10;

/// The names of all SCSI disks ("sda"), and of all links in /dev/disk/by-id, in the order of the alphabet.
std::vector<std::string> diskNames();
std::vector<std::string> linkNames();

/// "sda", from a path that the library returned or from "/dev/sda".
std::string nameOf(const std::string& path);

/// The NAA designator that sg_inq reads from page 0x83; empty where the disk does not answer.
std::string wwnBySgInq(const std::string& path);

/// The host forgets a disk: by hand, since the array cannot make it.
void deleteDisk(const std::string& path);

/// A disk of the kernel's own making, whose first designator is a text; its further parameters as modprobe takes them.
void addDebugDisk(const std::string& parameters = "");
void removeDebugDisk();

/// Bytes that differ from pattern to pattern and from block to block.
std::string pattern(int number);

/// Writes a pattern at the beginning of a disk and has it reach the array; what stands there, read past the cache.
void writeDisk(const std::string& path, const std::string& bytes);
std::string readDisk(const std::string& path);

}  // namespace brevan::test

#endif
