// disk_search DISKS: what GetDiskPath costs on a host with so many disks, over the least that a search by identification page can
// do. Runs on the simulated host (disk-search-bench.sh), whose disks it makes.
#include "Measurement.h"
#include "tests/simulated_host/Disks.h"

#include <brevan/brevan.h>

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace brevan::bench;
using brevan::test::Disks;
using brevan::test::otherWwn;

constexpr int kRounds = 41;

struct Release {
    void operator()(CDeviceManager* manager) const { CDeviceManager::releaseInstance(manager); }
};
using Manager = std::unique_ptr<CDeviceManager, Release>;

/// As many disks as are wanted, and their WWNs by path, in the order in which the search comes to them.
class ManyDisks {
public:
    explicit ManyDisks(unsigned count)
    {
        for (unsigned number = 0; number < count; ++number) {
            const std::string wwn = otherWwn(number);
            const std::string name = "sd" + std::to_string(number);
            m_disks.add(name, brevan::test::fixture("naa-first", wwn), {"scsi-3" + wwn, "wwn-0x" + wwn});
            m_wwns["/dev/disk/by-id/../../" + name] = wwn;
        }
    }
    const std::map<std::string, std::string>& wwns() const { return m_wwns; }

private:
    Disks m_disks;
    std::map<std::string, std::string> m_wwns;
};

void want(bool isSo, const std::string& what)
{
    if (!isSo) {
        throw std::runtime_error(what);
    }
}

void runCommand(const std::string& command)
{
    want(std::system((command + " >/dev/null").c_str()) == 0, command + " failed");
}

void askDisk(const std::string& path)
{
    unsigned char command[6] = {0x12, 0x01, 0x83, 0x00, 0xff, 0x00};  // INQUIRY for page 0x83 (SPC-5, 6.6)
    unsigned char page[255] = {};
    unsigned char sense[64] = {};
    const int disk = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    sg_io_hdr request{};
    request.interface_id = 'S';
    request.dxfer_direction = SG_DXFER_FROM_DEV;
    request.cmd_len = sizeof command;
    request.cmdp = command;
    request.mx_sb_len = sizeof sense;
    request.sbp = sense;
    request.dxfer_len = sizeof page;
    request.dxferp = page;
    request.timeout = 60000;
    want(disk >= 0 && ioctl(disk, SG_IO, &request) == 0 && page[1] == 0x83, path + " gave no page");
    close(disk);
}

void leastSearch(const ManyDisks& disks)
{
    runCommand("ls -l /dev/disk/by-id");
    for (const auto& [path, wwn] : disks.wwns()) {
        askDisk(path);
    }
}

/// Medians of both, taken in turns so that what else the machine does meets both alike.
void compare(const std::string& name, const std::function<void()>& ours, const std::function<void()>& least)
{
    std::vector<double> times;
    std::vector<double> limits;
    for (int round = 0; round < kRounds; ++round) {
        times.push_back(microseconds(ours));
        limits.push_back(microseconds(least));
    }
    report(name, median(times) / 1000, median(limits) / 1000, "ms", "<= 1.25");
}

void measure(const ManyDisks& disks)
{
    const Manager manager(CDeviceManager::getInstance());
    CDiskScannerHandler& scanner = *static_cast<CDiskScannerHandler*>(manager->getHandler(HANDLER_DISK_SCANNER));
    const auto search = [&](std::string wwn, const std::string& path) {
        std::string id = "1";
        want(scanner.GetDiskPath(id, wwn, MOTYPE_LUN) == path, "the search for " + wwn + " did not find \"" + path + "\"");
    };
    const std::string count = std::to_string(disks.wwns().size());
    compare(
        "GetDiskPath among " + count + " disks, none of them, beside ls and as many open, SG_IO, close",
        [&] { search(otherWwn(0xffffffff), ""); }, [&] { leastSearch(disks); });
    const auto& [lastPath, lastWwn] = *disks.wwns().rbegin();
    const std::string rescan =
        "sudo /opt/root_tool/common/security_sudo_v3.sh dev_rescan " + lastPath.substr(lastPath.rfind('/') + 1);
    compare(
        "GetDiskPath among " + count + " disks, the last of them, beside the same and the disk's rescan",
        [&, &path = lastPath, &wanted = lastWwn] { search(wanted, path); },
        [&] {
            leastSearch(disks);
            runCommand(rescan);
        });
}

}  // namespace

int main(int argc, char** argv)
try {
    const unsigned long count = argc == 2 ? std::strtoul(argv[1], nullptr, 10) : 0;
    want(count > 0, "run disk-search-bench.sh");
    measure(ManyDisks(static_cast<unsigned>(count)));
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "disk_search: " << failure.what() << "\n";
    return 1;
}
