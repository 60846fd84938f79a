#include "scanner/UpRescanLock.h"

#include "foundation/HeldOverForks.h"
#include "foundation/RunLog.h"

#include <sys/ipc.h>
#include <sys/sem.h>

#include <cerrno>
#include <mutex>

namespace brevan {
int g_lockInitialised = 0;
}

namespace {

// Two threads that both find no set would both make it free, the second perhaps while it is held.
std::mutex initialising;
const brevan::HeldOverForks<initialising> kForks;

constexpr key_t kKey = 1235;
constexpr int kSemaphores = 1;
constexpr int kOwnerOnly = 0600;
constexpr int kFree = 1;

/// The argument of semctl(2), which each program has to declare itself.
union SemaphoreArgument {
    int val;
    semid_ds* buf;
    unsigned short* array;
};

int setFree(int id)
{
    SemaphoreArgument argument{};
    argument.val = kFree;
    return semctl(id, 0, SETVAL, argument);
}

}  // namespace

int UpRescanLock::InitLock()
{
    const int existing = semget(kKey, kSemaphores, IPC_EXCL);  // without IPC_CREAT this only finds
    if (existing > 0) {
        COMMLOG(OS_LOG_INFO, "Sem exists.SemId:[%d]", existing);
        return 0;
    }
    const int id = getSem();
    if (id < 0 || setFree(id) < 0) {
        COMMLOG(OS_LOG_ERROR, "Init Lock failed.");
        return -1;
    }
    COMMLOG(OS_LOG_INFO, "InitLock Succeed.New semId:[%d]", id);
    return 0;
}

int UpRescanLock::GetLock()
{
    const int id = getSem();
    const int whyNone = errno;
    if (lockSem(id) != 0) {
        const int reason = id < 0 ? whyNone : errno;
        COMMLOG(OS_LOG_ERROR, "Lock sem[%d] failed.", id);
        errno = reason;
        return -1;
    }
    return 0;
}

int UpRescanLock::ReleaseLock()
{
    const int id = getSem();
    if (unlockSem(id) < 0) {
        COMMLOG(OS_LOG_ERROR, "UnLock sem[%d] failed.", id);
        return -1;
    }
    return 0;
}

void UpRescanLock::initOncePerProcess()
{
    const std::lock_guard<std::mutex> lock(initialising);
    if (brevan::g_lockInitialised != 1 && InitLock() == 0) {
        brevan::g_lockInitialised = 1;
    }
}

int UpRescanLock::getSem()
{
    const int id = semget(kKey, kSemaphores, IPC_CREAT | kOwnerOnly);
    if (id < 0) {
        const int reason = errno;
        COMMLOG(OS_LOG_ERROR, "Create sem failed.");
        errno = reason;
    }
    return id;
}

int UpRescanLock::lockSem(int id)
{
    sembuf take{};
    take.sem_num = 0;
    take.sem_op = -1;
    take.sem_flg = SEM_UNDO;
    int result = 0;
    do {
        result = semop(id, &take, 1);
    } while (result != 0 && errno == EINTR);  // a signal of the application is no reason to give up
    return result;
}

int UpRescanLock::unlockSem(int id)
{
    return setFree(id);
}
