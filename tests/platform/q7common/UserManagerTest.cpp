#include "UserManager.h"

#include "platform/q7common/SessionStore.h"

#include <gtest/gtest.h>

namespace brevan {
namespace {

SessionPointer registered(const std::string& ip, unsigned int port, const std::string& token, const std::string& cookie)
{
    int owner = 0;
    CUserManager::getInstance().RegisterSession(&owner, "dev", ip, port, token, cookie, true);
    const auto handle = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(&owner));
    const SessionPointer session = SessionStore::instance().find(handle).session;
    CUserManager::getInstance().RemoveSession(&owner);
    EXPECT_EQ(SessionStore::instance().find(handle).finding, SessionStore::Finding::Unknown);
    return session;
}

TEST(UserManager, KeepsWhatARequestNeeds)
{
    const SessionPointer session = registered("::1", 8088, "t", " session=a");
    EXPECT_EQ(baseUrl(*session->server), "https://[::1]:8088");
    EXPECT_EQ(session->address, "[::1]:8088");
    EXPECT_EQ(session->deviceId, "dev");
    EXPECT_STREQ(session->token.line(), "iBaseToken: t");
    EXPECT_STREQ(session->cookie.line(), "Cookie: session=a");
    EXPECT_TRUE(session->openedHere);
}

TEST(UserManager, KeepsASessionThatCannotBeUsedYet)
{
    EXPECT_FALSE(registered("192.0.2.1", 0, "t", "c")->server.has_value());
    EXPECT_FALSE(registered("192.0.2.1", 1, "t\n", "c")->isSendable);
    EXPECT_FALSE(registered("192.0.2.1", 1, "t", "c\r\n")->isSendable);
}

TEST(UserManager, IsOne)
{
    EXPECT_EQ(&CUserManager::getInstance(), &CUserManager::getInstance());
}

}  // namespace
}  // namespace brevan
