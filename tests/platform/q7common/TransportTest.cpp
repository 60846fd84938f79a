#include "TransportFixture.h"

#include <pthread.h>

namespace brevan::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Transport : public TransportTest {
protected:
    /// What becomes of a GET that gets these bytes, after which the connection ends.
    static int resultOfBytes(const std::string& bytes)
    {
        const TlsServer server(identity(), [&bytes](Peer& peer, const Received&) {
            peer.write(bytes);
            peer.close();
        });
        return get(server.url()).result;
    }

    static Sent answerTo(const std::string& body, int status = 200)
    {
        const TlsServer server(identity(), [&](Peer& peer, const Received&) { peer.answer(body, status); });
        return get(server.url());
    }
};

TEST_F(Transport, ReadsAReplyThatEndsWithItsConnection)
{
    EXPECT_EQ(resultOfBytes("HTTP/1.1 200 OK\r\n\r\n" + kSuccess), REST_ANSWERED);
}

TEST_F(Transport, ReadsAReplyInChunks)
{
    EXPECT_EQ(
        resultOfBytes("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n19\r\n{\"error\":{\"code\":0,\"x\":\"\"\r\n"
                      "2\r\n}}\r\n0\r\n\r\n"),
        REST_ANSWERED);
}

TEST_F(Transport, FindsACutReplyUnusable)
{
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(kSuccess.size()) + "\r\n\r\n";
    EXPECT_EQ(resultOfBytes(head + kSuccess.substr(0, 20)), REST_UNUSABLE_REPLY);
    EXPECT_EQ(resultOfBytes(head), REST_UNUSABLE_REPLY);
    EXPECT_EQ(resultOfBytes("HTTP/1.1 200 OK\r\n\r\n" + kSuccess.substr(0, 20)), REST_UNUSABLE_REPLY);
    EXPECT_EQ(resultOfBytes("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n10\r\n{"), REST_UNUSABLE_REPLY);
}

TEST_F(Transport, CallsAReplyLostThatNeverBegan)
{
    EXPECT_EQ(resultOfBytes(""), REST_CONNECTION_LOST);
}

TEST_F(Transport, CallsAReplyLostThatEndsInItsHead)
{
    EXPECT_EQ(resultOfBytes("HTTP/1.1 200 OK\r\nContent-Le"), REST_CONNECTION_LOST);
}

TEST_F(Transport, FindsWhatIsNoHttpUnusable)
{
    EXPECT_EQ(resultOfBytes("SSH-2.0-OpenSSH_9.2\r\n"), REST_UNUSABLE_REPLY);
    EXPECT_EQ(resultOfBytes("HTTP/1.1 200 OK\r\nContent-Length: x\r\n\r\n"), REST_UNUSABLE_REPLY);
}

TEST_F(Transport, FindsWhatIsNoReplyUnusable)
{
    for (const std::string& body :
         {std::string(), std::string("<html>"), std::string("{}"), std::string("[]"),
          std::string(R"({"error":{"code":"x"}})"), std::string(R"({"data":5,"error":{"code":0}})"),
          std::string(R"({"error":{"code":0,"code":0}})"), R"({"error":{"code":0},"data":)" + std::string(100000, '[')}) {
        EXPECT_EQ(answerTo(body).result, REST_UNUSABLE_REPLY) << body.substr(0, 50);
    }
}

TEST_F(Transport, TakesAnErrorOfTheArrayFromAnHttpError)
{
    for (const int status : {401, 500, 503}) {
        Sent sent = answerTo(R"({"error":{"code":"-401","description":"gone"}})", status);
        EXPECT_EQ(sent.result, REST_ANSWERED);
        EXPECT_EQ(sent.code(), -401);
    }
}

TEST_F(Transport, FindsAnHttpErrorWithoutOneUnusable)
{
    EXPECT_EQ(answerTo("", 503).result, REST_UNUSABLE_REPLY);
    EXPECT_EQ(answerTo(kSuccess, 500).result, REST_UNUSABLE_REPLY);
    EXPECT_THAT(RunLogRecorder::text(), HasSubstr("HTTP status 503"));
}

TEST_F(Transport, LeavesNoOldReplyBehindAFailure)
{
    const TlsServer server(identity());
    Sent sent = get(server.url());
    RestRequest request;
    request.SetServerUrl("https://127.0.0.1:1");
    EXPECT_EQ(request.SendRequest("/x", REST_GET, sent.response, sent.headerLines, true), REST_NO_CONNECTION);
    EXPECT_EQ(sent.response.count(), 0U);
    EXPECT_THAT(sent.headerLines, IsEmpty());
}

TEST_F(Transport, WritesOneLineForAFailure)
{
    get("https://127.0.0.1:1");
    EXPECT_THAT(RunLogRecorder::lines(),
                ElementsAre(AllOf(HasSubstr("E GET /deviceManager/rest/1/lun to https://127.0.0.1:1 failed: "),
                                  HasSubstr("refused"), HasSubstr("nothing was sent"))));
}

