// What a backup does with a snapshot: log in, attach it to this host's iSCSI initiator, find its disk, read from it, and take it
// away again, also after a failure. Copy it together with common/: it uses nothing but that and the public headers.
#include "common/ArraySession.h"
#include "common/Attachment.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using namespace example;

namespace {

constexpr int kDiskNotRead = kFirstStatusBesidesAttach;

const char* const kHelp =
    R"(Attaches a snapshot of the array to this host, reads the first block of its disk and detaches it again.

usage: attach_snapshot --address IP --initiator IQN --snapshot ID [options]

  --address IP     management address of the array, an IPv4 or IPv6 literal
  --port N         its HTTPS port (default 8088)
  --user NAME      login user (default admin)
  --scope N        0: a user of the array, 1: a user of the directory server (default 0)
  --initiator IQN  this host's iSCSI initiator, as the array knows it; see /etc/iscsi/initiatorname.iscsi
  --host-ip IP     address to record where the array gets a new host object
  --snapshot ID    the snapshot, as the array lists it
  --help           this text

A snapshot that is attached already is read, and stays attached. The password comes from BREVAN_PASSWORD, or from a prompt.
Certificates are verified: name the array's CA file in transport.ini (BREVAN_TRANSPORT_CONFIG names the file to read). Finding
the disk needs the rescan script under /opt/root_tool/common, allowed for sudo, and the right to open disks (root, or group
disk).

exit status: 0 done, 1 other failure, 2 wrong usage, 3 login refused, 4 array not there, 5 certificate not trusted,
             6 unknown snapshot, 7 unknown initiator, 8 attach failed, 9 no disk found, 10 detach failed, 11 disk not read
)";

struct Options {
    Connection connection;
    std::string initiator;
    std::string hostIp;
    std::string snapshot;
};

Options parse(int argc, char** argv)
{
    Options options;
    std::vector<Option> known = connectionOptions(options.connection);
    known.push_back(textOption("initiator", options.initiator));
    known.push_back(textOption("host-ip", options.hostIp));
    known.push_back(textOption("snapshot", options.snapshot));
    parseOptions(argc, argv, kHelp, known);
    if (options.connection.address.empty() || options.initiator.empty() || options.snapshot.empty()) {
        throw Trouble{kUsage, "--address, --initiator and --snapshot are needed; try --help"};
    }
    return options;
}

std::string nameOf(const SnapshotMO& snapshot)
{
    return "snapshot " + snapshot.ID;
}

SnapshotMO readSnapshot(ArraySession& array, const std::string& id)
{
    return readKnown(kUnknownVolume, "the array has no snapshot " + id + "; choose one that it lists",
                     [&] { return array.get<CSnapshotHandler>(HANDLER_SNAPSHOT).getSnapshot(id); });
}

/// False where it was attached already.
bool attach(ArraySession& array, const Options& options, const SnapshotMO& snapshot, Steps& steps)
{
    checkInitiator(array, options.initiator);
    waitForNewSecond();
    steps.done("wait", "for a new second");
    auto& handler = array.get<CDiskAttachHandler>(HANDLER_DISK_ATTACH);
    const bool isNew =
        isNewlyAttached(handler.attachSnapshotToHost(snapshot.ID, options.initiator, options.hostIp), nameOf(snapshot));
    steps.done("attach", (isNew ? "" : "already: ") + nameOf(snapshot) + " to " + options.initiator);
    return isNew;
}

std::string findDisk(ArraySession& array, const SnapshotMO& snapshot)
{
    std::string id = snapshot.ID;
    auto& scanner = array.get<CDiskScannerHandler>(HANDLER_DISK_SCANNER);
    return requireDisk(scanner.scanSnapshotAfterAttach(id), nameOf(snapshot));
}

/// A disk, open for reading.
class Disk {
public:
    explicit Disk(const std::string& path) : m_path(path), m_fd(open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (m_fd < 0) {
            throw Trouble{kDiskNotRead, "cannot open " + path + ": " + std::strerror(errno)};
        }
    }
    ~Disk() { close(m_fd); }
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    std::vector<unsigned char> firstBlock() const
    {
        int size = 0;
        if (ioctl(m_fd, BLKSSZGET, &size) != 0 || size <= 0) {
            size = 512;  // the smallest there is
        }
        std::vector<unsigned char> block(static_cast<std::size_t>(size));
        const ssize_t got = pread(m_fd, block.data(), block.size(), 0);
        if (got != static_cast<ssize_t>(block.size())) {
            throw Trouble{kDiskNotRead, "cannot read the first block of " + m_path + ": " +
                                            (got < 0 ? std::strerror(errno) : "the disk is too short")};
        }
        return block;
    }

private:
    std::string m_path;
    int m_fd;
};

/// How many bytes, and the first 16 of them as numbers and as text.
std::string describe(const std::vector<unsigned char>& block)
{
    std::string numbers;
    std::string text;
    for (std::size_t i = 0; i < block.size() && i < 16; ++i) {
        char two[4];
        std::snprintf(two, sizeof two, "%02x ", block[i]);
        numbers += two;
        text += block[i] >= ' ' && block[i] <= '~' ? static_cast<char>(block[i]) : '.';
    }
    return std::to_string(block.size()) + " bytes: " + numbers + text;
}

/// The work of the backup. A real one reads the whole disk here.
std::string readVolume(ArraySession& array, const SnapshotMO& snapshot, Steps& steps)
{
    std::string path = findDisk(array, snapshot);
    steps.done("scan", path);
    const Disk disk(path);
    steps.done("read", describe(disk.firstBlock()));
    return path;
}

void detach(ArraySession& array, const Options& options, const SnapshotMO& snapshot)
{
    std::string id = snapshot.ID;
    array.get<CDiskScannerHandler>(HANDLER_DISK_SCANNER).scanSnapshotBeforeDetach(id);
    array.get<CDiskAttachHandler>(HANDLER_DISK_ATTACH).detachSnapshotFromHost(snapshot.ID, options.initiator);
    requireDetached(nameOf(snapshot));
}

/// Detaches what it has attached, whatever happens in between; the first trouble is the one that counts.
std::string readAttached(ArraySession& array, const Options& options, const SnapshotMO& snapshot, Steps& steps)
{
    std::string path;
    try {
        path = readVolume(array, snapshot, steps);
    } catch (const Trouble& trouble) {
        try {
            detach(array, options, snapshot);
        } catch (const Trouble& second) {
            throw Trouble{trouble.status, trouble.text + "; and " + second.text};
        }
        throw;
    } catch (...) {
        detach(array, options, snapshot);
        throw;
    }
    detach(array, options, snapshot);
    steps.done("detach", nameOf(snapshot) + "; the host keeps its disk until it is deleted there");
    return path;
}

void run(const Options& options)
{
    Steps steps;
    ArraySession array;
    array.login(options.connection);
    steps.done("login", nameOf(options.connection));
    const SnapshotMO snapshot = readSnapshot(array, options.snapshot);
    steps.done("read", nameOf(snapshot) + " " + snapshot.NAME + " of LUN " + snapshot.PARENTID + ", wwn " + snapshot.WWN);
    const bool isNew = attach(array, options, snapshot, steps);
    const std::string path = isNew ? readAttached(array, options, snapshot, steps) : readVolume(array, snapshot, steps);
    array.logout();
    steps.done("logout", "session ended");
    printResult("disk", path);
    printResult("wwn", snapshot.WWN);
}

}  // namespace

int main(int argc, char** argv)
{
    return runProgram("attach_snapshot", [&] { run(parse(argc, argv)); });
}
