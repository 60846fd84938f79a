#include "FailingNew.h"

#include <cstdlib>
#include <new>

namespace {

thread_local long t_allocationsLeft = -1;  // below 0: no limit
thread_local bool t_failsOn = false;
thread_local bool t_hasFailed = false;

bool isRefused()
{
    if (t_allocationsLeft < 0 || t_allocationsLeft-- > 0) {
        return false;
    }
    t_allocationsLeft = t_failsOn ? 0 : -1;
    t_hasFailed = true;
    return true;
}

void* allocate(std::size_t bytes)
{
    if (isRefused()) {
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(bytes > 0 ? bytes : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t bytes)
{
    return allocate(bytes);
}

// The sanitizer has one of its own, which would not go with our delete.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    try {
        return allocate(bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace brevan::plimlog {

void failAllocationAfter(long count)
{
    t_failsOn = false;
    t_hasFailed = false;
    t_allocationsLeft = count;
}

void failAllocationsFrom(long count)
{
    failAllocationAfter(count);
    t_failsOn = true;
}

bool allocationHasFailed()
{
    t_allocationsLeft = -1;
    return t_hasFailed;
}

}  // namespace brevan::plimlog
