#ifndef BREVAN_Q7COMMON_SHELLPROCESS_H
#define BREVAN_Q7COMMON_SHELLPROCESS_H

#include "FileDescriptor.h"

#include <sys/types.h>

#include <string>

namespace brevan {

/// A command line that runs in a shell, in a session of its own, with nothing of our descriptors. Its exit status
/// comes through a pipe and not from waitpid, because the application may ignore SIGCHLD or collect all children in a thread
/// of its own.
class ShellProcess {
public:
    /// Starts it; what went wrong stands in `fault` as an errno value, 0: it runs.
    ShellProcess(const std::string& commandLine, int& fault);
    /// Collects the shell, which has ended or been killed by then.
    ~ShellProcess();
    ShellProcess(const ShellProcess&) = delete;
    ShellProcess& operator=(const ShellProcess&) = delete;

    /// The ends to read from; none blocks. `status` gets the exit status as decimal text once the command has ended, and
    /// its end without a text means that the shell was killed.
    const FileDescriptor& output() const { return m_output; }
    const FileDescriptor& errors() const { return m_errors; }
    const FileDescriptor& status() const { return m_status; }

    /// Sends a signal to the shell and everything that it started. Children that run as another user are beyond our reach.
    void signalGroup(int signal) const noexcept;

private:
    FileDescriptor m_output;
    FileDescriptor m_errors;
    FileDescriptor m_status;
    pid_t m_pid = -1;
};

}  // namespace brevan

#endif
