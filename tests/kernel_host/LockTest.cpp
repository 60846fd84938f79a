// The lock around rescan and disk search, between processes on a real kernel: what ends in bounded time, and what waits by contract and how
// an administrator ends that. Runs inside the kernel host and nowhere else.
#include "ClientProcess.h"
#include "HostDisks.h"

#include <brevan/LastFailure.h>

#include <gmock/gmock.h>
#include <sys/sem.h>

#include <filesystem>
#include <future>

namespace brevan::test {
namespace {

constexpr key_t kKey = 1235;
constexpr const char* kRescan = "do_uprescan";
constexpr const char* kDevice = "dev_rescan";
// As docs/host-setup.md has it.
constexpr const char* kSetFree = "perl -e 'defined semctl(semget(1235, 1, 0) // die($!), 0, 16, 1) or die $!'";

int semaphoreValue()
{
    const int id = semget(kKey, 1, 0);
    return id < 0 ? -1 : semctl(id, 0, GETVAL);
}

int waiters()
{
    return semctl(semget(kKey, 1, 0), 0, GETNCNT);
}

/// Each call of the script ended before the next one began.
bool neverOverlapped(const std::vector<std::string>& calls)
{
    int running = 0;
    for (const std::string& call : calls) {
        running += call.rfind("begin", 0) == 0 ? 1 : -1;
        if (running > 1) {
            return false;
        }
    }
    return true;
}

class Lock : public KernelHost {
protected:
    void SetUp() override
    {
        KernelHost::SetUp();
        lun = attachedDisk(path);
        RescanRecorder::forget();
    }
    void TearDown() override
    {
        RescanRecorder::letGo(kRescan);
        RescanRecorder::letGo(kDevice);
        client.detach(lun.ID);
        deleteDisk(path);
        run("ipcrm -S 1235 || true");
        semctl(semget(kKey, 1, IPC_CREAT | 0600), 0, SETVAL, 1);  // this process would make one that is never free
    }

    std::unique_ptr<ClientProcess> scan() const
    {
        return std::make_unique<ClientProcess>(*array, std::vector<std::string>{"scan", lun.ID});
    }

    /// A scan of another process that holds the lock, in that call of the script.
    std::unique_ptr<ClientProcess> holder(const std::string& command) const
    {
        RescanRecorder::hold(command);
        auto process = scan();
        EXPECT_TRUE(eventually([&] { return RescanRecorder::callsOf("begin " + command) == 1; }));
        EXPECT_EQ(semaphoreValue(), 0);
        return process;
    }

    /// A scan that waits for it.
    std::unique_ptr<ClientProcess> waiter() const
    {
        auto process = scan();
        EXPECT_TRUE(eventually([] { return waiters() == 1; }));
        return process;
    }

    void expectFound(ClientProcess& process) const { EXPECT_EQ(process.said()["result"], path) << process.said()["text"]; }

