#include "ForkGuard.h"

#include "ConnectionPool.h"
#include "ForkGate.h"
#include "SessionStore.h"
#include "Settings.h"

#include <pthread.h>

namespace brevan {

namespace {

void beforeFork()
{
    SessionStore::instance().lockForFork();
    lockSettingsForFork();
    ConnectionPool::instance().lockForFork();
    ForkGate::close();  // last: it is passed under the pool's lock
}

void unlockStores()
{
    unlockSettingsAfterFork();
    SessionStore::instance().unlockAfterFork();
}

void inParent()
{
    ForkGate::reopen();
    ConnectionPool::instance().unlockInParent();
    unlockStores();
}

void inChild()
{
    ForkGate::reopenInChild();
    ConnectionPool::instance().unlockInChild();
    unlockStores();
}

}  // namespace

void guardForks()
{
    static const int kResult = pthread_atfork(beforeFork, inParent, inChild);
    static_cast<void>(kResult);
}

}  // namespace brevan
