#include "TransportFixture.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

namespace brevan::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

using std::chrono::milliseconds;

constexpr REST_REQUEST_MODE_E kModes[] = {REST_GET, REST_POST, REST_PUT, REST_DELETE};

class ConnectionTo : public TransportTest {};

/// Answers the first request and ends the connection at the second, as if the array had carried it out but could not tell;
/// what comes later is answered again.
TlsServer::Handler breakAtSecond(std::atomic<int>& count, bool withReset)
{
    return [&count, withReset](Peer& peer, const Received&) {
        if (++count != 2) {
            peer.answer(kSuccess);
        } else if (withReset) {
            peer.reset();
        } else {
            peer.close();
        }
    };
}

TEST_F(ConnectionTo, OneServerStaysWarmForAllModes)
{
    const TlsServer server(identity());
    for (const REST_REQUEST_MODE_E mode : kModes) {
        EXPECT_EQ(send(server.url(), mode).result, REST_ANSWERED);
    }
    EXPECT_EQ(server.connectionCount(), 1);
    EXPECT_EQ(server.requestCount(), 4U);
}

TEST_F(ConnectionTo, ADyingServerRepeatsAGetOnce)
{
    for (const bool withReset : {false, true}) {
        std::atomic<int> count{0};
        const TlsServer server(identity(), breakAtSecond(count, withReset));
        EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
        EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
        EXPECT_EQ(server.requestCount(), 3U);
        EXPECT_EQ(server.connectionCount(), 2);
    }
}

TEST_F(ConnectionTo, ADyingServerRepeatsNothingElse)
{
    for (const bool withReset : {false, true}) {
        for (const REST_REQUEST_MODE_E mode : {REST_POST, REST_PUT, REST_DELETE}) {
            std::atomic<int> count{0};
            const TlsServer server(identity(), breakAtSecond(count, withReset));
            EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
            EXPECT_EQ(send(server.url(), mode).result, REST_CONNECTION_LOST);
            EXPECT_EQ(server.requestCount(), 2U) << "mode " << mode << ", reset " << withReset;
            EXPECT_EQ(server.connectionCount(), 1);
        }
    }
}

TEST_F(ConnectionTo, AServerThatAlwaysDiesRepeatsAGetNoSecondTime)
{
    const TlsServer server(identity(), [](Peer& peer, const Received& request) {
        if (request.connection == 1 && request.target == "/first") {
            peer.answer(kSuccess);
        } else {
            peer.close();
        }
    });
    EXPECT_EQ(send(server.url(), REST_GET, "/first").result, REST_ANSWERED);
    EXPECT_EQ(get(server.url()).result, REST_CONNECTION_LOST);
    EXPECT_EQ(server.requestCount(), 3U);
}

TEST_F(ConnectionTo, AFreshServerThatDiesRepeatsNothing)
{
    for (const REST_REQUEST_MODE_E mode : kModes) {
        const TlsServer server(identity(), [](Peer& peer, const Received&) { peer.close(); });
        EXPECT_EQ(send(server.url(), mode).result, REST_CONNECTION_LOST);
        EXPECT_EQ(server.requestCount(), 1U);
    }
}

TEST_F(ConnectionTo, AServerThatClosedItWhileIdleIsMadeAnewBeforeUse)
{
    TlsServer server(identity());
    for (int round = 0; round < 250; ++round) {
        for (const REST_REQUEST_MODE_E mode : kModes) {
            ASSERT_EQ(send(server.url(), mode).result, REST_ANSWERED);
            server.closeConnections();
        }
    }
    EXPECT_EQ(server.requestCount(), 1000U);
    EXPECT_EQ(server.connectionCount(), 1000);
    EXPECT_THAT(RunLogRecorder::lines(), IsEmpty());
}

