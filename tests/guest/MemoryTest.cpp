// Lets each allocation of an operation fail in turn, alone or with all that follow until the operation ends, with the real transport
// and log library against an array over HTTPS. The array's threads have all the memory they want. Runs on the simulated host, where a
// scan has disks and a semaphore of its own.
#include "platform/plimlog/FailingNew.h"
#include "support/FakeClock.h"
#include "support/HostClient.h"

#include <brevan/LastFailure.h>

#include <sys/sem.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

namespace brevan::test {
namespace {

constexpr const char* kInitiator = "iqn.2024-01.com.example:simulated-host";
constexpr key_t kRescanLock = 1235;
const std::string kFolder = "/tmp/array";

/// How memory is short: one allocation fails, or it and all that follow.
struct Shortage {
    const char* name;
    void (*beginAfter)(long allocations);
    int stepOfLong;  ///< a long operation is tried with each so many-th of its allocations
};

/// With BREVAN_EVERY_ALLOCATION set it is tried with each.
int stepOf(const Shortage& shortage)
{
    return std::getenv("BREVAN_EVERY_ALLOCATION") != nullptr ? 1 : shortage.stepOfLong;
}

void PrintTo(const Shortage& shortage, std::ostream* out)
{
    *out << shortage.name;
}

// With a sanitizer everything takes long.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr Shortage kShortages[] = {{"Once", plimlog::failAllocationAfter, 11},
                                   {"ToTheEnd", plimlog::failAllocationsFrom, 23}};
#else
constexpr Shortage kShortages[] = {{"Once", plimlog::failAllocationAfter, 1}, {"ToTheEnd", plimlog::failAllocationsFrom, 5}};
#endif

/// How an operation came out: "done", or the type of what it threw.
std::string outcome(const std::function<void()>& operation)
{
    try {
        operation();
        return "done";
    } catch (const PlimAPIException&) {
        return "failed";
    } catch (const std::bad_alloc&) {
        return "no memory";
    }
}

class OutOfMemory : public testing::TestWithParam<Shortage> {
protected:
    OutOfMemory()
    {
        trust(array);
        client.login(array);
    }

    /// Runs the operation again and again, each time failing `step` allocations later, until none fails. `check` follows each run.
    static int failEach(const std::function<void()>& operation, const std::function<void(const std::string& how)>& check,
                        int step = 1)
    {
        for (int allowed = 0;; allowed += step) {
            GetParam().beginAfter(allowed);
            const std::string how = outcome(operation);
            const bool failed = plimlog::allocationHasFailed();
            SCOPED_TRACE("allocation " + std::to_string(allowed));
            check(how);
            if (!failed || HasFailure()) {
                EXPECT_EQ(how, "done");
                return allowed;
            }
        }
    }

    static sim::ServerOptions options()
    {
        auto options = arrayOptions(kFolder);
        options.exposure = sim::Exposure::kTree;
        options.treeDirectory = "/run/simulated-host/tree";
        options.iscsiInitiators = {kInitiator};
        return options;
    }

    /// Objects are named after the second; this clock's seconds pass as the test wants.
    void nextSecond() { clock.set({++m_second, 0}); }

    bool isExposed(const std::string& lun)
    {
        const LunMO read = client.get<CLunHandler>(HANDLER_LUN).getLun(lun);
        return read.EXPOSEDTOINITIATOR != 0;
    }

    struct StartedArray : sim::ArrayServer {
        StartedArray() : sim::ArrayServer(options()) { start(); }
    };

