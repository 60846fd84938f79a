#include "TransportFixture.h"

#include "UserManager.h"

#include <atomic>
#include <cstdint>
#include <future>
#include <thread>

namespace brevan::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Request : public TransportTest {
protected:
    static const void* key(std::uintptr_t number) { return reinterpret_cast<const void*>(number); }

    static int sendUnder(unsigned int handle, REST_REQUEST_MODE_E mode = REST_GET, const std::string& path = "/lun/7")
    {
        RestRequest request;
        RestResponse response;
        std::vector<std::string> lines;
        return request.SendRequest(handle, path, mode, response, lines, true);
    }

    static void open(std::uintptr_t number, const TlsServer& server, const std::string& device = "dev 1")
    {
        CUserManager::getInstance().RegisterSession(key(number), device, "127.0.0.1", server.port(), "canary-token",
                                                    " session=canary-cookie", true);
    }

    void TearDown() override
    {
        CUserManager::getInstance().RemoveSession(key(0x100000001));
        CUserManager::getInstance().RemoveSession(key(0x200000001));
    }
};

TEST_F(Request, UnderASessionGetsItsServerPathAndHeaders)
{
    const TlsServer server(identity());
    open(0x100000001, server);
    EXPECT_EQ(sendUnder(1), REST_ANSWERED);
    const Received request = server.requests().at(0);
    EXPECT_EQ(request.target, "/deviceManager/rest/dev%201/lun/7");
    EXPECT_THAT(request.head,
                AllOf(HasSubstr("\r\niBaseToken: canary-token\r\n"), HasSubstr("\r\nCookie: session=canary-cookie\r\n")));
}

TEST_F(Request, WithoutASessionSendsTheHeadersThatItWasGiven)
{
    const TlsServer server(identity());
    RestRequest request;
    Sent sent;
    request.SetServerUrl(server.url());
    request.HeaderAddProperty(HTTP_HEADER_TOKEN, "t1");
    request.HeaderAddProperty(HTTP_HEADER_COOKIE, "c1");
    request.HeaderAddProperty(static_cast<HTTP_HEADER_E>(3), "other");
    EXPECT_EQ(request.SendRequest("/x", REST_GET, sent.response, sent.headerLines, false), REST_ANSWERED);
    EXPECT_THAT(server.requests().at(0).head,
                AllOf(HasSubstr("iBaseToken: t1\r\n"), HasSubstr("Cookie: c1\r\n"), Not(HasSubstr("other"))));
}

TEST_F(Request, SendsNoHeaderForAnEmptyValue)
{
    const TlsServer server(identity());
    RestRequest request;
    Sent sent;
    request.SetServerUrl(server.url());
    request.HeaderAddProperty(HTTP_HEADER_TOKEN, "");
    request.SendRequest("/x", REST_GET, sent.response, sent.headerLines, false);
    EXPECT_THAT(server.requests().at(0).head, Not(HasSubstr("iBaseToken")));
}

