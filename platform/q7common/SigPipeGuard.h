#ifndef BREVAN_Q7COMMON_SIGPIPEGUARD_H
#define BREVAN_Q7COMMON_SIGPIPEGUARD_H

#include <csignal>

namespace brevan {

/// While it lives, writing to a connection that the array has closed raises no SIGPIPE in this thread, and none is left
/// pending afterwards. The application's handlers and those of its other threads stay as they are.
class SigPipeGuard {
public:
    /// Does nothing where it is not needed.
    explicit SigPipeGuard(bool isNeeded) noexcept;
    ~SigPipeGuard();
    SigPipeGuard(const SigPipeGuard&) = delete;
    SigPipeGuard& operator=(const SigPipeGuard&) = delete;

private:
    bool m_isActive;
    sigset_t m_pipe;
    sigset_t m_before;
    bool m_wasPending = false;
};

}  // namespace brevan

#endif