    RescanRecorder recorder;
    LunMO lun;
    std::string path;
};

TEST_F(Lock, NeverLetsTheRescansOfTwoProcessesOverlap)
{
    {
        RescanRecorder::hold(kRescan);  // the recorder would see it: without the library two rescans do overlap
        auto unlocked = std::async(std::launch::async, [] { run(kRescanHost); });
        EXPECT_TRUE(eventually([] { return RescanRecorder::callsOf("begin do_uprescan") == 1; }));
        auto other = std::async(std::launch::async, [] { run(kRescanHost); });
        EXPECT_TRUE(eventually([] { return RescanRecorder::callsOf("begin do_uprescan") == 2; }));
        RescanRecorder::letGo(kRescan);
    }
    EXPECT_FALSE(neverOverlapped(RescanRecorder::calls()));
    RescanRecorder::forget();
    auto first = scan();
    auto second = scan();
    expectFound(*first);
    expectFound(*second);
    EXPECT_TRUE(neverOverlapped(RescanRecorder::calls())) << testing::PrintToString(RescanRecorder::calls());
    EXPECT_EQ(RescanRecorder::callsOf("end do_uprescan"), 2);
    EXPECT_EQ(RescanRecorder::callsOf("end dev_rescan"), 2);
}

TEST_F(Lock, IsFreeAgainWhenItsHolderIsKilledInTheRescan)
{
    auto dying = holder(kRescan);
    auto next = waiter();
    dying->kill();
    EXPECT_TRUE(eventually([] { return RescanRecorder::callsOf("begin do_uprescan") == 2; }));
    RescanRecorder::letGo(kRescan);
    expectFound(*next);
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(Lock, IsFreeAgainWhenItsHolderIsKilledInTheDiskSearch)
{
    auto dying = holder(kDevice);
    auto next = waiter();
    dying->kill();
    EXPECT_TRUE(eventually([] { return RescanRecorder::callsOf("begin dev_rescan") == 2; }));
    RescanRecorder::letGo(kDevice);
    expectFound(*next);
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(Lock, EndsAWaiterWithItsReasonWhenTheSemaphoreIsRemoved)
{
    auto holding = holder(kRescan);
    auto waiting = waiter();
    run("ipcrm -S 1235");
    EXPECT_EQ(waiting->said()["result"], "");
    EXPECT_EQ(waiting->said()["operation"], "scanLunAfterAttach");
    EXPECT_NE(waiting->said()["text"].find("Get Lock Failed: Identifier removed"), std::string::npos)
        << waiting->said()["text"];
    EXPECT_THAT(waiting->errorLines(),
                testing::ElementsAre(testing::MatchesRegex("Lock sem\\[[0-9]+\\] failed\\."), "Get Lock Failed"));
    RescanRecorder::letGo(kRescan);
    expectFound(*holding);
    EXPECT_EQ(semaphoreValue(), 1);  // the holder's release made it anew
    EXPECT_EQ(client.scan(lun.ID), path);
}

/// What nobody will ever release: the contract waits for it without a limit.
class LostLock : public Lock {
protected:
    void SetUp() override
    {
        Lock::SetUp();
        run("ipcrm -S 1235");
        ASSERT_GE(semget(kKey, 1, IPC_CREAT | 0600), 0);  // by somebody who is gone: its value is 0
        ASSERT_EQ(semaphoreValue(), 0);
    }
};

TEST_F(LostLock, HoldsUpAScanUntilAnAdministratorSetsItFree)
{
    auto waiting = waiter();
    std::this_thread::sleep_for(std::chrono::seconds(2));
    EXPECT_TRUE(waiting->isRunning());
    run(kSetFree);
    expectFound(*waiting);
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(LostLock, IsMadeAnewByTheNextProcessAfterItsRemoval)
{
    auto waiting = waiter();
    run("ipcrm -S 1235");
    EXPECT_NE(waiting->said()["text"].find("Get Lock Failed"), std::string::npos);
    expectFound(*scan());
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(LostLock, IsLostAgainWhereAProcessThatRunsAlreadyFindsNone)
{
    run("ipcrm -S 1235");
    auto scanning = std::async(std::launch::async, [this] { return client.scan(lun.ID); });
    // This process made the lock free once, at its beginning. Now it finds none and makes one that nobody holds or releases.
    EXPECT_TRUE(eventually([] { return waiters() == 1; }));
    run(kSetFree);
    EXPECT_EQ(scanning.get(), path);
}

TEST_F(Lock, OfAnotherUserEndsAScanWithItsReason)
{
    run("ipcrm -S 1235");
    run("setpriv --reuid backup --clear-groups perl -e 'semctl(semget(1235, 1, 0600 | 512), 0, 16, 1)'");
    EXPECT_EQ(client.scan(lun.ID), path);  // root may
    run("usermod -a -G brevan,disk games");
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "kernel_host_client";
    const std::string said = run("setpriv --reuid games --regid games --init-groups --inh-caps=-all " + program + " " +
                                 std::to_string(array->port()) + " scan " + lun.ID);
    EXPECT_NE(said.find("text: Get Lock Failed: Permission denied"), std::string::npos) << said;
    EXPECT_NE(said.find("advice: Another user's process"), std::string::npos) << said;
}

/// Last, since a process that has seen multipath software never forgets it.
class SharedRescan : public Lock {
protected:
    void SetUp() override
    {
        Lock::SetUp();
        RescanRecorder::say("Tendrix path manager: 2 paths");
    }
    void TearDown() override
    {
        for (const std::string& id : attached) {
            client.detachSnapshot(id);
        }
        for (const std::string& name : diskNames()) {
            if (name != nameOf(path)) {
                deleteDisk(name);
            }
        }
        Lock::TearDown();
    }

    std::string attachedSnapshot(const std::string& name)
    {
        attached.push_back(array->addSnapshot(name, lun.ID));
        waitForNewSecond();
        EXPECT_EQ(client.attachSnapshot(attached.back()), 0);
        return attached.back();
    }

    static std::future<std::string> scanInThread(const std::string& id)
    {
        return std::async(std::launch::async, [id] {
            HostClient own(ownInitiator());
            EXPECT_EQ(own.login(*array), 1);
            return own.scanSnapshot(id);
        });
    }

    std::vector<std::string> attached;
};

TEST_F(SharedRescan, ServesTheSnapshotScanThatWaitsForIt)
{
    const std::string known = attachedSnapshot("known");
    const std::string disk = client.scanSnapshot(known);
    ASSERT_NE(disk, "") << lastFailure().text;
    const std::string added = attachedSnapshot("added");
    RescanRecorder::forget();
    RescanRecorder::hold(kRescan);
    auto rescanning = scanInThread(added);
    ASSERT_TRUE(eventually([] { return RescanRecorder::callsOf("begin do_uprescan") == 1; }));
    auto waiting = scanInThread(known);
    EXPECT_EQ(waiting.wait_for(std::chrono::seconds(2)), std::future_status::timeout);
    RescanRecorder::letGo(kRescan);
    EXPECT_NE(rescanning.get(), "");
    EXPECT_EQ(waiting.get(), disk);
    EXPECT_EQ(RescanRecorder::callsOf("begin do_uprescan"), 1);
}

}  // namespace
}  // namespace brevan::test
