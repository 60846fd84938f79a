#ifndef BREVAN_SCANNER_UPRESCANLOCK_H
#define BREVAN_SCANNER_UPRESCANLOCK_H

#include <cerrno>

/// The host-wide lock around rescan and disk search: a System V semaphore with key 1235, shared with every process of the
/// host that uses this library. 1: free, 0: held. It outlives the processes; the kernel gives back the unit of a process
/// that dies (SEM_UNDO). Keeps nothing: every operation looks the set up by its key. All return 0, or -1 with a line in the
/// run log; GetLock leaves the reason in errno.
class UpRescanLock {
public:
    /// Finds the set, or makes it, free. A set whose id is 0 counts as not found and is set free again: meant.
    int InitLock();

    /// Blocks until the lock is held, without a time limit. A set that is missing is made, and its value is 0: held by
    /// nobody.
    int GetLock();

    /// Sets the value to 1; releasing twice leaves it at 1.
    int ReleaseLock();

    /// InitLock, once per process: again until it has succeeded.
    void initOncePerProcess();

private:
    int getSem();
    int lockSem(int id);
    int unlockSem(int id);
};

namespace brevan {

/// Holds the lock, if it could be had, until release() or its own end.
class HeldRescanLock {
public:
    explicit HeldRescanLock(UpRescanLock& lock) : m_lock(lock), m_held(lock.GetLock() == 0), m_error(m_held ? 0 : errno) {}
    ~HeldRescanLock() { release(); }
    HeldRescanLock(const HeldRescanLock&) = delete;
    HeldRescanLock& operator=(const HeldRescanLock&) = delete;

    bool held() const { return m_held; }
    int error() const { return m_error; }  ///< why it is not, as errno has it

    void release()
    {
        if (m_held) {
            m_held = false;
            m_lock.ReleaseLock();
        }
    }

private:
    UpRescanLock& m_lock;
    bool m_held;
    int m_error;
};

/// Set to 1 after the first InitLock of the process that succeeded.
extern int g_lockInitialised;

}  // namespace brevan

#endif
