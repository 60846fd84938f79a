// guest_job NAME: does what a backup application does with the library in a process that is odd in one way. Exit status 0: all of it
// went well; 1: not, the reason is on standard error, if there is one.
#include "BrokenLine.h"
#include "Job.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <clocale>
#include <csignal>
#include <cstring>
#include <functional>
#include <iostream>
#include <locale>
#include <memory>

namespace brevan::test {
namespace {

struct Release {
    void operator()(CDeviceManager* manager) const { CDeviceManager::releaseInstance(manager); }
};

std::string job()
{
    const std::unique_ptr<CDeviceManager, Release> manager(CDeviceManager::getInstance());
    if (login(*manager) != 1) {
        return lastFailure().text;
    }
    const std::string wrong = attachAndFind(*manager);
    return manager->logoutDevice() == 1 ? wrong : lastFailure().text;
}

/// Everything that writes or reads a number meets commas and dots of a locale.
std::string inALocaleWithDecimalCommas()
{
    if (std::setlocale(LC_ALL, "") == nullptr || std::strcmp(std::localeconv()->decimal_point, ",") != 0) {
        return "this locale has no decimal comma";
    }
    std::locale::global(std::locale(""));
    return job();
}

std::string withoutStandardDescriptors()
{
    for (const int descriptor : {0, 1, 2}) {
        close(descriptor);
    }
    const std::string wrong = job();
    for (const int descriptor : {0, 1, 2}) {
        if (fcntl(descriptor, F_GETFD) != -1) {
            return "the library has taken a standard descriptor";  // the application would write into it
        }
    }
    return wrong;
}

std::string withChildrenIgnored()
{
    std::signal(SIGCHLD, SIG_IGN);
    return job();
}

std::string withChildrenCollectedByAnotherThread()
{
    std::atomic<bool> isOver{false};
    std::thread collector([&isOver] {
        while (!isOver) {
            waitpid(-1, nullptr, WNOHANG);
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        }
    });
    const std::string wrong = job();
    isOver = true;
    collector.join();
    return wrong;
}

/// A handler without SA_RESTART: system calls end early, a thousand times a second.
std::string underSignals()
{
    static std::atomic<int> count{0};
    struct sigaction action {};
    action.sa_handler = [](int) { ++count; };
    sigaction(SIGALRM, &action, nullptr);
    const itimerval often{{0, 1000}, {0, 1000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    const std::string wrong = job();
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
    return count < 100 ? "there were too few signals" : wrong;
}

std::string onASmallStack()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return "";  // sanitizers need more stack themselves
#endif
    std::string wrong;
    pthread_t thread{};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 64 * 1024);
    const auto run = [](void* result) -> void* {
        *static_cast<std::string*>(result) = job();
        return nullptr;
    };
    if (pthread_create(&thread, &attributes, run, &wrong) != 0 || pthread_join(thread, nullptr) != 0) {
        return "no thread with a stack of 64 KiB";
    }
    pthread_attr_destroy(&attributes);
    return wrong;
}

/// Parent and child go on with the session that was open, in turn.
std::string afterAFork()
{
    const std::unique_ptr<CDeviceManager, Release> manager(CDeviceManager::getInstance());
    if (login(*manager) != 1) {
        return lastFailure().text;
    }
    const pid_t child = fork();
    if (child == 0) {
        const std::string wrong = attachAndFind(*manager);
        std::cerr << wrong;
        _exit(wrong.empty() ? 0 : 1);
    }
    int status = -1;
    const bool isParentWell = manager->keepAlive() == 1;
    waitpid(child, &status, 0);
    if (!isParentWell || status != 0) {
        return isParentWell ? "the child failed" : lastFailure().text;
    }
    return attachAndFind(*manager);
}

HostMO hostToCreate(const std::string& description)
{
    static int number = 0;
    HostMO host;
    host.NAME = "guest_" + std::to_string(++number);
    host.OPERATIONSYSTEM = 0;
    host.DESCRIPTION = description;
    return host;
}

bool isBrokenPipeAsBefore()
{
    struct sigaction action {};
    sigset_t mask;
    sigset_t pending;
    sigaction(SIGPIPE, nullptr, &action);
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    sigpending(&pending);
    return action.sa_handler == SIG_DFL && sigismember(&mask, SIGPIPE) == 0 && sigismember(&pending, SIGPIPE) == 0;
}

/// Between two requests: whatever the next one is, it goes over a new connection.
std::string acrossConnectionsThatEnd(CDeviceManager& manager, BrokenLine& line)
{
    for (const bool withReset : {false, true}) {
        line.breakNow(withReset);
        if (handler<CLunHandler>(manager, HANDLER_LUN).getLun(variable("GUEST_LUN")).ID != variable("GUEST_LUN")) {
            return "the LUN was not read";
        }
        line.breakNow(withReset);
        HostMO host = hostToCreate("small");
        if (handler<CHostHandler>(manager, HANDLER_HOST).createHost(host).NAME != host.NAME) {
            return "the host was not created";
        }
    }
    return "";
}

/// In the middle of a request that is longer than what the kernel takes at once, though not too long for the array.
std::string inTheMiddleOfASend(CDeviceManager& manager, BrokenLine& line)
{
    HostMO host = hostToCreate(std::string(1000000, 'x'));
    line.breakAfter(100000);
    try {
        handler<CHostHandler>(manager, HANDLER_HOST).createHost(host);
        return "a request went well that did not arrive";
    } catch (const PlimAPIException&) {
        return lastFailure().code == FAILURE_CONNECTION_LOST ? "" : lastFailure().text;
    }
}

/// SIGPIPE at its default ends the process where anything is written to a connection that the array has closed.
std::string withBrokenPipesDeadly()
{
    std::signal(SIGPIPE, SIG_DFL);
    BrokenLine line(arrayPort());
    const std::unique_ptr<CDeviceManager, Release> manager(CDeviceManager::getInstance());
    if (login(*manager, line.port()) != 1) {
        return lastFailure().text;
    }
    std::string wrong = acrossConnectionsThatEnd(*manager, line);
    for (int round = 0; round < 3 && wrong.empty(); ++round) {
        wrong = inTheMiddleOfASend(*manager, line);
    }
    wrong = wrong.empty() ? attachAndFind(*manager) : wrong;
    return wrong.empty() && !isBrokenPipeAsBefore() ? "SIGPIPE is not as it was" : wrong;
}

struct Oddity {
    const char* name;
    std::string (*job)();
};

constexpr Oddity kOddities[] = {
    {"plain", job},
    {"locale", inALocaleWithDecimalCommas},
    {"descriptors", withoutStandardDescriptors},
    {"sigchld", withChildrenIgnored},
    {"collector", withChildrenCollectedByAnotherThread},
    {"signals", underSignals},
    {"sigpipe", withBrokenPipesDeadly},
    {"stack", onASmallStack},
    {"fork", afterAFork},
};

}  // namespace
}  // namespace brevan::test

int main(int argc, char** argv)
{
    for (const auto& oddity : brevan::test::kOddities) {
        if (argc == 2 && std::strcmp(argv[1], oddity.name) == 0) {
            const std::string wrong = oddity.job();
            std::cerr << wrong << (wrong.empty() ? "" : "\n");
            return wrong.empty() ? 0 : 1;
        }
    }
    return 2;
}
