#include "simulator/ArrayServer.h"
#include "simulator/ErrorCodes.h"
#include "support/Forks.h"

#include <brevan/brevan.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace brevan::test {
namespace {

using sim::ArrayServer;
using testing::IsEmpty;
using Wrong = std::vector<std::string>;

constexpr int kThreads = 16;
constexpr int kRounds = 25;
constexpr const char* kPassword = "concurrent 1";

struct Release {
    void operator()(CDeviceManager* manager) const { CDeviceManager::releaseInstance(manager); }
};
using Manager = std::unique_ptr<CDeviceManager, Release>;

template <class Handler>
Handler& handler(CDeviceManager& manager, HANDLERTYPE type)
{
    return *static_cast<Handler*>(manager.getHandler(type));
}

/// Runs the work in so many threads, which begin together, and gives what any of them found wrong.
Wrong inThreads(int count, const std::function<void(int number, Wrong& wrong)>& work)
{
    std::promise<void> start;
    const std::shared_future<void> started = start.get_future().share();
    std::vector<std::future<Wrong>> threads;
    for (int number = 0; number < count; ++number) {
        threads.push_back(std::async(std::launch::async, [&work, number, started] {
            Wrong wrong;
            started.wait();
            try {
                work(number, wrong);
            } catch (const std::exception& failure) {
                wrong.push_back(std::to_string(number) + ": " + failure.what());
            }
            return wrong;
        }));
    }
    start.set_value();
    Wrong all;
    for (auto& thread : threads) {
        const Wrong wrong = thread.get();
        all.insert(all.end(), wrong.begin(), wrong.end());
    }
    return all;
}

std::string lunName(int array, int number)
{
    return "array" + std::to_string(array) + "_lun" + std::to_string(number);
}

/// Two arrays that the transport trusts, each with a LUN for every thread. Their IDs are the same on both, the names are not.
class DeviceManagers : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        folder = testing::TempDir() + "brevan-concurrency-" + std::to_string(getpid());
        std::filesystem::create_directories(folder);
        for (int index = 0; index < 2; ++index) {
            sim::ServerOptions options;
            options.password = kPassword;
            options.deviceId = "21000000000" + std::to_string(index);
            options.caFile = folder + "/ca" + std::to_string(index) + ".pem";
            arrays.push_back(std::make_unique<ArrayServer>(options));
            arrays.back()->start();
        }
        lunIds.resize(2);
        for (int number = 0; number < kThreads; ++number) {
            lunIds[0].push_back(arrays[0]->addLun(lunName(0, number), "0", 1ULL << 30));
            lunIds[1].push_back(arrays[1]->addLun(lunName(1, number), "0", 1ULL << 30));
        }
        trustBoth();
    }

    static void TearDownTestSuite()
    {
        arrays.clear();
        lunIds.clear();
        std::filesystem::remove_all(folder);
    }

    static void trustBoth()
    {
        std::ofstream bundle(folder + "/ca.pem");
        for (const auto& array : arrays) {
            bundle << std::ifstream(array->caFile()).rdbuf();
        }
        std::ofstream(folder + "/transport.ini") << "[tls]\nca_file = " << folder << "/ca.pem\n";
        setenv("BREVAN_TRANSPORT_CONFIG", (folder + "/transport.ini").c_str(), 1);
    }

    static int login(CDeviceManager& manager, std::size_t array)
    {
        return manager.loginDevice(arrays[array]->address(), arrays[array]->port(), "admin", kPassword, USERTYPE_LOCAL);
    }

    static std::size_t requestsOf(const ArrayServer& array, const std::string& operation)
    {
        const auto journal = array.journal();
        return static_cast<std::size_t>(std::count_if(
            journal.begin(), journal.end(), [&](const sim::JournalEntry& entry) { return entry.operation == operation; }));
    }

    static std::string folder;
    static std::vector<std::unique_ptr<ArrayServer>> arrays;
    static std::vector<std::vector<std::string>> lunIds;
};

std::string DeviceManagers::folder;
std::vector<std::unique_ptr<ArrayServer>> DeviceManagers::arrays;
std::vector<std::vector<std::string>> DeviceManagers::lunIds;

TEST_F(DeviceManagers, KeepTheirSessionsApartInTwoThreads)
{
    const Wrong wrong = inThreads(2, [](int number, Wrong& found) {
        const auto array = static_cast<std::size_t>(number);
        const Manager manager(CDeviceManager::getInstance());
        if (login(*manager, array) != 1) {
            found.push_back(lastFailure().text);
            return;
        }
        auto& luns = handler<CLunHandler>(*manager, HANDLER_LUN);
        for (int round = 0; round < kRounds * 4; ++round) {
            const int lun = round % kThreads;
            const std::string name = luns.getLun(lunIds[array][static_cast<std::size_t>(lun)]).NAME;
            if (name != lunName(number, lun)) {
                found.push_back("array " + std::to_string(number) + " gave " + name);
            }
        }
        if (manager->logoutDevice() != 1) {
            found.push_back(lastFailure().text);
        }
    });
    EXPECT_THAT(wrong, IsEmpty());
}