TEST_F(ConnectionTo, AServerThatGoesWhileWeWriteRaisesNoSignal)
{
    TlsServer::Options options;
    options.resetsAtFirstByte = true;
    const TlsServer server(identity(), TlsServer::answerAlways, options);
    RestRequest request;
    Sent sent;
    request.SetServerUrl(server.url());
    request.BodyAddProperty("TEXT", std::string(8 * 1024 * 1024, 'x'));
    EXPECT_EQ(request.SendRequest("/x", REST_POST, sent.response, sent.headerLines, false), REST_CONNECTION_LOST);
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(ConnectionTo, ARestartedServerIsMadeAnew)
{
    TlsServer::Options options;
    {
        const TlsServer server(identity());
        options.port = server.port();
        EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
    }
    EXPECT_EQ(get("https://127.0.0.1:" + std::to_string(options.port)).result, REST_NO_CONNECTION);
    const TlsServer server(identity(), TlsServer::answerAlways, options);
    EXPECT_EQ(send(server.url(), REST_POST).result, REST_ANSWERED);
}

TEST_F(ConnectionTo, AnIpv6AddressWorksWithBracketsAndWithout)
{
    TlsServer::Options options;
    options.address = "::1";
    const TlsServer server(identity(), TlsServer::answerAlways, options);
    EXPECT_EQ(get("https://[::1]:" + std::to_string(server.port())).result, REST_ANSWERED);
    EXPECT_EQ(get("https://::1:" + std::to_string(server.port())).result, REST_ANSWERED);
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(ConnectionTo, AServerThatNeverAnswersEndsInTime)
{
    useSettings("", "[time]\nrequest_seconds = 1\n");  // room for the handshake on a busy machine
    for (const REST_REQUEST_MODE_E mode : kModes) {
        const TlsServer server(identity(), [](Peer& peer, const Received&) { peer.stall(); });
        EXPECT_EQ(send(server.url(), mode).result, REST_TIMED_OUT);
        EXPECT_EQ(server.requestCount(), 1U);
    }
}

TEST_F(ConnectionTo, AServerStandsSignals)
{
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) {};  // without SA_RESTART: system calls end early
    sigaction(SIGUSR1, &action, &before);
    std::atomic<bool> isOver{false};
    const TlsServer server(identity(), [](Peer& peer, const Received&) {
        std::this_thread::sleep_for(milliseconds(50));
        peer.answer(kSuccess);
    });
    std::thread sender([&isOver, receiver = pthread_self()] {
        while (!isOver) {
            pthread_kill(receiver, SIGUSR1);
            std::this_thread::sleep_for(milliseconds(1));
        }
    });
    for (const REST_REQUEST_MODE_E mode : kModes) {
        EXPECT_EQ(send(server.url(), mode).result, REST_ANSWERED);
    }
    isOver = true;
    sender.join();
    sigaction(SIGUSR1, &before, nullptr);
    EXPECT_EQ(server.requestCount(), 4U);
}

TEST_F(ConnectionTo, AServerThatNeverShakesHandsEndsInTime)
{
    useSettings("", "[time]\nconnect_seconds = 0.2\n");
    TlsServer::Options options;
    options.answersHandshake = false;
    const TlsServer server(identity(), TlsServer::answerAlways, options);
    EXPECT_EQ(send(server.url(), REST_POST).result, REST_NO_CONNECTION);
}

TEST_F(ConnectionTo, AServerThatDripsEndsInTime)
{
    useSettings("", "[time]\nrequest_seconds = 1\n");
    const TlsServer server(identity(), [](Peer& peer, const Received&) {
        peer.write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
        while (!peer.isStopping() && peer.write(" ")) {
            std::this_thread::sleep_for(milliseconds(10));
        }
    });
    EXPECT_EQ(get(server.url()).result, REST_TIMED_OUT);
}

TEST_F(ConnectionTo, AServerThatAnnouncesTooMuchIsCutOff)
{
    const TlsServer server(identity(), [](Peer& peer, const Received&) {
        peer.write("HTTP/1.1 200 OK\r\nContent-Length: 10737418240\r\n\r\n{");
        peer.stall();
    });
    EXPECT_EQ(get(server.url()).result, REST_REPLY_TOO_LARGE);
    EXPECT_THAT(RunLogRecorder::text(), HasSubstr("raise reply_megabytes"));
}

TEST_F(ConnectionTo, AServerThatSendsTooMuchAsAnnouncedIsCutOff)
{
    std::atomic<std::size_t> sent{0};
    std::atomic<bool> isCut{false};
    const TlsServer server(identity(), [&](Peer& peer, const Received&) {
        const std::string part(0x4000, ' ');
        peer.write("HTTP/1.1 200 OK\r\nContent-Length: 10737418240\r\n\r\n");
        while (sent < 10737418240 && peer.write(part)) {
            sent += part.size();
        }
        isCut = !peer.isOpen();
    });
    EXPECT_EQ(get(server.url()).result, REST_REPLY_TOO_LARGE);
    while (!isCut) {
        std::this_thread::yield();
    }
    EXPECT_LT(sent, 64U << 20) << "it could send more than the sockets' buffers hold";
}

TEST_F(ConnectionTo, AServerThatSendsTooMuchIsCutOff)
{
    useSettings("", "[limits]\nreply_megabytes = 1\n");
    const TlsServer server(identity(), [](Peer& peer, const Received&) {
        peer.write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
        const std::string chunk = "4000\r\n" + std::string(0x4000, ' ') + "\r\n";
        while (peer.write(chunk)) {
        }
    });
    EXPECT_EQ(get(server.url()).result, REST_REPLY_TOO_LARGE);
}

TEST_F(ConnectionTo, AServerWithEndlessHeadersIsCutOff)
{
    const TlsServer server(identity(), [](Peer& peer, const Received&) {
        peer.write("HTTP/1.1 200 OK\r\n");
        while (peer.write("X-Filler: " + std::string(1000, 'x') + "\r\n")) {
        }
    });
    EXPECT_EQ(get(server.url()).result, REST_REPLY_TOO_LARGE);
}

TEST_F(ConnectionTo, AServerThatRedirectsIsNotFollowed)
{
    const TlsServer target(identity());
    const TlsServer server(identity(), [&target](Peer& peer, const Received&) {
        peer.answer("moved", 302, "Location: " + target.url() + "/\r\n");
    });
    EXPECT_EQ(get(server.url()).result, REST_UNUSABLE_REPLY);
    EXPECT_EQ(target.requestCount(), 0U);
}

TEST_F(ConnectionTo, AServerIsNotMadeThroughAProxyOfTheEnvironment)
{
    setenv("https_proxy", "http://127.0.0.1:1", 1);
    setenv("ALL_PROXY", "http://127.0.0.1:1", 1);
    const TlsServer server(identity());
    EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
    unsetenv("https_proxy");
    unsetenv("ALL_PROXY");
}

TEST_F(ConnectionTo, AServerIsMadeThroughTheProxyOfTheSettings)
{
    useSettings("", "[net]\nproxy = http://127.0.0.1:1\n");
    const TlsServer server(identity());
    EXPECT_EQ(get(server.url()).result, REST_NO_CONNECTION);
    EXPECT_EQ(server.connectionCount(), 0);
}

}  // namespace
}  // namespace brevan::test
