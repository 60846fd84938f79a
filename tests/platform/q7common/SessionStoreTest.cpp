#include "platform/q7common/SessionStore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace brevan {
namespace {

using Finding = SessionStore::Finding;

const void* key(std::uintptr_t number)
{
    return reinterpret_cast<const void*>(number);
}

SessionPointer session(const std::string& deviceId)
{
    auto made = std::make_shared<Session>();
    made->deviceId = deviceId;
    return made;
}

TEST(SessionStore, FindsASessionByTheLowerHalfOfItsKey)
{
    SessionStore store;
    store.put(key(0x700000005), session("a"));
    EXPECT_EQ(store.find(5).session->deviceId, "a");
    EXPECT_EQ(store.find(7).finding, Finding::Unknown);
}

TEST(SessionStore, RefusesAHandleThatTwoSessionsShare)
{
    SessionStore store;
    store.put(key(0x100000005), session("a"));
    store.put(key(0x200000005), session("b"));
    EXPECT_EQ(store.find(5).finding, Finding::Ambiguous);
    EXPECT_EQ(store.find(5).session, nullptr);
    store.remove(key(0x100000005));
    EXPECT_EQ(store.find(5).session->deviceId, "b");
}

TEST(SessionStore, ReplacesASessionUnderItsKey)
{
    SessionStore store;
    store.put(key(5), session("a"));
    const SessionPointer running = store.find(5).session;
    store.put(key(5), session("b"));
    EXPECT_EQ(store.find(5).session->deviceId, "b");
    EXPECT_EQ(running->deviceId, "a");
}

TEST(SessionStore, ForgetsASessionButNotItsNeighbours)
{
    SessionStore store;
    store.put(key(5), session("a"));
    store.remove(key(0x100000005));
    store.remove(key(6));
    EXPECT_EQ(store.find(5).finding, Finding::Found);
    store.remove(key(5));
    store.remove(key(5));
    EXPECT_EQ(store.find(5).finding, Finding::Unknown);
}

TEST(SessionStore, KeepsTenThousandSessions)
{
    SessionStore store;
    for (std::uintptr_t number = 0; number < 10000; ++number) {
        store.put(key(number * 64), session(std::to_string(number)));
    }
    for (std::uint32_t number = 0; number < 10000; ++number) {
        ASSERT_EQ(store.find(number * 64).session->deviceId, std::to_string(number));
    }
}

TEST(SessionStore, IsUsedByManyThreadsAtOnce)
{
    SessionStore store;
    std::atomic<int> unexpected{0};
    store.put(key(1), session("shared"));
    std::vector<std::thread> threads;
    for (std::uintptr_t number = 2; number < 18; ++number) {
        threads.emplace_back([&, number] {
            for (int round = 0; round < 200; ++round) {
                store.put(key(number), session("own"));
                store.put(key(1), session("shared"));
                unexpected += store.find(1).session->deviceId == "shared" ? 0 : 1;
                unexpected += store.find(static_cast<std::uint32_t>(number)).session->deviceId == "own" ? 0 : 1;
                store.remove(key(number));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(unexpected, 0);
}

}  // namespace
}  // namespace brevan
