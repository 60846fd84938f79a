#ifndef BREVAN_SCANNER_HOSTDEVICES_H
#define BREVAN_SCANNER_HOSTDEVICES_H

#include "foundation/Seam.h"

struct sg_io_hdr;

namespace brevan {

/// What the scanner asks of the host directly, without the command runner.
class HostDevices {
public:
    virtual ~HostDevices() = default;
    virtual int open(const char* path, int flags) = 0;  ///< a descriptor, or -1
    virtual void close(int fd) = 0;
    virtual int scsiGeneric(int fd, sg_io_hdr& request) = 0;  ///< ioctl(fd, SG_IO)
    virtual int shell(const char* command) = 0;               ///< system()
    virtual bool exists(const char* path) = 0;                ///< stat() succeeds
};

Seam<HostDevices>& hostDevicesSeam();

inline HostDevices& hostDevices()
{
    return hostDevicesSeam().get();
}

}  // namespace brevan

#endif
