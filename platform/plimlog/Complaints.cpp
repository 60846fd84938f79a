#include "platform/plimlog/Complaints.h"

#include "platform/plimlog/LineText.h"

#include <csignal>
#include <exception>

#include <unistd.h>

namespace brevan::plimlog {
namespace {

constexpr std::size_t kMostTexts = 100;

/// write() without the signal that a broken pipe brings.
void writeQuietly(const std::string& line)
{
    sigset_t brokenPipe;
    sigset_t before;
    sigset_t pending;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    sigpending(&pending);
    const bool wasPending = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &brokenPipe, &before);
    const bool written = write(STDERR_FILENO, line.data(), line.size()) >= 0;
    const timespec atOnce{};
    if (!written && !wasPending) {
        sigtimedwait(&brokenPipe, nullptr, &atOnce);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace

void Complaints::say(std::string_view text) noexcept
{
    try {
        if (m_said.size() >= kMostTexts || !m_said.emplace(text).second) {
            return;
        }
        std::string line = "libPlimLogAPI: ";
        line += LineText(text).view();
        writeQuietly(line + "\n");
    } catch (const std::exception&) {
        // no memory to say it with
    }
}

}  // namespace brevan::plimlog
