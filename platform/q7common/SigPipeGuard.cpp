#include "SigPipeGuard.h"

#include <cerrno>
#include <ctime>

namespace brevan {

SigPipeGuard::SigPipeGuard(bool isNeeded) noexcept : m_isActive(isNeeded)
{
    if (!m_isActive) {
        return;
    }
    const int errnoBefore = errno;
    sigemptyset(&m_pipe);
    sigaddset(&m_pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
    // One can only be pending already where the application itself blocks the signal; that one is the application's.
    if (sigismember(&m_before, SIGPIPE) == 1) {
        sigset_t pending;
        m_wasPending = sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
    }
    errno = errnoBefore;
}

SigPipeGuard::~SigPipeGuard()
{
    if (!m_isActive) {
        return;
    }
    const int errnoBefore = errno;
    if (!m_wasPending) {
        const timespec kNow{};
        while (sigtimedwait(&m_pipe, nullptr, &kNow) == -1 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    errno = errnoBefore;
}

}  // namespace brevan