TEST_F(Request, CannotForgeAHeader)
{
    const TlsServer server(identity());
    RestRequest request;
    Sent sent;
    request.SetServerUrl(server.url());
    request.HeaderAddProperty(HTTP_HEADER_TOKEN, "t\r\nX-Forged: 1");
    EXPECT_EQ(request.SendRequest("/x", REST_GET, sent.response, sent.headerLines, false), REST_BAD_PATH);
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(Request, IsRefusedWhereABodyTextIsNotUtf8)
{
    const TlsServer server(identity());
    RestRequest request;
    Sent sent;
    request.SetServerUrl(server.url());
    request.BodyAddProperty("NAME", std::string("a\xff"));
    EXPECT_EQ(request.SendRequest("/x", REST_POST, sent.response, sent.headerLines, false), REST_BAD_PATH);
    EXPECT_THAT(RunLogRecorder::text(), HasSubstr("not UTF-8"));
}

TEST_F(Request, WritesItsBodyInTheOrderOfTheCalls)
{
    const TlsServer server(identity());
    RestRequest request;
    Sent sent;
    request.SetServerUrl(server.url());
    request.BodyAddProperty("zz", "text");
    request.BodyAddProperty("aa", std::string("q\"\\\n\x01\xc3\xa4"));
    request.BodyAddProperty("scope", -5);
    request.BodyAddProperty("flag", true);
    request.BodyAddProperty("ul", 4294967296UL);
    request.BodyAddProperty("ull", 18446744073709551615ULL);
    request.SendRequest("/x", REST_POST, sent.response, sent.headerLines, false);
    EXPECT_EQ(server.requests().at(0).body,
              "{\"zz\":\"text\",\"aa\":\"q\\\"\\\\\\u000a\\u0001\xc3\xa4\",\"scope\":-5,\"flag\":true,"
              "\"ul\":4294967296,\"ull\":18446744073709551615}");
}

TEST_F(Request, GivesHeaderLinesOnlyWhereTheyAreWanted)
{
    const TlsServer server(identity(), [](Peer& peer, const Received&) {
        peer.write("HTTP/1.1 100 Continue\r\nX-Interim: 1\r\n\r\n");
        peer.answer(kSuccess, 200, "set-cookie: session=abc; path=/\r\n");
    });
    for (const bool isWanted : {true, false}) {
        RestRequest request;
        Sent sent;
        sent.headerLines = {"old"};
        request.SetServerUrl(server.url());
        EXPECT_EQ(request.SendRequest("/x", REST_GET, sent.response, sent.headerLines, isWanted), REST_ANSWERED);
        if (isWanted) {
            EXPECT_THAT(sent.headerLines, ElementsAre("Content-Length: 56", "Set-Cookie: session=abc; path=/"));
        } else {
            EXPECT_THAT(sent.headerLines, IsEmpty());
        }
    }
}

TEST_F(Request, IsRefusedUnderAnUnknownHandle)
{
    EXPECT_EQ(sendUnder(77), REST_UNKNOWN_SESSION);
    EXPECT_THAT(RunLogRecorder::lines(), ElementsAre(HasSubstr("GET /lun/7 failed: no session is open under this handle")));
}

TEST_F(Request, IsRefusedUnderAHandleOfTwoSessions)
{
    const TlsServer first(identity());
    const TlsServer second(identity());
    open(0x100000001, first);
    open(0x200000001, second);
    EXPECT_EQ(sendUnder(1), REST_AMBIGUOUS_SESSION);
    EXPECT_EQ(first.connectionCount() + second.connectionCount(), 0);
    EXPECT_THAT(RunLogRecorder::lines(), ElementsAre(HasSubstr("share the lower 32 bits")));
    CUserManager::getInstance().RemoveSession(key(0x200000001));
    EXPECT_EQ(sendUnder(1), REST_ANSWERED);
    EXPECT_EQ(first.requestCount(), 1U);
}

TEST_F(Request, GoesToTheSessionThatReplacedAnother)
{
    const TlsServer first(identity());
    const TlsServer second(identity());
    open(0x100000001, first);
    open(0x100000001, second);
    EXPECT_EQ(sendUnder(1), REST_ANSWERED);
    EXPECT_EQ(second.requestCount(), 1U);
    EXPECT_EQ(first.requestCount(), 0U);
}

TEST_F(Request, FailsClearlyUnderASessionWithoutAUsableAddress)
{
    CUserManager::getInstance().RegisterSession(key(0x100000001), "d", "127.0.0.1", 0, "t", "c", false);
    EXPECT_EQ(sendUnder(1), REST_NO_CONNECTION);
    CUserManager::getInstance().RegisterSession(key(0x100000001), "..", "127.0.0.1", 1, "t", "c", false);
    EXPECT_EQ(sendUnder(1), REST_BAD_PATH);
}

TEST_F(Request, LogsNoSecret)
{
    const TlsServer server(identity(), [](Peer& peer, const Received&) { peer.close(); });
    open(0x100000001, server);
    sendUnder(1);
    RestRequest login;
    Sent sent;
    login.SetServerUrl(server.url());
    login.BodyAddProperty("password", "canary-password");
    login.SendRequest("/sessions", REST_POST, sent.response, sent.headerLines, true);
    EXPECT_EQ(RunLogRecorder::lines().size(), 2U);
    EXPECT_THAT(RunLogRecorder::text(), Not(HasSubstr("canary")));
}

/// One request is answered only once the other has arrived.
TEST_F(Request, DoesNotWaitForThatOfAnotherThread)
{
    std::promise<void> firstArrived;
    std::promise<void> secondArrived;
    std::atomic<bool> cameInTime{false};
    const TlsServer server(identity(), [&](Peer& peer, const Received& request) {
        if (request.target.find("/first") != std::string::npos) {
            firstArrived.set_value();
            cameInTime = secondArrived.get_future().wait_for(std::chrono::seconds(4)) == std::future_status::ready;
        } else {
            secondArrived.set_value();
        }
        peer.answer(kSuccess);
    });
    open(0x100000001, server);
    auto first = std::async(std::launch::async, [] { return sendUnder(1, REST_GET, "/first"); });
    firstArrived.get_future().wait();
    EXPECT_EQ(sendUnder(1, REST_GET, "/second"), REST_ANSWERED);
    EXPECT_EQ(first.get(), REST_ANSWERED);
    EXPECT_TRUE(cameInTime);
}

TEST_F(Request, RunsInManyThreadsWhileSessionsComeAndGo)
{
    const TlsServer server(identity());
    open(0x100000001, server);
    std::vector<std::thread> threads;
    std::atomic<int> unexpected{0};
    for (std::uintptr_t number = 0; number < 16; ++number) {
        threads.emplace_back([&, number] {
            for (int round = 0; round < 10; ++round) {
                open(0x500000100 + number, server);
                unexpected += sendUnder(1) == REST_ANSWERED ? 0 : 1;
                CUserManager::getInstance().RemoveSession(key(0x500000100 + number));
                open(0x100000001, server);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(unexpected, 0);
    EXPECT_LE(server.connectionCount(), 16);
    EXPECT_EQ(server.requestCount(), 160U);
}

}  // namespace
}  // namespace brevan::test
