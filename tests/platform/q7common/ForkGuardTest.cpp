#include "platform/q7common/ForkGuard.h"

#include "TransportFixture.h"
#include "UserManager.h"
#include "tests/support/Forks.h"

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>

namespace brevan {
namespace {

class Fork : public test::TransportTest {};

TEST_F(Fork, InTheMiddleOfOtherThreadsRequestsLeavesTheChildUsable)
{
    if (test::kWhyNoForks != nullptr) {
        GTEST_SKIP() << test::kWhyNoForks;
    }
    const test::TlsServer server(test::identity());
    std::atomic<bool> isOver{false};
    std::vector<std::thread> threads;
    for (int number = 0; number < 3; ++number) {
        threads.emplace_back([&] {
            while (!isOver) {
                EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
                CUserManager::getInstance().RegisterSession(&isOver, "d", "127.0.0.1", server.port(), "t", "c", true);
            }
        });
    }
    for (int round = 0; round < 5; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(20);  // a lock that stayed held shows as a death by SIGALRM
            _exit(test::get(server.url()).result == REST_ANSWERED ? 0 : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    isOver = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    CUserManager::getInstance().RemoveSession(&isOver);
}

}  // namespace
}  // namespace brevan
