#include "simulator/SessionStore.h"

#include "simulator/ApiError.h"

#include <gtest/gtest.h>

using namespace brevan::sim;

namespace {

struct StoreWithClock {
    std::chrono::steady_clock::time_point now{};
    SessionStore store{2, std::chrono::seconds(60), [this] { return now; }};
};

}  // namespace

TEST(SessionStore, KnowsASessionByTokenAndCookieTogether)
{
    StoreWithClock fixture;
    const auto first = fixture.store.open("admin", 1);
    const auto second = fixture.store.open("admin", 0);
    ASSERT_NE(fixture.store.find(first.token, first.cookie), nullptr);
    EXPECT_EQ(fixture.store.find(first.token, first.cookie)->scope, 1u);
    EXPECT_EQ(fixture.store.find(first.token, second.cookie), nullptr);
    EXPECT_EQ(fixture.store.find("", first.cookie), nullptr);
    EXPECT_EQ(fixture.store.find(first.token, ""), nullptr);
    EXPECT_EQ(fixture.store.find("", ""), nullptr);
}

TEST(SessionStore, FindsItsCookieAmongOthers)
{
    StoreWithClock fixture;
    const auto session = fixture.store.open("admin", 0);
    EXPECT_NE(fixture.store.find(session.token, " a=b; " + session.cookie + " ; c=d"), nullptr);
    EXPECT_EQ(fixture.store.find(session.token, "x" + session.cookie), nullptr);
    EXPECT_EQ(fixture.store.find(session.token, "session="), nullptr);
    EXPECT_EQ(fixture.store.find(session.token, ";;session= ;"), nullptr);
}

TEST(SessionStore, GivesAtLeast128RandomBits)
{
    StoreWithClock fixture;
    const auto first = fixture.store.open("admin", 0);
    const auto second = fixture.store.open("admin", 0);
    EXPECT_EQ(first.token.size(), 64u);
    EXPECT_EQ(first.cookie.size(), std::string("session=").size() + 64);
    EXPECT_NE(first.token, second.token);
    EXPECT_NE(first.cookie, second.cookie);
    EXPECT_NE("session=" + first.token, first.cookie);
}

TEST(SessionStore, RefusesMoreThanItsLimitUntilOneIsClosed)
{
    StoreWithClock fixture;
    const auto first = fixture.store.open("admin", 0);
    fixture.store.open("admin", 0);
    EXPECT_THROW(fixture.store.open("admin", 0), ApiError);
    EXPECT_TRUE(fixture.store.close(first.token, first.cookie));
    EXPECT_FALSE(fixture.store.close(first.token, first.cookie));
    EXPECT_NO_THROW(fixture.store.open("admin", 0));
}

TEST(SessionStore, ForgetsASessionThatIsIdleAndKeepsOneThatIsUsed)
{
    StoreWithClock fixture;
    const auto idle = fixture.store.open("admin", 0);
    const auto used = fixture.store.open("admin", 0);
    fixture.now += std::chrono::seconds(40);
    ASSERT_NE(fixture.store.find(used.token, used.cookie), nullptr);
    fixture.now += std::chrono::seconds(40);
    EXPECT_EQ(fixture.store.find(idle.token, idle.cookie), nullptr);
    EXPECT_NE(fixture.store.find(used.token, used.cookie), nullptr);
}

TEST(SessionStore, MakesRoomByForgettingIdleSessions)
{
    StoreWithClock fixture;
    fixture.store.open("admin", 0);
    fixture.store.open("admin", 0);
    fixture.now += std::chrono::seconds(61);
    EXPECT_NO_THROW(fixture.store.open("admin", 0));
    EXPECT_EQ(fixture.store.size(), 1u);
}
