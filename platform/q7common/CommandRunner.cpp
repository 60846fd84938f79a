#include "CommandRunner.h"

#include "ShellProcess.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <cstring>

namespace brevan {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// One pipe and where its bytes go.
class PipeReader {
public:
    PipeReader(const FileDescriptor& descriptor, BoundedOutput& target) : m_descriptor(descriptor.get()), m_target(target) {}

    bool isAtEnd() const { return m_descriptor < 0; }
    /// For poll, which skips negative numbers.
    pollfd watched() const { return {m_descriptor, POLLIN, 0}; }

    /// Takes one portion; how many bytes it was.
    std::size_t read()
    {
        std::array<char, 16 * 1024> portion;
        const ssize_t count = ::read(m_descriptor, portion.data(), portion.size());
        if (count > 0) {
            m_target.add({portion.data(), static_cast<std::size_t>(count)});
            return static_cast<std::size_t>(count);
        }
        if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            m_descriptor = -1;
        }
        return 0;
    }

    /// Takes what is in the pipe now, which is all that an ended command wrote, and not what a background child still
    /// writes.
    void drain()
    {
        int waiting = 0;
        if (isAtEnd() || ioctl(m_descriptor, FIONREAD, &waiting) != 0) {
            return;
        }
        for (auto rest = static_cast<std::size_t>(waiting); rest > 0 && !isAtEnd();) {
            rest -= std::min(rest, read());
        }
    }

private:
    int m_descriptor;
    BoundedOutput& m_target;
};

/// Follows a running command.
class Watch {
public:
    Watch(const ShellProcess& process, CommandOutcome& outcome)
        : m_output(process.output(), outcome.output),
          m_errors(process.errors(), outcome.errors),
          m_status(process.status(), m_statusText)
    {
    }

    /// Reads until the command has ended, or `end` has come. Whether it has ended.
    bool followUntil(Clock::time_point end)
    {
        while (!m_status.isAtEnd()) {
            const auto left = std::chrono::ceil<milliseconds>(end - Clock::now()).count();
            if (left <= 0) {
                return false;
            }
            std::array<pollfd, 3> watched{m_output.watched(), m_errors.watched(), m_status.watched()};
            if (poll(watched.data(), watched.size(), static_cast<int>(std::min<long long>(left, INT_MAX))) <= 0) {
                continue;
            }
            const std::array<PipeReader*, 3> readers{&m_output, &m_errors, &m_status};
            for (std::size_t i = 0; i < watched.size(); ++i) {
                if (watched[i].revents != 0) {
                    readers[i]->read();
                }
            }
        }
        return true;
    }

    void drain()
    {
        m_output.drain();
        m_errors.drain();
    }

    /// The exit status; false where the shell ended without telling one.
    bool readStatus(int& status) const
    {
        const std::string& text = m_statusText.text();
        const char* end = text.data() + text.size();
        const auto [stop, fault] = std::from_chars(text.data(), end, status);
        return fault == std::errc() && stop + 1 == end && *stop == '\n';
    }

private:
    BoundedOutput m_statusText{16};
    PipeReader m_output;
    PipeReader m_errors;
    PipeReader m_status;
};

std::string secondsText(milliseconds time)
{
    std::string text = std::to_string(static_cast<double>(time.count()) / 1000);
    text.erase(text.find_last_not_of('0') + 1);
    return text.back() == '.' || text.back() == ',' ? text.substr(0, text.size() - 1) : text;
}

/// The time is over: asks the command to end, then ends it.
void stop(const ShellProcess& process, Watch& watch, milliseconds grace)
{
    process.signalGroup(SIGTERM);
    watch.followUntil(Clock::now() + grace);
    // Also where the shell has ended: what it started may have ignored the first signal.
    process.signalGroup(SIGKILL);
}

void follow(const ShellProcess& process, const CommandLimits& limits, CommandOutcome& outcome)
{
    Watch watch(process, outcome);
    if (!watch.followUntil(Clock::now() + limits.time)) {
        stop(process, watch, limits.grace);
        outcome.fault = "the command did not end within " + secondsText(limits.time) + " seconds and was stopped";
    } else if (!watch.readStatus(outcome.exitStatus)) {
        outcome.fault = "the shell was killed before the command ended";
    }
    watch.drain();
}

}  // namespace

CommandOutcome runCommandLine(const std::string& commandLine, const CommandLimits& limits)
{
    CommandOutcome outcome{-1, {}, BoundedOutput(limits.outputBytes), BoundedOutput(limits.outputBytes)};
    int startFault = 0;
    const ShellProcess process(commandLine, startFault);
    if (startFault != 0) {
        outcome.fault = std::string("/bin/sh could not be started: ") + std::strerror(startFault);
        return outcome;
    }
    try {
        follow(process, limits, outcome);
    } catch (...) {
        process.signalGroup(SIGKILL);  // nobody would be there to end it
        throw;
    }
    return outcome;
}

}  // namespace brevan
