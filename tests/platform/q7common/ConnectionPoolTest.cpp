#include "platform/q7common/ConnectionPool.h"

#include "TransportFixture.h"
#include "tests/support/Forks.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <future>
#include <thread>

namespace brevan {
namespace {

class Pool : public test::TransportTest {};

/// This process can open no further descriptor while it lives.
class NoMoreDescriptors {
public:
    NoMoreDescriptors()
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const int lowestFree = dup(STDIN_FILENO);
        close(lowestFree);
        rlimit now = m_before;
        now.rlim_cur = static_cast<rlim_t>(lowestFree);
        setrlimit(RLIMIT_NOFILE, &now);
    }
    ~NoMoreDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }
    NoMoreDescriptors(const NoMoreDescriptors&) = delete;
    NoMoreDescriptors& operator=(const NoMoreDescriptors&) = delete;

private:
    rlimit m_before{};
};

TEST_F(Pool, GivesOutTheLastUsedFirst)
{
    ConnectionPool pool;
    const Settings settings = *currentSettings();
    const Server server{"127.0.0.1", "1"};
    Connection* last = nullptr;
    {
        ConnectionPool::Lease first = pool.take(server, settings);
        ConnectionPool::Lease second = pool.take(server, settings);
        first.keep();
        second.keep();
        last = first.operator->();  // leases end in reverse order
        EXPECT_NE(first.operator->(), second.operator->());
    }
    EXPECT_EQ(pool.take(server, settings).operator->(), last);
}

TEST_F(Pool, GivesAThreadWhatItHasUsedItself)
{
    ConnectionPool pool;
    const SettingsPointer settings = currentSettings();
    const auto use = [&pool, settings](const std::function<void()>& meanwhile) -> const Connection* {
        ConnectionPool::Lease lease = pool.take({"127.0.0.1", "1"}, *settings);
        meanwhile();
        lease.keep();
        return lease.operator->();
    };
    const auto nothing = [] {};
    std::promise<void> isOver;
    const Connection* theirs = nullptr;
    std::thread other;
    const Connection* const ours = use([&] {  // while we hold one, another thread makes, uses and gives back one of its own
        std::promise<void> isUsed;
        other = std::thread([&] {
            theirs = use(nothing);
            isUsed.set_value();
            isOver.get_future().wait();
            EXPECT_EQ(use(nothing), theirs) << "though ours was used later";
        });
        isUsed.get_future().wait();
    });
    EXPECT_NE(ours, theirs);
    EXPECT_EQ(use(nothing), ours);
    isOver.set_value();
    other.join();
}

TEST_F(Pool, ClosesWhatIsNotToBeKept)
{
    const test::TlsServer server(test::identity());
    const SettingsPointer settings = currentSettings();
    const Server address{"127.0.0.1", std::to_string(server.port())};
    EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
    {
        const ConnectionPool::Lease failed = ConnectionPool::instance().take(address, *settings);
    }
    EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
    EXPECT_EQ(server.connectionCount(), 2);
}

TEST_F(Pool, KeepsServersAndSettingsApart)
{
    ConnectionPool pool;
    Settings settings = *currentSettings();
    ConnectionPool::Lease first = pool.take({"127.0.0.1", "1"}, settings);
    const Connection* connection = first.operator->();
    first.keep();
    EXPECT_NE(pool.take({"127.0.0.1", "2"}, settings).operator->(), connection);
    ++settings.generation;
    EXPECT_NE(pool.take({"127.0.0.1", "1"}, settings).operator->(), connection);
}

TEST_F(Pool, ClosesWhatIsIdleForLong)
{
    test::TlsServer server(test::identity());
    EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
    ConnectionPool::instance().closeIdle(std::chrono::hours(1));
    EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
    EXPECT_EQ(server.connectionCount(), 1);
    ConnectionPool::instance().closeIdle(std::chrono::seconds(-1));
    EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
    EXPECT_EQ(server.connectionCount(), 2);
}

TEST_F(Pool, OpensAtMostOneConnectionAThreadAndOneTlsSessionInAll)
{
    const test::TlsServer server(test::identity());
    EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([&server] {
            for (int round = 0; round < 10; ++round) {
                EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(server.requestCount(), 81U);
    EXPECT_LE(server.connectionCount(), 8);
}

TEST_F(Pool, ResumesTheTlsSessionForAFurtherConnection)
{
    const test::TlsServer server(test::identity());
    EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
    const SettingsPointer settings = currentSettings();
    const ConnectionPool::Lease busy =
        ConnectionPool::instance().take({"127.0.0.1", std::to_string(server.port())}, *settings);
    EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
    EXPECT_EQ(server.connectionCount(), 2);
    EXPECT_EQ(server.fullHandshakes(), 1);
}

TEST_F(Pool, OfAChildProcessTouchesNoConnectionOfItsParent)
{
    if (test::kWhyNoForks != nullptr) {
        GTEST_SKIP() << test::kWhyNoForks;
    }
    const test::TlsServer server(test::identity());
    EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
    const pid_t child = fork();
    if (child == 0) {
        const bool isRight =
            test::get(server.url()).result == REST_ANSWERED && test::get(server.url()).result == REST_ANSWERED;
        _exit(isRight ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(test::send(server.url(), REST_POST).result, REST_ANSWERED);
    EXPECT_EQ(server.connectionCount(), 2);
    EXPECT_EQ(server.requests().back().connection, 1);
}

TEST_F(Pool, FailsClearlyWithoutDescriptorsAndRecovers)
{
    const test::TlsServer server(test::identity());
    {
        const NoMoreDescriptors none;
        EXPECT_EQ(test::get(server.url()).result, REST_NO_CONNECTION);
    }
    EXPECT_EQ(test::get(server.url()).result, REST_ANSWERED);
}

}  // namespace
}  // namespace brevan