TEST_F(DeviceManagers, ServeSixteenThreadsWithTheSameHandlers)
{
    const Manager manager(CDeviceManager::getInstance());
    ASSERT_EQ(login(*manager, 0), 1) << lastFailure().text;
    auto& luns = handler<CLunHandler>(*manager, HANDLER_LUN);
    auto& groups = handler<CLunGroupHandler>(*manager, HANDLER_LUNGROUP);
    arrays[0]->clearJournal();
    const Wrong wrong = inThreads(kThreads, [&](int number, Wrong& found) {
        const std::string lun = lunIds[0][static_cast<std::size_t>(number)];
        LunGroupMO wanted;
        wanted.NAME = "group" + std::to_string(number);
        const LunGroupMO group = groups.createLunGroup(wanted);
        groups.addLunToLunGroup(lun, group.ID);
        for (int round = 0; round < kRounds; ++round) {
            if (luns.getLun(lun).NAME != lunName(0, number) || groups.getLunGroup(group.ID).NAME != wanted.NAME) {
                found.push_back("thread " + std::to_string(number) + " got another thread's object");
            }
        }
        if (groups.getObjNOFromLunGroup(group.ID) != 1) {
            found.push_back("the group of thread " + std::to_string(number) + " does not hold its LUN alone");
        }
    });
    EXPECT_THAT(wrong, IsEmpty());
    EXPECT_EQ(requestsOf(*arrays[0], "POST /lungroup"), kThreads) << "nothing is lost and nothing done twice";
    EXPECT_EQ(requestsOf(*arrays[0], "GET /lun/{id}"), kThreads * kRounds);
    EXPECT_EQ(manager->logoutDevice(), 1);
}

TEST_F(DeviceManagers, GiveEveryThreadTheSameHandlers)
{
    for (int round = 0; round < kRounds; ++round) {
        const Manager manager(CDeviceManager::getInstance());
        std::array<std::atomic<CHandler*>, HANDLER_FCOE_PORT + 1> seen{};
        const Wrong wrong = inThreads(kThreads, [&](int, Wrong& found) {
            for (int type = HANDLER_LUN; type <= HANDLER_FCOE_PORT; ++type) {
                CHandler* const handler = manager->getHandler(static_cast<HANDLERTYPE>(type));
                CHandler* const before = seen.at(static_cast<std::size_t>(type)).exchange(handler);
                if (handler == nullptr || (before != nullptr && before != handler)) {
                    found.push_back("another handler of type " + std::to_string(type));
                }
            }
        });
        EXPECT_THAT(wrong, IsEmpty());
    }
}

/// An attach takes the handlers that it needs from its device manager, in whatever thread it runs.
TEST_F(DeviceManagers, AttachInManyThreadsWithHandlersThatNobodyHasFetched)
{
    for (int number = 0; number < kThreads; ++number) {
        arrays[0]->addIscsiInitiator("iqn.2020-01.lab:" + std::to_string(number));
    }
    const Manager manager(CDeviceManager::getInstance());
    ASSERT_EQ(login(*manager, 0), 1) << lastFailure().text;
    auto& attach = handler<CDiskAttachHandler>(*manager, HANDLER_DISK_ATTACH);
    std::atomic<int> attached{0};
    const Wrong wrong = inThreads(kThreads, [&](int number, Wrong& found) {
        std::string lun = lunIds[0][static_cast<std::size_t>(number)];
        const int result = attach.attachLunToHost(lun, "iqn.2020-01.lab:" + std::to_string(number), "127.0.0.1");
        const Failure failure = lastFailure();
        attached += failure.empty() ? 1 : 0;
        if (result != 0 || (!failure.empty() && failure.code != sim::kNameTaken)) {  // named after the second
            found.push_back(std::to_string(result) + ": " + failure.text);
        }
    });
    EXPECT_THAT(wrong, IsEmpty());
    EXPECT_GE(attached.load(), 1);
}

TEST_F(DeviceManagers, TellEachThreadItsOwnFailure)
{
    const Manager manager(CDeviceManager::getInstance());
    ASSERT_EQ(login(*manager, 0), 1) << lastFailure().text;
    auto& luns = handler<CLunHandler>(*manager, HANDLER_LUN);
    const Wrong wrong = inThreads(kThreads, [&](int number, Wrong& found) {
        const bool fails = number % 2 == 0;
        for (int round = 0; round < kRounds; ++round) {
            try {
                luns.getLun(fails ? "77777" : lunIds[0][static_cast<std::size_t>(number)]);
            } catch (const PlimAPIException&) {
                // told by lastFailure
            }
            if (lastFailure().empty() == fails) {
                found.push_back("thread " + std::to_string(number) + ": " + lastFailure().text);
            }
        }
    });
    EXPECT_THAT(wrong, IsEmpty());
}

TEST_F(DeviceManagers, ComeAndGoInManyThreads)
{
    const Wrong wrong = inThreads(kThreads, [](int number, Wrong& found) {
        for (int round = 0; round < 3; ++round) {
            const Manager manager(CDeviceManager::getInstance());
            if (login(*manager, static_cast<std::size_t>(number % 2)) != 1 || manager->keepAlive() != 1 ||
                manager->logoutDevice() != 1) {
                found.push_back(lastFailure().text);
            }
        }
    });
    EXPECT_THAT(wrong, IsEmpty());
}

/// Device managers start and stop the logs under a mutex: no child may begin with it held.
TEST_F(DeviceManagers, ComeAndGoInChildProcessesToo)
{
    if (kWhyNoForks != nullptr) {
        GTEST_SKIP() << kWhyNoForks;
    }
    std::atomic<bool> isOver{false};
    auto other = std::async(std::launch::async, [&isOver] {
        while (!isOver) {
            const Manager manager(CDeviceManager::getInstance());
        }
    });
    int status = 0;
    for (int round = 0; round < 100 && status == 0; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(20);  // a mutex that stayed held shows as a death by SIGALRM
            CDeviceManager::releaseInstance(CDeviceManager::getInstance());
            _exit(0);
        }
        waitpid(child, &status, 0);
    }
    EXPECT_EQ(status, 0);
    isOver = true;
    other.get();
}

}  // namespace
}  // namespace brevan::test
