// sdk_client FIGURES PORT CA-FILE: what the library costs over a bare libcurl handle, against a web server that plays the array (see
// sdk-bench.sh, which starts it). FIGURES: single (one thread), threads, logged (reads, where the caller has set logs up), handshakes
// (a login and a read, nothing else: the server counts).
#include "BareClient.h"
#include "Measurement.h"

#include <brevan/brevan.h>

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iostream>
#include <new>
#include <thread>

namespace {
std::atomic<unsigned long> g_allocations{0};
}

void* operator new(std::size_t bytes)
{
    ++g_allocations;
    if (void* memory = std::malloc(bytes > 0 ? bytes : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

using namespace brevan::bench;

constexpr int kReads = 8000;
constexpr int kThreads = 8;
constexpr std::size_t kLuns = 1000;
const std::string kDevice = "/deviceManager/rest/1";
const std::string kLun = "10";

unsigned int port;
std::string caFile;

struct Release {
    void operator()(CDeviceManager* manager) const { CDeviceManager::releaseInstance(manager); }
};
using Manager = std::unique_ptr<CDeviceManager, Release>;

Manager loggedIn()
{
    Manager manager(CDeviceManager::getInstance());
    if (manager->loginDevice("127.0.0.1", port, "admin", "secret", USERTYPE_LOCAL) != 1) {
        throw std::runtime_error("no login: " + brevan::lastFailure().text);
    }
    return manager;
}

CLunHandler& lunsOf(const Manager& manager)
{
    return *static_cast<CLunHandler*>(manager->getHandler(HANDLER_LUN));
}

BareClient bareClient()
{
    return {"https://127.0.0.1:" + std::to_string(port), caFile};
}

void want(bool isSo, const char* what)
{
    if (!isSo) {
        throw std::runtime_error(what);
    }
}

/// Medians of both, taken in turns so that what else the machine does meets both alike.
void compare(const std::string& name, int rounds, const std::function<void()>& ours, const std::function<void()>& bare,
             const std::string& goal)
{
    std::vector<double> times;
    std::vector<double> limits;
    for (int round = 0; round < rounds; ++round) {
        times.push_back(microseconds(ours));
        limits.push_back(microseconds(bare));
    }
    report(name, median(times), median(limits), "us", goal);
}

void readsOfOneThread(const std::string& name, const std::string& goal)
{
    const Manager manager = loggedIn();
    CLunHandler& luns = lunsOf(manager);
    BareClient bare = bareClient();
    const auto read = [&] { want(luns.getLun(kLun).ID == kLun, "another LUN"); };
    const auto fetch = [&] { want(bare.get(kDevice + "/lun/" + kLun)["data"]["ID"] == kLun, "another LUN"); };
    compare(name, kReads, read, fetch, goal);
}

void allocationsOfARead()
{
    const Manager manager = loggedIn();
    BareClient bare = bareClient();
    bare.get(kDevice + "/lun/" + kLun);
    lunsOf(manager).getLun(kLun);
    const unsigned long before = g_allocations;
    lunsOf(manager).getLun(kLun);
    const unsigned long between = g_allocations;
    bare.get(kDevice + "/lun/" + kLun);
    std::printf("# One getLun makes %lu heap allocations by operator new, bare libcurl and JsonCpp make %lu.\n",
                between - before, g_allocations - between);
}

/// What `measure` finds in a process of its own, where no connection is open yet and libcurl is not warm.
double inNewProcess(const std::function<double()>& measure)
{
    int ends[2];
    want(pipe(ends) == 0, "no pipe");
    const pid_t child = fork();
    if (child == 0) {
        try {
            const double found = measure();
            _exit(write(ends[1], &found, sizeof found) == sizeof found ? 0 : 1);
        } catch (const std::exception& failure) {
            std::cerr << "sdk_client: " << failure.what() << std::endl;
            _exit(1);
        }
    }
    close(ends[1]);
    double found = 0;
    const bool isRead = read(ends[0], &found, sizeof found) == sizeof found;
    int status = -1;
    waitpid(child, &status, 0);
    close(ends[0]);
    want(isRead && status == 0, "a process of the benchmark failed");
    return found;
}

/// Requests a second of so many threads, each of which calls `work` for half a second with a thing that `make` made for it.
template <class Make, class Work>
double perSecond(int threadCount, Make make, Work work)
{
    std::atomic<bool> isOver{false};
    std::atomic<unsigned long> count{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&] {
            auto thing = make();
            for (work(thing); !isOver; work(thing)) {
                ++count;
            }
        });
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // until all are warm
    const unsigned long before = count;
    const double time = microseconds([] { std::this_thread::sleep_for(std::chrono::milliseconds(500)); });
    const unsigned long after = count;
    isOver = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    return static_cast<double>(after - before) * 1e6 / time;
}

struct Throughput {
    double ours;
    double bare;
};

/// Each round has connections of its own: which worker of the server takes which of them differs, and the luck with it.
Throughput throughput(int threads, int rounds)
{
    const auto read = [threads] {
        const Manager manager = loggedIn();
        CLunHandler& luns = lunsOf(manager);  // one thread at a time asks a device manager for a handler
        return perSecond(
            threads, [] { return 0; }, [&luns](int) { luns.getLun(kLun); });
    };
    const auto fetch = [threads] {
        return perSecond(
            threads, [] { return std::make_unique<BareClient>("https://127.0.0.1:" + std::to_string(port), caFile); },
            [](const auto& client) { client->get(kDevice + "/lun/" + kLun); });
    };
    std::vector<double> ours;
    std::vector<double> bare;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(inNewProcess(read));
        bare.push_back(inNewProcess(fetch));
    }
    return {median(ours), median(bare)};
}

void readsOfManyThreads()
{
    for (const int threads : {1, 2, 4, 8, 16}) {
        const Throughput found = throughput(threads, threads == kThreads ? 21 : 7);
        std::printf("#throughput\t%d\t%.0f\t%.0f\n", threads, found.ours, found.bare);
        if (threads == kThreads) {
            report("getLun, 8 threads, beside 8 bare handles", found.ours, found.bare, "requests/s", ">= 0.9");
        }
    }
}

void lunsOfAHost()
{
    const Manager manager = loggedIn();
    CLunHandler& luns = lunsOf(manager);
    BareClient bare = bareClient();
    const auto ours = [&] {
        LunQuery all(LunMO(), 0, 65535);
        want(luns.getLunByHost("5", all).size() == kLuns, "another number of LUNs");
    };
    const auto fetch = [&] {
        const Json::Value list = bare.get(kDevice + "/lun/associate?ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=5")["data"];
        for (const Json::Value& lun : list) {
            bare.get(kDevice + "/lun/" + lun["ID"].asString());
        }
        want(list.size() == kLuns, "another number of LUNs");
    };
    compare("getLunByHost with 1,000 LUNs, beside 1,001 bare requests", 41, ours, fetch, "<= 1.1");
}

void loginAndRead()
{
    lunsOf(loggedIn()).getLun(kLun);
}

void bareLoginAndRead()
{
    BareClient bare = bareClient();
    bare.post("/deviceManager/rest/xxxx/sessions", R"({"username":"admin","password":"secret","scope":0})");
    bare.get(kDevice + "/lun/" + kLun);
}

/// The first device manager of a process opens the log files: once, not at each login.
void openLogs()
{
    static const Manager kept(CDeviceManager::getInstance());
}

void firstReads()
{
    std::vector<double> ours;
    std::vector<double> bare;
    for (int round = 0; round < 200; ++round) {
        ours.push_back(inNewProcess([] {
            openLogs();
            return microseconds(loginAndRead);
        }));
        bare.push_back(inNewProcess([] { return microseconds(bareLoginAndRead); }));
    }
    report("login, then one getLun, on a new connection", median(ours), median(bare), "us", "<= 1.1");
}

double residentKib()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "VmRSS:") {
    }
    double kib = 0;
    status >> kib;
    return kib;
}

