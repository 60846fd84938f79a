#ifndef BREVAN_Q7COMMON_STANDARDDESCRIPTORS_H
#define BREVAN_Q7COMMON_STANDARDDESCRIPTORS_H

#include "FileDescriptor.h"

#include <fcntl.h>
#include <unistd.h>

namespace brevan {

/// As long as it lives, nothing that this thread opens becomes descriptor 0, 1 or 2, also where the application has closed them:
/// what it then prints must not go to the array.
class StandardDescriptors {
public:
    StandardDescriptors() noexcept
    {
        for (FileDescriptor& held : m_held) {
            FileDescriptor opened(::open("/dev/null", O_RDWR | O_CLOEXEC));
            if (!opened.isOpen() || opened.get() > STDERR_FILENO) {
                return;
            }
            held = std::move(opened);
        }
    }

private:
    FileDescriptor m_held[STDERR_FILENO + 1];
};

}  // namespace brevan

#endif
