#include "ShellProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/auxv.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>

extern "C" char** environ;  // NOLINT(readability-redundant-declaration): unistd.h declares it only for GNU sources

namespace brevan {

namespace {

constexpr int kStatusDescriptor = 3;
constexpr int kFirstFreeDescriptor = kStatusDescriptor + 1;

// The outer shell stays until the command has ended, whatever signal its group gets, and then writes the status. The command
// runs in a subshell without the status pipe, so that a background child that it leaves behind does not keep that pipe open.
// LC_ALL: what the tools print is parsed.
constexpr const char* kScript = "trap : TERM INT HUP; LC_ALL=C; export LC_ALL; (eval \"$1\") 3>&-; echo $? >&3";

// In a setuid program the environment is its caller's, who must not choose which programs run.
char kSafePath[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
char* const kSafeEnvironment[] = {kSafePath, nullptr};

struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;
};

/// Moves a descriptor out of the way of those that the shell gets: in a process with 0 to 2 closed, pipes land there.
bool moveUp(int number, FileDescriptor& moved)
{
    const FileDescriptor original(number);
    moved = FileDescriptor(fcntl(number, F_DUPFD_CLOEXEC, kFirstFreeDescriptor));
    return moved.isOpen();
}

bool openPipe(Pipe& pipe)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return false;
    }
    const bool isReadingMoved = moveUp(ends[0], pipe.reading);
    const bool isWritingMoved = moveUp(ends[1], pipe.writing);
    return isReadingMoved && isWritingMoved && fcntl(pipe.reading.get(), F_SETFL, O_NONBLOCK) == 0;
}

/// What the child does between its birth and the shell.
class SpawnPlan {
public:
    SpawnPlan()
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawnattr_init(&m_attributes);
    }
    ~SpawnPlan()
    {
        posix_spawnattr_destroy(&m_attributes);
        posix_spawn_file_actions_destroy(&m_actions);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    int setDescriptors(int output, int errors, int status)
    {
        int fault = posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        fault = fault != 0 ? fault : posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        fault = fault != 0 ? fault : posix_spawn_file_actions_adddup2(&m_actions, errors, STDERR_FILENO);
        fault = fault != 0 ? fault : posix_spawn_file_actions_adddup2(&m_actions, status, kStatusDescriptor);
        return fault != 0 ? fault : posix_spawn_file_actions_addclosefrom_np(&m_actions, kFirstFreeDescriptor);
    }

    /// Its own session, so that it has no terminal: sudo would ask there for a password, be stopped for it, and hang. And
    /// signals as in a fresh process, whatever the application ignores or blocks.
    int setSignals()
    {
        sigset_t signals;
        sigfillset(&signals);
        int fault = posix_spawnattr_setsigdefault(&m_attributes, &signals);
        sigemptyset(&signals);
        fault = fault != 0 ? fault : posix_spawnattr_setsigmask(&m_attributes, &signals);
        constexpr short kFlags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID;
        return fault != 0 ? fault : posix_spawnattr_setflags(&m_attributes, kFlags);
    }

    int spawn(const std::string& commandLine, pid_t& pid) const
    {
        std::string words[] = {"sh", "-c", kScript, "sh", commandLine};
        char* const arguments[] = {words[0].data(), words[1].data(), words[2].data(),
                                   words[3].data(), words[4].data(), nullptr};
        char* const* environment = getauxval(AT_SECURE) != 0 ? kSafeEnvironment : environ;
        return posix_spawn(&pid, "/bin/sh", &m_actions, &m_attributes, arguments, environment);
    }

private:
    posix_spawn_file_actions_t m_actions;
    posix_spawnattr_t m_attributes;
};

}  // namespace

ShellProcess::ShellProcess(const std::string& commandLine, int& fault)
{
    Pipe output;
    Pipe errors;
    Pipe status;
    if (!openPipe(output) || !openPipe(errors) || !openPipe(status)) {
        fault = errno;
        return;
    }
    SpawnPlan plan;
    fault = plan.setDescriptors(output.writing.get(), errors.writing.get(), status.writing.get());
    fault = fault != 0 ? fault : plan.setSignals();
    fault = fault != 0 ? fault : plan.spawn(commandLine, m_pid);
    if (fault != 0) {
        m_pid = -1;
        return;
    }
    m_output = std::move(output.reading);
    m_errors = std::move(errors.reading);
    m_status = std::move(status.reading);
}

ShellProcess::~ShellProcess()
{
    // ECHILD: the application has collected it, or the kernel has. Either is fine.
    while (m_pid > 0 && waitpid(m_pid, nullptr, 0) == -1 && errno == EINTR) {
    }
}

void ShellProcess::signalGroup(int signal) const noexcept
{
    if (m_pid > 0) {
        kill(-m_pid, signal);
    }
}

}  // namespace brevan