void memory()
{
    const Manager manager = loggedIn();
    CLunHandler& luns = lunsOf(manager);
    double early = 0;
    for (int count = 1; count <= 100000; ++count) {
        luns.getLun(kLun);
        early = count == 1000 ? residentKib() : early;
    }
    report("memory after 100,000 requests, beside after 1,000", residentKib(), early, "KiB", "<= 1.01");
}

void single()
{
    firstReads();  // before anything is warm in this process
    readsOfOneThread("getLun, one thread, no logs, beside a bare handle", "<= 1.1");
    allocationsOfARead();
    lunsOfAHost();
    memory();
}

void logged()
{
    readsOfOneThread("getLun, one thread, logs as shipped, beside a bare handle", "<= 1.2");
}

struct Figures {
    const char* name;
    void (*measure)();
};

constexpr Figures kFigures[] = {
    {"single", single}, {"threads", readsOfManyThreads}, {"logged", logged}, {"handshakes", loginAndRead}};

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "sdk_client: run sdk-bench.sh\n";
        return 2;
    }
    port = static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10));
    caFile = argv[3];
    try {
        for (const Figures& figures : kFigures) {
            if (std::strcmp(argv[1], figures.name) == 0) {
                figures.measure();
            }
        }
    } catch (const std::exception& failure) {
        std::cerr << "sdk_client: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
