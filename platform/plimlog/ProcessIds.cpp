#include "platform/plimlog/ProcessIds.h"

#include <atomic>
#include <cerrno>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

namespace brevan::plimlog {
namespace {

using CachedId = std::atomic<pid_t>;

/// A page that the kernel empties in every child, however that was made. Null where the kernel cannot do that.
CachedId* mapCachedId() noexcept
{
    const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* page = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) {
        return nullptr;
    }
    if (madvise(page, size, MADV_WIPEONFORK) != 0) {
        munmap(page, size);
        return nullptr;
    }
    return ::new (page) CachedId(0);
}

CachedId* const kCachedId = mapCachedId();

}  // namespace

pid_t currentProcessId() noexcept
{
    pid_t id = kCachedId != nullptr ? kCachedId->load(std::memory_order_relaxed) : 0;
    if (id == 0) {
        id = getpid();
        if (kCachedId != nullptr) {
            kCachedId->store(id, std::memory_order_relaxed);
        }
    }
    return id;
}

pid_t currentThreadId() noexcept
{
    // spdlog keeps the id without the process's, so that a child of fork would go on under its parent's id.
    thread_local pid_t ownerProcess = 0;
    thread_local pid_t threadId = 0;
    const pid_t process = currentProcessId();
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

}  // namespace brevan::plimlog
