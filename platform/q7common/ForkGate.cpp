#include "ForkGate.h"

#include <pthread.h>

namespace brevan {

namespace {

// A fork goes first where both wait: busy threads would otherwise keep it out for ever.
pthread_rwlock_t gate = PTHREAD_RWLOCK_WRITER_NONRECURSIVE_INITIALIZER_NP;
thread_local int passesOfThisThread = 0;

}  // namespace

ForkGate::Pass::Pass() noexcept
{
    if (passesOfThisThread++ == 0) {
        pthread_rwlock_rdlock(&gate);
    }
}

ForkGate::Pass::~Pass()
{
    if (--passesOfThisThread == 0) {
        pthread_rwlock_unlock(&gate);
    }
}

void ForkGate::close() noexcept
{
    pthread_rwlock_wrlock(&gate);
}

void ForkGate::reopen() noexcept
{
    pthread_rwlock_unlock(&gate);
}

void ForkGate::reopenInChild() noexcept
{
    // Not unlocked: the lock knows its holder by a thread number that is another one in the child.
    gate = PTHREAD_RWLOCK_WRITER_NONRECURSIVE_INITIALIZER_NP;
}

}  // namespace brevan
