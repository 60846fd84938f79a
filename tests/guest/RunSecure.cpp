// run_secure PROGRAM [ARGUMENT...]: runs the program as the kernel runs one that has gained privileges (AT_SECURE of the auxiliary vector
// is set), which needs none here. Exit status: the program's, or 125 where it could not be run so.
#include <elf.h>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace {

unsigned long stackPointer(pid_t child)
{
    user_regs_struct registers{};
    iovec place{&registers, sizeof registers};
    if (ptrace(PTRACE_GETREGSET, child, NT_PRSTATUS, &place) != 0) {
        return 0;
    }
#ifdef __x86_64__
    return registers.rsp;
#else
    return registers.sp;
#endif
}

bool peek(pid_t child, unsigned long address, unsigned long& value)
{
    errno = 0;
    value = static_cast<unsigned long>(ptrace(PTRACE_PEEKDATA, child, address, nullptr));
    return errno == 0;
}

/// At the start of a program its stack holds argc, the arguments, 0, the environment, 0, and pairs of a type and its value.
bool setSecure(pid_t child)
{
    constexpr unsigned long kWord = sizeof(unsigned long);
    unsigned long address = stackPointer(child);
    unsigned long value = 0;
    for (int texts = 0; texts < 2; ++texts) {
        do {
            address += kWord;
            if (!peek(child, address, value)) {
                return false;
            }
        } while (value != 0);
    }
    for (address += kWord; peek(child, address, value) && value != AT_NULL; address += 2 * kWord) {
        if (value == AT_SECURE) {
            return ptrace(PTRACE_POKEDATA, child, address + kWord, 1UL) == 0;
        }
    }
    return false;
}

}  // namespace

int main(int argc, char** argv)
{
    const pid_t child = argc > 1 ? fork() : -1;
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        execv(argv[1], argv + 1);
        _exit(125);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status) || !setSecure(child) ||
        ptrace(PTRACE_DETACH, child, nullptr, nullptr) != 0) {
        std::perror("run_secure");
        return 125;
    }
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 125;
}
