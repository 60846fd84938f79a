#include "ArrayClient.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

Reply logIn(ArrayFixture& array, const std::string& body, const std::string& device = "xxxx")
{
    return array.client.send({"POST", "/deviceManager/rest/" + device + "/sessions", "", "", body});
}

}  // namespace

TEST(SessionResource, AnswersALoginWithDeviceTokenAndACookieWithAttributes)
{
    ArrayServer server(testOptions());
    const WireReply reply = server.handle(
        {"POST", "/deviceManager/rest/xxxx/sessions", "", "", R"({"username":"admin","password":"secret","scope":0})"});
    const Data data = Data::parse(reply.body).at("data");
    EXPECT_EQ(data.at("deviceid"), "210000000001");
    EXPECT_EQ(data.at("iBaseToken").text().size(), 64u);
    ASSERT_EQ(reply.headers.size(), 1u);
    EXPECT_EQ(reply.headers[0].first, "Set-Cookie");
    EXPECT_EQ(reply.headers[0].second.find("session="), 0u);
    EXPECT_NE(reply.headers[0].second.find("; Path=/; Secure; HttpOnly"), std::string::npos);
}

TEST(SessionResource, RefusesAWrongUserOrPasswordWithTheSameText)
{
    ArrayFixture array;
    const Reply password = logIn(array, R"({"username":"admin","password":"Secret","scope":0})");
    const Reply user = logIn(array, R"({"username":"root","password":"secret","scope":0})");
    EXPECT_EQ(password.code, kLoginRefused);
    EXPECT_EQ(user.code, kLoginRefused);
    EXPECT_EQ(user.description, password.description);
    EXPECT_EQ(password.data, Fields());
}

TEST(SessionResource, AsksForEveryPartOfALogin)
{
    ArrayFixture array;
    EXPECT_EQ(logIn(array, R"({"password":"secret","scope":0})").code, kMissingParameter);
    EXPECT_EQ(logIn(array, R"({"username":"admin","scope":0})").code, kMissingParameter);
    EXPECT_EQ(logIn(array, R"({"username":"admin","password":"secret"})").code, kMissingParameter);
    EXPECT_EQ(logIn(array, R"({"username":"admin","password":"secret","scope":"x"})").code, kBadParameter);
    EXPECT_EQ(logIn(array, R"({"username":"admin","password":"secret","scope":0})", "other").code, kUnknownDevice);
}

TEST(SessionResource, TellsWhoIsLoggedIn)
{
    ArrayFixture array;
    const Reply reply = array.client.get("/server/logininfo");
    EXPECT_EQ(reply.code, 0);
    EXPECT_EQ(reply.text("username"), "admin");
    EXPECT_EQ(reply.text("deviceid"), array.server.deviceId());
}

TEST(SessionResource, EndsASessionAtLogout)
{
    ArrayFixture array;
    EXPECT_EQ(array.client.remove("/sessions").code, 0);
    EXPECT_EQ(array.client.get("/server/logininfo").code, kNoSession);
    EXPECT_EQ(array.client.remove("/sessions").code, kNoSession);
}

TEST(SessionResource, AsksForTokenAndCookieOnEveryRequest)
{
    ArrayFixture array;
    const std::string token = array.client.m_token;
    array.client.m_token = token.substr(1) + "0";
    EXPECT_EQ(array.client.get("/lun").code, kNoSession);
    array.client.m_token = token;
    array.client.m_cookie.clear();
    EXPECT_EQ(array.client.get("/lun").code, kNoSession);
    EXPECT_EQ(array.client.post("/lun", {{"NAME", "x"}}).code, kNoSession);
}

TEST(SessionResource, LeavesOtherSessionsOpen)
{
    ArrayFixture array;
    ArrayClient second(array.server);
    EXPECT_EQ(second.remove("/sessions").code, 0);
    EXPECT_EQ(array.client.get("/server/logininfo").code, 0);
}
