#include "simulator/LoginGuard.h"

#include "ArrayClient.h"

#include "simulator/ApiError.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

/// Three wrong passwords lock a name for a minute, by a clock of the test's own.
class Guard : public ::testing::Test {
protected:
    void fail(const std::string& user, int times)
    {
        for (int time = 0; time < times; ++time) {
            m_guard.failed(user);
        }
    }
    bool isLocked(const std::string& user)
    {
        try {
            m_guard.check(user);
        } catch (const ApiError& error) {
            m_text = error.what();
            return error.code() == kLoginLocked;
        }
        return false;
    }

    LoginGuard::Clock::time_point m_now{std::chrono::hours(1)};
    LoginGuard m_guard{3, std::chrono::minutes(1), [this] { return m_now; }};
    std::string m_text;
};

}  // namespace

TEST_F(Guard, LocksANameAfterSoManyWrongPasswords)
{
    fail("admin", 2);
    EXPECT_FALSE(isLocked("admin"));
    fail("admin", 1);
    EXPECT_TRUE(isLocked("admin"));
    EXPECT_FALSE(isLocked("root"));
    EXPECT_EQ(m_text, "3 wrong passwords in a row: log-ins of 'admin' are refused for 60 s.");
}

TEST_F(Guard, UnlocksItAfterAWhileAndCountsAnew)
{
    fail("admin", 3);
    m_now += std::chrono::milliseconds(59500);
    EXPECT_TRUE(isLocked("admin"));
    EXPECT_EQ(m_text, "3 wrong passwords in a row: log-ins of 'admin' are refused for 1 s.");
    m_now += std::chrono::milliseconds(500);
    EXPECT_FALSE(isLocked("admin"));
    fail("admin", 2);
    EXPECT_FALSE(isLocked("admin"));
}

TEST_F(Guard, ForgetsThemAfterARightPassword)
{
    fail("admin", 2);
    m_guard.succeeded("admin");
    fail("admin", 2);
    EXPECT_FALSE(isLocked("admin"));
}

TEST_F(Guard, RemembersTheLatestOfManyNames)
{
    fail("first", 3);
    for (int name = 0; name < 1500; ++name) {
        m_now += std::chrono::milliseconds(1);
        fail(std::to_string(name), 3);
    }
    EXPECT_FALSE(isLocked("first"));
    EXPECT_TRUE(isLocked("1499"));
}

TEST(UnlimitedGuard, NeverLocks)
{
    LoginGuard guard(0, std::chrono::minutes(1), LoginGuard::Clock::now);
    for (int time = 0; time < 100; ++time) {
        guard.failed("admin");
    }
    EXPECT_NO_THROW(guard.check("admin"));
}

TEST(LockedOutUser, IsRefusedEvenWithTheRightPasswordUntilTheTimeIsOver)
{
    auto now = std::make_shared<LoginGuard::Clock::time_point>(std::chrono::hours(1));
    ServerOptions options = testOptions();
    options.now = [now] { return *now; };
    options.lockoutAfter = 2;
    options.lockoutTime = std::chrono::seconds(10);
    ArrayFixture array(options);
    const auto logIn = [&array](const std::string& password) {
        return array.client
            .send({"POST", "/deviceManager/rest/xxxx/sessions", "", "",
                   R"({"username":"admin","password":")" + password + R"(","scope":0})"})
            .code;
    };
    EXPECT_EQ(logIn("wrong"), kLoginRefused);
    EXPECT_EQ(logIn("wrong"), kLoginRefused);
    EXPECT_EQ(logIn("secret"), kLoginLocked);
    EXPECT_EQ(array.client.get("/storagepool").code, 0);
    *now += std::chrono::seconds(10);
    EXPECT_EQ(logIn("secret"), 0);
}