TEST_F(Transport, RefusesBadPathsBeforeConnecting)
{
    const TlsServer server(identity());
    for (const std::string& path :
         {std::string("/a\nb"), std::string("/lun/../x"), std::string("lun"), std::string("/a\0b", 4)}) {
        EXPECT_EQ(send(server.url(), REST_GET, path).result, REST_BAD_PATH);
    }
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(Transport, RefusesAModeThatDoesNotExist)
{
    EXPECT_EQ(send("https://127.0.0.1:1", static_cast<REST_REQUEST_MODE_E>(9)).result, REST_BAD_PATH);
    EXPECT_EQ(send("https://127.0.0.1:1", static_cast<REST_REQUEST_MODE_E>(-1)).result, REST_BAD_PATH);
}

TEST_F(Transport, RefusesWhatIsNoServer)
{
    for (const char* url : {"", "https://:0", "http://127.0.0.1:80", "https://127.0.0.1", "https://u:p@127.0.0.1:1"}) {
        EXPECT_EQ(get(url).result, REST_NO_CONNECTION) << url;
    }
}

TEST_F(Transport, RefusesALoginUnderBadSettings)
{
    const TlsServer server(identity());
    writeSettings("[tls]\nverfy = off\n");
    EXPECT_EQ(send(server.url(), REST_POST, "/deviceManager/rest/xxxx/sessions").result, REST_BAD_SETTINGS);
    EXPECT_EQ(server.connectionCount(), 0);
    EXPECT_THAT(RunLogRecorder::text(), HasSubstr("transport.ini:2: [tls] verfy is not a setting"));
}

TEST_F(Transport, GoesOnUnderTheSettingsOfItsSessions)
{
    const TlsServer server(identity());
    writeSettings("[time]\nrequest_seconds = 0\n");
    EXPECT_EQ(send(server.url(), REST_POST, "/sessions").result, REST_BAD_SETTINGS);
    EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
}

TEST_F(Transport, SendsWhatTheUrlDoesNotAllowEncoded)
{
    const TlsServer server(identity());
    send(server.url(), REST_GET, "/lun/associate?filter=NAME:a b#c%41\"'\xc3\xa4&range=[0-5]&x=a+b");
    EXPECT_EQ(server.requests().at(0).target, "/lun/associate?filter=NAME:a%20b%23c%2541%22%27%c3%a4&range=[0-5]&x=a%2bb");
}

TEST_F(Transport, SendsDotSegmentsAndEmptyQueriesAsTheyAre)
{
    const TlsServer server(identity());
    for (const char* path : {"/a/./b//c?x=/../y", "/lun/count?", "/lun/count", "/a?b?c"}) {
        send(server.url(), REST_GET, path);
        EXPECT_EQ(server.requests().back().target, path);
    }
}

TEST_F(Transport, SendsBodiesWhereTheyBelong)
{
    const TlsServer server(identity());
    for (const REST_REQUEST_MODE_E mode : {REST_GET, REST_POST, REST_PUT, REST_DELETE}) {
        RestRequest request;
        Sent sent;
        request.SetServerUrl(server.url());
        request.SendRequest("/x", mode, sent.response, sent.headerLines, false);
        request.BodyAddProperty("ID", "1");
        request.SendRequest("/x", mode, sent.response, sent.headerLines, false);
    }
    std::string bodies;
    for (const Received& request : server.requests()) {
        bodies += request.method + " " + request.body + "\n";
    }
    EXPECT_EQ(bodies,
              "GET \nGET {\"ID\":\"1\"}\nPOST {}\nPOST {\"ID\":\"1\"}\nPUT {}\nPUT {\"ID\":\"1\"}\n"
              "DELETE \nDELETE {\"ID\":\"1\"}\n");
}

/// Runs `body` in a thread with the smallest stack that an application may have chosen.
void runOnSmallStack(void* (*body)(void*), void* argument)
{
    pthread_attr_t attributes;
    pthread_t thread{};
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 64 * 1024), 0);
    ASSERT_EQ(pthread_create(&thread, &attributes, body, argument), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST_F(Transport, NeedsLittleStack)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers need more stack themselves";
#endif
    const std::string nested = R"({"data":{"x":)" + std::string(28, '[') + std::string(28, ']') + R"(},"error":{"code":0}})";
    const TlsServer server(identity(), [&nested](Peer& peer, const Received&) { peer.answer(nested); });
    std::string serverUrl = server.url();
    runOnSmallStack(
        [](void* url) -> void* {
            EXPECT_EQ(send(*static_cast<const std::string*>(url), REST_POST, "/sessions").result, REST_ANSWERED);
            return nullptr;
        },
        &serverUrl);
    EXPECT_EQ(server.requestCount(), 1U);
}

TEST_F(Transport, SendsALargeBodyWithoutAskingFirst)
{
    const TlsServer server(identity());
    RestRequest request;
    Sent sent;
    const std::string text(2 * 1024 * 1024, 'x');
    request.SetServerUrl(server.url());
    request.BodyAddProperty("TEXT", text);
    EXPECT_EQ(request.SendRequest("/x", REST_POST, sent.response, sent.headerLines, false), REST_ANSWERED);
    EXPECT_EQ(server.requests().at(0).body.size(), text.size() + 11);
    EXPECT_THAT(server.requests().at(0).head,
                AllOf(HasSubstr("Content-Type: application/json\r\n"), Not(HasSubstr("Expect"))));
}

}  // namespace
}  // namespace brevan::test
