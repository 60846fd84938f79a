#include "platform/plimlog/ProcessIds.h"

#include <cerrno>

#include <unistd.h>

namespace brevan::plimlog {

pid_t currentThreadId() noexcept
{
    // spdlog keeps the id without the process's, so that a child of fork would go on under its parent's id.
    thread_local pid_t ownerProcess = 0;
    thread_local pid_t threadId = 0;
    const pid_t process = getpid();
    if (ownerProcess != process) {
        threadId = gettid();
        ownerProcess = process;
    }
    return threadId;
}

std::string programName()
{
    const char* name = program_invocation_short_name;
    return name != nullptr && *name != '\0' ? name : "unnamed";
}

}