    FakeClock clock;
    StartedArray array;
    HostClient client{kInitiator};

private:
    time_t m_second = 1700000000;
};

TEST_P(OutOfMemory, LeavesADeviceManagerThatCanBeMadeAgain)
{
    const auto run = [] { CDeviceManager::releaseInstance(CDeviceManager::getInstance()); };
    const int runs = failEach(run, [](const std::string& how) { EXPECT_NE(how, "failed"); });
    EXPECT_GT(runs, 0);
}

TEST_P(OutOfMemory, LeavesALoginThatCanBeRepeated)
{
    int result = 0;
    const auto check = [&](const std::string& how) {
        EXPECT_EQ(how, "done") << "a login never throws";
        EXPECT_TRUE(result == 1 || !lastFailure().empty());
        array.endAllSessions();
        ASSERT_EQ(client.login(array), 1) << lastFailure().text;
        ASSERT_EQ(client.manager->logoutDevice(), 1) << lastFailure().text;
    };
    const std::string address = array.address();
    const std::string user = "admin";
    const std::string password = kHostPassword;
    const auto login = [&] { result = client.manager->loginDevice(address, array.port(), user, password, USERTYPE_LOCAL); };
    EXPECT_GT(failEach(login, check), 20);
}

TEST_P(OutOfMemory, LeavesAReadThatCanBeRepeated)
{
    const std::string id = array.addLun("volume", "0", 1ULL << 30);
    auto& luns = client.get<CLunHandler>(HANDLER_LUN);
    bool isRight = false;
    const auto check = [&](const std::string& how) {
        EXPECT_NE(how, "no memory") << "a handler throws its own exceptions only";
        EXPECT_TRUE(how == "done" ? isRight && lastFailure().empty() : !lastFailure().empty()) << lastFailure().text;
        ASSERT_EQ(luns.getLun(id).NAME, "volume");
    };
    EXPECT_GT(failEach([&] { isRight = luns.getLun(id).NAME == "volume"; }, check), 20);
}

TEST_P(OutOfMemory, LeavesAnAttachThatCanBeRepeated)
{
    auto& attach = client.get<CDiskAttachHandler>(HANDLER_DISK_ATTACH);
    const std::string address = "127.0.0.1";
    int number = 0;
    std::string lun;
    std::string initiator;
    const auto prepare = [&] {
        nextSecond();
        lun = array.addLun("lun_" + std::to_string(++number), "0", 1ULL << 20);
        initiator = array.addIscsiInitiator("iqn.2024-01.com.example:host" + std::to_string(number));
    };
    const auto check = [&](const std::string& how) {
        EXPECT_NE(how, "no memory") << "a handler throws its own exceptions only";
        const bool wasTold = !lastFailure().empty();
        const bool isAttached = isExposed(lun);
        EXPECT_TRUE(isAttached || wasTold);
        nextSecond();
        EXPECT_EQ(attach.attachLunToHost(lun, initiator, address), isAttached ? 1 : 0);
        EXPECT_TRUE(isExposed(lun)) << lastFailure().text;
        attach.detachLunFromHost(lun, "0");
        ASSERT_TRUE(lastFailure().empty()) << lastFailure().text;
        prepare();
    };
    prepare();
    EXPECT_GT(failEach([&] { attach.attachLunToHost(lun, initiator, address); }, check, stepOf(GetParam())), 200);
}

TEST_P(OutOfMemory, LeavesAScanThatCanBeRepeatedAndNoLockHeld)
{
    std::filesystem::remove("/run/simulated-host/session");  // of the same test with another shortage
    std::filesystem::create_directory_symlink("/run/simulated-host/tree", "/run/simulated-host/session");
    auto& scanner = client.get<CDiskScannerHandler>(HANDLER_DISK_SCANNER);
    std::string lun = array.addLun("volume", "0", 1ULL << 20);
    client.attach(lun);
    const std::string disk = client.scan(lun);
    ASSERT_NE(disk, "") << lastFailure().text;
    std::string found;
    const auto check = [&](const std::string& how) {
        EXPECT_EQ(how, "done") << "a scan never throws";
        EXPECT_TRUE(found == disk || !lastFailure().empty());
        ASSERT_EQ(semctl(semget(kRescanLock, 1, 0), 0, GETVAL), 1) << "the lock is held";
    };
    EXPECT_GT(failEach([&] { found = scanner.scanLunAfterAttach(lun); }, check, stepOf(GetParam())), 50);
    EXPECT_EQ(found, disk);
}

INSTANTIATE_TEST_SUITE_P(Memory, OutOfMemory, testing::ValuesIn(kShortages),
                         [](const auto& shortage) { return std::string(shortage.param.name); });

}  // namespace
}  // namespace brevan::test
