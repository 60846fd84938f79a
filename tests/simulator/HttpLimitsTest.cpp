// What the server does when clients are too many, too slow or too long.
#include "simulator/HttpServer.h"

#include "HttpsClient.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <thread>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

/// Answers with a body as long as the path asks for: "/1000".
class Lengths : public HttpService {
public:
    WireReply answer(const WireRequest& request) override
    {
        m_bodies += request.body.size();
        WireReply reply{200, std::string(std::stoul(request.target.substr(1)), 'x'), {}};
        if (request.method == "PUT") {
            reply.delivery.wait = std::chrono::minutes(10);
        }
        return reply;
    }
    WireReply refuse(const Refusal& refusal) override { return {refusal.status, refusal.text, {}}; }
    std::atomic<std::size_t> m_bodies{0};
};

/// A connection without a client library, for clients that behave badly.
class RawConnection {
public:
    explicit RawConnection(std::uint16_t port) : m_descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        const timeval patience{30, 0};
        setsockopt(m_descriptor, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_connected = connect(m_descriptor, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
    }
    ~RawConnection() { close(m_descriptor); }
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    bool send(const std::string& text)
    {
        return m_connected &&
               ::send(m_descriptor, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
    }
    /// Up to `most` bytes, at least one; empty: the server has ended the connection.
    std::string receive(std::size_t most = 65536)
    {
        std::string text(most, '\0');
        const ssize_t count = recv(m_descriptor, text.data(), text.size(), 0);
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return count < 0 && errno == EAGAIN ? "(nothing within 30 s)" : text;
    }

private:
    int m_descriptor;
    bool m_connected = false;
};

class HttpLimitsTest : public ::testing::Test {
protected:
    void start(const HttpLimits& limits)
    {
        m_server = std::make_unique<HttpServer>(m_service, limits, 1, std::nullopt);
        m_port = m_server->start("127.0.0.1", 0);
    }
    HttpsClient client() { return HttpsClient("http://127.0.0.1:" + std::to_string(m_port), ""); }

    /// The reply to a request that is repeated until it is answered with this status, for some seconds at most.
    static HttpsReply sentUntil(HttpsClient& client, long status)
    {
        HttpsReply reply = client.send("GET", "/1");
        for (int tries = 0; tries < 1000 && reply.status != status; ++tries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            reply = client.send("GET", "/1");
        }
        return reply;
    }

    Lengths m_service;
    std::unique_ptr<HttpServer> m_server;
    std::uint16_t m_port = 0;
};

}  // namespace

TEST_F(HttpLimitsTest, RefusesLongHeaders)
{
    HttpLimits limits;
    limits.headerBytes = 1000;
    start(limits);
    EXPECT_EQ(client().send("GET", "/1", "", {"X-Long: " + std::string(500, 'x')}).status, 200);
    const HttpsReply reply = client().send("GET", "/1", "", {"X-Long: " + std::string(2000, 'x')});
    EXPECT_EQ(reply.status, 431);
    EXPECT_EQ(reply.body, "The request headers are larger than 1000 bytes.");
}

TEST_F(HttpLimitsTest, RefusesLongBodiesHoweverTheyCome)
{
    HttpLimits limits;
    limits.bodyBytes = 1000;
    start(limits);
    EXPECT_EQ(client().send("POST", "/1", std::string(1000, 'x')).status, 200);
    EXPECT_EQ(client().send("POST", "/1", std::string(500, 'x'), {"Transfer-Encoding: chunked"}).status, 200);
    for (const char* header : {"Expect:", "Expect: 100-continue", "Transfer-Encoding: chunked"}) {
        const HttpsReply reply = client().send("POST", "/1", std::string(3000000, 'x'), {header});
        EXPECT_EQ(reply.status, 413) << header << " " << reply.error;
        EXPECT_EQ(reply.body, "The request body is larger than 1000 bytes.") << header;
    }
    EXPECT_EQ(m_service.m_bodies, 1500u);
}

TEST_F(HttpLimitsTest, InvitesABodyThatWaitsForIt)
{
    start({});
    RawConnection connection(m_port);
    ASSERT_TRUE(connection.send("POST /1 HTTP/1.1\r\nHost: a\r\nContent-Length: 5\r\nExpect: 100-continue\r\n\r\n"));
    EXPECT_EQ(connection.receive(), "HTTP/1.1 100 Continue\r\n\r\n");
    ASSERT_TRUE(connection.send("hello"));
    EXPECT_EQ(connection.receive().find("HTTP/1.1 200 OK\r\n"), 0u);
    EXPECT_EQ(m_service.m_bodies, 5u);
}

TEST_F(HttpLimitsTest, RefusesWhatIsNoHttp)
{
    start({});
    RawConnection connection(m_port);
    ASSERT_TRUE(connection.send("\x16\x03\x01 hello\r\n\r\n"));
    EXPECT_EQ(connection.receive().find("HTTP/1.1 400 Bad Request\r\n"), 0u);
    EXPECT_EQ(connection.receive(), "");
}

TEST_F(HttpLimitsTest, TellsClientsBeyondItsConnections)
{
    HttpLimits limits;
    limits.connections = 2;
    start(limits);
    HttpsClient first = client();
    HttpsClient third = client();
    EXPECT_EQ(first.send("GET", "/1").status, 200);
    {
        RawConnection second(m_port);
        ASSERT_TRUE(second.send("GET /1 HTTP/1.1\r\nHost: a\r\n\r\n"));
        EXPECT_EQ(second.receive().find("HTTP/1.1 200 OK\r\n"), 0u);
        const HttpsReply refused = third.send("GET", "/1");
        EXPECT_EQ(refused.status, 503);
        EXPECT_EQ(refused.body, "The server has 2 connections, and no more are allowed: try again later.");
        EXPECT_NE(refused.headers.find("Connection: close"), std::string::npos);
        EXPECT_EQ(first.send("GET", "/1").status, 200) << "who is connected is served on";
    }
    // The second client has gone; the server learns of it in its own time.
    EXPECT_EQ(sentUntil(third, 200).status, 200);
}

TEST_F(HttpLimitsTest, TakesNoRequestsWhileTooManyAnswersWait)
{
    HttpLimits limits;
    limits.waitingBytes = 1000;
    start(limits);
    HttpsClient contented = client();
    EXPECT_EQ(contented.send("GET", "/2000").body.size(), 2000u);
    EXPECT_EQ(contented.send("GET", "/1").status, 200) << "an answer that was taken waits no more";
    RawConnection stalled(m_port);
    ASSERT_TRUE(stalled.send("PUT /1001 HTTP/1.1\r\nHost: a\r\n\r\n"));
    HttpsClient other = client();
    const HttpsReply reply = sentUntil(other, 503);
    EXPECT_EQ(reply.status, 503);
    EXPECT_EQ(reply.body, "Clients have not taken 1000 bytes of their answers yet: try again later.");
}

TEST_F(HttpLimitsTest, ClosesSilentConnections)
{
    HttpLimits limits;
    limits.idle = std::chrono::milliseconds(100);
    start(limits);
    RawConnection silent(m_port);
    RawConnection halfway(m_port);
    ASSERT_TRUE(halfway.send("GET /1 HTTP/1.1\r\nHost:"));
    RawConnection afterwards(m_port);
    ASSERT_TRUE(afterwards.send("GET /1 HTTP/1.1\r\nHost: a\r\n\r\n"));
    EXPECT_EQ(afterwards.receive().find("HTTP/1.1 200 OK\r\n"), 0u);
    EXPECT_EQ(silent.receive(), "");
    EXPECT_EQ(halfway.receive(), "");
    EXPECT_EQ(afterwards.receive(), "");
}

TEST_F(HttpLimitsTest, CutsOffWhoDoesNotTakeItsAnswer)
{
    HttpLimits limits;
    limits.write = std::chrono::milliseconds(100);
    limits.connections = 1;
    start(limits);
    RawConnection lazy(m_port);
    ASSERT_TRUE(lazy.send("GET /1 HTTP/1.1\r\nHost: a\r\n\r\n"));
    ASSERT_EQ(lazy.receive().find("HTTP/1.1 200 OK\r\n"), 0u);
    constexpr std::size_t kLength = 64000000;
    ASSERT_TRUE(lazy.send("GET /" + std::to_string(kLength) + " HTTP/1.1\r\nHost: a\r\n\r\n"));
    HttpsClient other = client();
    EXPECT_EQ(sentUntil(other, 200).status, 200) << "its place is free when it has been cut off";
    std::size_t taken = 0;
    for (std::string piece = lazy.receive(); !piece.empty() && taken < kLength; piece = lazy.receive()) {
        taken += piece.size();
    }
    EXPECT_GT(taken, 0u);
    EXPECT_LT(taken, kLength);
}

TEST_F(HttpLimitsTest, ServesOthersWhileClientsDoNotTakeTheirAnswers)
{
    start({});
    std::vector<std::unique_ptr<RawConnection>> lazy;
    for (int index = 0; index < 8; ++index) {
        lazy.push_back(std::make_unique<RawConnection>(m_port));
        ASSERT_TRUE(lazy.back()->send("GET /16000000 HTTP/1.1\r\nHost: a\r\n\r\n"));
    }
    HttpsClient other = client();
    for (int index = 0; index < 20; ++index) {
        EXPECT_EQ(other.send("GET", "/1000").body.size(), 1000u);
    }
}

TEST_F(HttpLimitsTest, ServesOthersWhileClientsSendByteByByte)
{
    start({});
    HttpsClient other = client();
    std::vector<std::unique_ptr<RawConnection>> slow;
    for (int index = 0; index < 50; ++index) {
        slow.push_back(std::make_unique<RawConnection>(m_port));
    }
    for (const char letter : std::string("GET /1 HTTP/1.1\r\nHost: a\r\n\r\n")) {
        for (const auto& connection : slow) {
            ASSERT_TRUE(connection->send(std::string(1, letter)));
        }
        EXPECT_EQ(other.send("GET", "/1").status, 200);
    }
    for (const auto& connection : slow) {
        EXPECT_EQ(connection->receive().find("HTTP/1.1 200 OK\r\n"), 0u);
    }
}
