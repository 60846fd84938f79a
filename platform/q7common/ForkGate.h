#ifndef BREVAN_Q7COMMON_FORKGATE_H
#define BREVAN_Q7COMMON_FORKGATE_H

namespace brevan {

/// Keeps forks out of libcurl and OpenSSL. OpenSSL has process-wide locks: one that another thread holds in the moment of a
/// fork stays locked in the child for ever. Threads pass while they compute and never while they wait for the network, so
/// that a fork waits for microseconds, and they never wait for each other.
class ForkGate {
public:
    /// Lets this thread through for as long as it lives. A thread that is through already may make another.
    class Pass {
    public:
        Pass() noexcept;
        ~Pass();
        Pass(const Pass&) = delete;
        Pass& operator=(const Pass&) = delete;
    };

    /// Around a fork; `reopenInChild` also forgets the threads that the child does not have.
    static void close() noexcept;
    static void reopen() noexcept;
    static void reopenInChild() noexcept;
};

}  // namespace brevan

#endif
