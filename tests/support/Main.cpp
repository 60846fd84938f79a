#include <gmock/gmock.h>

#include <sched.h>
#include <sys/ipc.h>
#include <sys/sem.h>

#include <cstdio>
#include <cstdlib>

namespace {

/// The machine's semaphores are not ours to touch. The first set of a fresh namespace gets the id 0, which the lock takes for
/// "not found", so another set is made first; the test about that id makes a namespace of its own.
void enterOwnIpcNamespace()
{
    if (unshare(CLONE_NEWIPC) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWIPC) != 0) {
        std::perror("a System V IPC namespace of this test's own cannot be made (needs root or user namespaces)");
        std::exit(1);
    }
    if (semget(IPC_PRIVATE, 1, 0600) != 0) {
        std::fputs("the first semaphore set of a fresh namespace did not get the id 0\n", stderr);
        std::exit(1);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    enterOwnIpcNamespace();
    setenv("TZ", "UTC", 1);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
