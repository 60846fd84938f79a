#include "scanner/HostDevices.h"

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace brevan {
namespace {

class OwnHostDevices final : public HostDevices {
public:
    // The application may start programs of its own: they must not inherit a disk. And where it has closed its standard descriptors,
    // what it prints must not go to one.
    int open(const char* path, int flags) override
    {
        const int fd = ::open(path, flags | O_CLOEXEC);
        if (fd < 0 || fd > STDERR_FILENO) {
            return fd;
        }
        const int moved = ::fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        ::close(fd);
        return moved;
    }
    void close(int fd) override { ::close(fd); }
    int scsiGeneric(int fd, sg_io_hdr& request) override { return ::ioctl(fd, SG_IO, &request); }
    int shell(const char* command) override { return std::system(command); }

    bool exists(const char* path) override
    {
        struct stat status {};
        return ::stat(path, &status) == 0;
    }
};

OwnHostDevices g_ownHostDevices;

}  // namespace

Seam<HostDevices>& hostDevicesSeam()
{
    static Seam<HostDevices> seam(g_ownHostDevices);
    return seam;
}

}  // namespace brevan
