#include "scanner/Semaphores.h"

#include <gtest/gtest.h>

#include <sched.h>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <thread>

namespace brevan::test {
namespace {

constexpr key_t kKey = 1235;

bool enterFreshNamespace()
{
    return unshare(CLONE_NEWIPC) == 0 || unshare(CLONE_NEWUSER | CLONE_NEWIPC) == 0;
}

}  // namespace

int semaphoreId()
{
    return semget(kKey, 1, 0);
}

void makeSemaphore(int value)
{
    const int id = semget(kKey, 1, IPC_CREAT | 0600);
    ASSERT_GE(id, 0);
    ASSERT_EQ(semctl(id, 0, SETVAL, value), 0);
}

void removeSemaphore()
{
    const int id = semaphoreId();
    if (id >= 0) {
        removeSemaphore(id);
    }
}

void removeSemaphore(int id)
{
    semctl(id, 0, IPC_RMID);
}

int semaphoreValue()
{
    return semctl(semaphoreId(), 0, GETVAL);
}

bool semaphoreWasTaken()
{
    semid_ds status{};
    EXPECT_EQ(semctl(semaphoreId(), 0, IPC_STAT, &status), 0);
    return status.sem_otime != 0;  // the time of the last semop(2)
}

int semaphoreWaiters()
{
    return semctl(semaphoreId(), 0, GETNCNT);
}

bool eventually(const std::function<bool()>& holds)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!holds()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    return true;
}

bool passesInAnotherNamespace(const std::function<void()>& body)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (enterFreshNamespace()) {
            body();
        } else {
            ADD_FAILURE() << "no namespace of its own";
        }
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

int exhaustSemaphores()
{
    int last = -1;
    for (int id = 0; id >= 0; id = semget(IPC_PRIVATE, 1, 0600)) {
        last = id;
    }
    return last;
}

}  // namespace brevan::test
