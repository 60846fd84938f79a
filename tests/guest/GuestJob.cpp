// guest_job NAME: does what a backup application does with the library in a process that is odd in one way. Exit status 0: all of it
// went well; 1: not, the reason is on standard error, if there is one.
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
