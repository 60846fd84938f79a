#ifndef BREVAN_FOUNDATION_HELDOVERFORKS_H
#define BREVAN_FOUNDATION_HELDOVERFORKS_H

#include <pthread.h>

#include <mutex>

namespace brevan {

/// Made once beside a mutex of this process: forks wait until nobody holds it, so that no child begins with a mutex whose
/// holder it does not have. For mutexes that are held for moments.
template <std::mutex& Mutex>
class HeldOverForks {
public:
    HeldOverForks() noexcept { pthread_atfork(&lock, &unlock, &unlock); }
    HeldOverForks(const HeldOverForks&) = delete;
    HeldOverForks& operator=(const HeldOverForks&) = delete;

private:
    static void lock() { Mutex.lock(); }
    static void unlock() { Mutex.unlock(); }
};

}  // namespace brevan

#endif
