#include "scanner/UpRescanLock.h"

#include "scanner/Semaphores.h"
#include "support/SdkTest.h"

#include <sys/mman.h>
#include <sys/sem.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <fstream>
#include <future>
#include <memory>
#include <thread>

namespace brevan::test {
namespace {

class RescanLock : public SdkTest {
protected:
    RescanLock() { removeSemaphore(); }

    UpRescanLock lock;

    std::string id() const { return "[" + std::to_string(semaphoreId()) + "]"; }
};

/// A process that runs `body` until it is killed, at the latest when this object goes.
class Child {
public:
    explicit Child(const std::function<void()>& body) : m_pid(fork())
    {
        if (m_pid == 0) {
            body();
            for (;;) {
                pause();
            }
        }
    }
    ~Child() { killNow(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Returns when the process is gone.
    void killNow()
    {
        if (m_pid > 0) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
            m_pid = -1;
        }
    }

private:
    pid_t m_pid;
};

TEST_F(RescanLock, MakesAMissingSetAndFindsItNextTime)
{
    EXPECT_EQ(lock.InitLock(), 0);
    EXPECT_EQ(semaphoreValue(), 1);
    EXPECT_THAT(newLog(), testing::ElementsAre("info: InitLock Succeed.New semId:" + id()));
    EXPECT_EQ(lock.InitLock(), 0);
    EXPECT_THAT(newLog(), testing::ElementsAre("info: Sem exists.SemId:" + id()));
}

TEST_F(RescanLock, MakesASetOfOneSemaphoreForItsOwnerOnly)
{
    lock.InitLock();
    semid_ds status{};
    ASSERT_EQ(semctl(semaphoreId(), 0, IPC_STAT, &status), 0);
    EXPECT_EQ(status.sem_perm.mode & 0777, 0600);
    EXPECT_EQ(status.sem_nsems, 1U);
}

TEST_F(RescanLock, LeavesASetThatIsHeldAsItIs)
{
    makeSemaphore(0);
    EXPECT_EQ(lock.InitLock(), 0);
    EXPECT_EQ(semaphoreValue(), 0);
}

TEST_F(RescanLock, IsHeldBetweenGetAndRelease)
{
    lock.InitLock();
    newLog();
    EXPECT_EQ(lock.GetLock(), 0);
    EXPECT_EQ(semaphoreValue(), 0);
    EXPECT_EQ(lock.ReleaseLock(), 0);
    EXPECT_EQ(semaphoreValue(), 1);
    EXPECT_THAT(newLog(), testing::IsEmpty());
}

TEST_F(RescanLock, StaysAtOneHoweverOftenItIsReleased)
{
    EXPECT_EQ(lock.ReleaseLock(), 0) << "the set is made where it is missing";
    EXPECT_EQ(lock.ReleaseLock(), 0);
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(RescanLock, BlocksUntilAnotherThreadReleasesIt)
{
    lock.InitLock();
    lock.GetLock();
    auto waiting = std::async(std::launch::async, [this] { return lock.GetLock(); });
    EXPECT_TRUE(eventually([] { return semaphoreWaiters() == 1; }));
    lock.ReleaseLock();
    EXPECT_EQ(waiting.get(), 0);
    EXPECT_EQ(semaphoreValue(), 0);
}

TEST_F(RescanLock, BlocksOnAMissingSetUntilSomebodyFreesIt)
{
    auto waiting = std::async(std::launch::async, [this] { return lock.GetLock(); });
    EXPECT_TRUE(eventually([] { return semaphoreWaiters() == 1; }));
    lock.ReleaseLock();
    EXPECT_EQ(waiting.get(), 0);
}

/// Whether a signal that was sent to that thread has not interrupted it yet.
bool signalIsPending(pid_t thread)
{
    std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/status");
    std::string word;
    while (status >> word && word != "SigPnd:") {
    }
    return status >> word && word.find_first_not_of('0') != std::string::npos;
}

TEST_F(RescanLock, KeepsWaitingThroughSignals)
{
    struct sigaction ignoring {};
    struct sigaction before {};
    ignoring.sa_handler = [](int) {};  // unlike SIG_IGN it interrupts system calls
    ASSERT_EQ(sigaction(SIGUSR1, &ignoring, &before), 0);
    makeSemaphore(0);
    std::atomic<pid_t> waiter{0};
    auto waiting = std::async(std::launch::async, [&] {
        waiter = gettid();
        return lock.GetLock();
    });
    for (int sent = 0; sent < 3; ++sent) {
        EXPECT_TRUE(eventually([] { return semaphoreWaiters() == 1; }));
        EXPECT_EQ(tgkill(getpid(), waiter, SIGUSR1), 0);
        EXPECT_TRUE(eventually([&] { return !signalIsPending(waiter); }));
    }
    EXPECT_TRUE(eventually([] { return semaphoreWaiters() == 1; })) << "it gave up";
    lock.ReleaseLock();
    EXPECT_EQ(waiting.get(), 0);
    EXPECT_THAT(newLog(), testing::IsEmpty());
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(RescanLock, FailsWhereTheSetIsRemovedUnderAWaiter)
{
    makeSemaphore(0);
    const std::string removed = id();
    auto waiting = std::async(std::launch::async, [this] { return lock.GetLock(); });
    EXPECT_TRUE(eventually([] { return semaphoreWaiters() == 1; }));
    removeSemaphore();
    EXPECT_EQ(waiting.get(), -1);
    EXPECT_THAT(newLog(), testing::ElementsAre("error: Lock sem" + removed + " failed."));
}

TEST_F(RescanLock, FailsWhereNoSetCanBeMade)
{
    EXPECT_TRUE(passesInAnotherNamespace([this] {
        exhaustSemaphores();
        EXPECT_EQ(lock.InitLock(), -1);
        EXPECT_EQ(lock.GetLock(), -1);
        EXPECT_EQ(lock.ReleaseLock(), -1);
        const char* const kNoSet = "error: Create sem failed.";
        EXPECT_THAT(newLog(), testing::ElementsAre(kNoSet, "error: Init Lock failed.", kNoSet, "error: Lock sem[-1] failed.",
                                                   kNoSet, "error: UnLock sem[-1] failed."));
    }));
}

TEST_F(RescanLock, TakesASetWithTheIdZeroForNoneAndFreesIt)
{
    EXPECT_TRUE(passesInAnotherNamespace([this] {
        const Lines made = {"info: InitLock Succeed.New semId:[0]"};
        EXPECT_EQ(lock.InitLock(), 0);
        EXPECT_EQ(newLog(), made);
        EXPECT_EQ(lock.GetLock(), 0);
        EXPECT_EQ(semaphoreValue(), 0);
        EXPECT_EQ(lock.InitLock(), 0);
        EXPECT_EQ(newLog(), made);
        EXPECT_EQ(semaphoreValue(), 1);
        EXPECT_EQ(lock.ReleaseLock(), 0);
    }));
}

TEST_F(RescanLock, ComesBackAtOnceFromAProcessThatIsKilled)
{
    lock.InitLock();
    Child holder([this] { lock.GetLock(); });
    EXPECT_TRUE(eventually([] { return semaphoreValue() == 0; }));
    holder.killNow();
    ASSERT_EQ(semaphoreValue(), 1);
    EXPECT_EQ(lock.GetLock(), 0);
}

TEST_F(RescanLock, GoesToTheWaiterWhenItsHolderIsKilled)
{
    lock.InitLock();
    Child holder([this] { lock.GetLock(); });
    EXPECT_TRUE(eventually([] { return semaphoreValue() == 0; }));
    auto waiting = std::async(std::launch::async, [this] { return lock.GetLock(); });
    EXPECT_TRUE(eventually([] { return semaphoreWaiters() == 1; }));
    holder.killNow();
    EXPECT_EQ(waiting.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    lock.ReleaseLock();  // so that a failure does not hold up the other tests
    EXPECT_EQ(waiting.get(), 0);
}

TEST_F(RescanLock, IsNotGivenFreeByTheEndOfAProcessThatReleasedIt)
{
    lock.InitLock();
    Child former([this] {
        lock.GetLock();
        lock.ReleaseLock();
    });
    const int set = semaphoreId();
    EXPECT_TRUE(eventually([set] { return semctl(set, 0, GETPID) != getpid() && semaphoreValue() == 1; }));
    EXPECT_EQ(lock.GetLock(), 0);
    former.killNow();
    EXPECT_EQ(semaphoreValue(), 0);
}

/// Enters and leaves the lock many times; counts how often somebody else was in it.
void contend(UpRescanLock& lock, std::atomic<int>& inside, std::atomic<int>& clashes)
{
    for (int i = 0; i < 200; ++i) {
        lock.GetLock();
        clashes += inside.fetch_add(1) == 0 ? 0 : 1;
        std::this_thread::yield();
        inside.fetch_sub(1);
        lock.ReleaseLock();
    }
}

TEST_F(RescanLock, LetsOneProcessInAtATime)
{
    lock.InitLock();
    void* shared = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    auto* counters = new (shared) std::atomic<int>[3] {};
    {
        const auto racing = [&] {
            contend(lock, counters[0], counters[1]);
            ++counters[2];
        };
        const Child first(racing);
        const Child second(racing);
        EXPECT_TRUE(eventually([&] { return counters[2].load() == 2; }));
    }
    EXPECT_EQ(counters[1].load(), 0);
    EXPECT_EQ(semaphoreValue(), 1);
    munmap(shared, 4096);
}

TEST_F(RescanLock, LetsOneThreadInAtATime)
{
    lock.InitLock();
    std::atomic<int> inside{0};
    std::atomic<int> clashes{0};
    std::thread other([&] { contend(lock, inside, clashes); });
    contend(lock, inside, clashes);
    other.join();
    EXPECT_EQ(clashes.load(), 0);
}

TEST_F(RescanLock, IsInitialisedOnceByManyThreads)
{
    std::vector<std::thread> threads;
    std::atomic<int> ready{0};
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            for (++ready; ready.load() < 8;) {
                std::this_thread::yield();
            }
            lock.initOncePerProcess();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(newLog().size(), 1U);
    EXPECT_EQ(g_lockInitialised, 1);
}

TEST_F(RescanLock, IsGivenBackWhenItsHolderGoes)
{
    lock.InitLock();
    {
        const HeldRescanLock held(lock);
        EXPECT_TRUE(held.held());
        EXPECT_EQ(semaphoreValue(), 0);
    }
    EXPECT_EQ(semaphoreValue(), 1);
}

TEST_F(RescanLock, IsGivenBackOnlyOnceByItsHolder)
{
    lock.InitLock();
    {
        HeldRescanLock held(lock);
        held.release();
        EXPECT_FALSE(held.held());
        EXPECT_EQ(lock.GetLock(), 0);
    }
    EXPECT_EQ(semaphoreValue(), 0) << "the next holder's lock was given away";
}

}  // namespace
}  // namespace brevan::test
