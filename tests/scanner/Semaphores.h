#ifndef BREVAN_TESTS_SCANNER_SEMAPHORES_H
#define BREVAN_TESTS_SCANNER_SEMAPHORES_H

#include <functional>

// The semaphore behind the rescan lock, seen from outside: in this process's own namespace.

namespace brevan::test {

/// The id of the set, or -1 where there is none.
int semaphoreId();
void makeSemaphore(int value);
void removeSemaphore();
void removeSemaphore(int id);

/// 1: free, 0: held, -1: no set.
int semaphoreValue();

/// Whether anybody took it since the set was made.
bool semaphoreWasTaken();

/// How many threads of all processes wait for it.
int semaphoreWaiters();

/// Whether `holds` comes true within 10 s.
bool eventually(const std::function<bool()>& holds);

/// Runs `body` in a process with a fresh, empty namespace of its own, whose first set gets the id 0. True where nothing
/// failed in it.
bool passesInAnotherNamespace(const std::function<void()>& body);

/// In a namespace of its own only: takes every set that the kernel gives, so that no further one can be made. Returns the id
/// of one of them.
int exhaustSemaphores();

}  // namespace brevan::test

#endif
