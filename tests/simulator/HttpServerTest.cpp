#include "simulator/HttpServer.h"

#include "ServedArray.h"

#include "simulator/ErrorCodes.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <thread>

using namespace brevan::sim;
using namespace brevan::sim::test;

namespace {

class HttpServerTest : public ::testing::Test {
protected:
    std::string url(const std::string& host = "127.0.0.1") const
    {
        return "https://" + host + ":" + std::to_string(m_server.port());
    }
    HttpsReply logIn(HttpsClient& client)
    {
        return client.send("POST", "/deviceManager/rest/xxxx/sessions",
                           R"({"username":"admin","password":"secret","scope":0})");
    }
    static ServerOptions options()
    {
        ServerOptions made = testOptions();
        made.serverName = "array.lab";
        return made;
    }
    StartedServer m_server{options()};
    HttpsClient m_client{url(), m_server.caFile()};
};

}  // namespace

TEST_F(HttpServerTest, ServesASessionWithALunOnOneConnection)
{
    const HttpsReply login = logIn(m_client);
    ASSERT_EQ(login.result, CURLE_OK);
    EXPECT_EQ(login.status, 200);
    const std::string token = Data::parse(login.body).at("data").at("iBaseToken").text();
    const std::size_t begin = login.headers.find("Set-Cookie: ") + 12;
    const std::string cookie = login.headers.substr(begin, login.headers.find(';', begin) - begin);
    const std::vector<std::string> headers{"iBaseToken: " + token, "Cookie:  " + cookie};
    const std::string device = "/deviceManager/rest/" + m_server.deviceId();
    const HttpsReply created =
        m_client.send("POST", device + "/lun", R"({"NAME":"l","PARENTID":"0","CAPACITY":8})", headers);
    EXPECT_EQ(codeOf(created), 0) << created.body;
    EXPECT_EQ(created.newConnections, 0);
    const HttpsReply list = m_client.send("GET", device + "/lun?filter=NAME:l&range=[0-1]", "", headers);
    EXPECT_EQ(Data::parse(list.body).at("data").size(), 1u) << list.body;
    EXPECT_EQ(codeOf(m_client.send("GET", device + "/lun")), kNoSession);
}

TEST_F(HttpServerTest, IsVerifiedByEveryNameOfItsCertificate)
{
    EXPECT_EQ(logIn(m_client).result, CURLE_OK);
    HttpsClient byName(url("localhost"), m_server.caFile());
    EXPECT_EQ(logIn(byName).result, CURLE_OK);
    curl_slist* names = curl_slist_append(nullptr, ("array.lab:" + std::to_string(m_server.port()) + ":127.0.0.1").c_str());
    names = curl_slist_append(names, ("other.lab:" + std::to_string(m_server.port()) + ":127.0.0.1").c_str());
    HttpsClient byServerName(url("array.lab"), m_server.caFile());
    byServerName.set(CURLOPT_RESOLVE, names);
    EXPECT_EQ(logIn(byServerName).result, CURLE_OK);
    HttpsClient byOtherName(url("other.lab"), m_server.caFile());
    byOtherName.set(CURLOPT_RESOLVE, names);
    EXPECT_EQ(logIn(byOtherName).result, CURLE_PEER_FAILED_VERIFICATION);
    curl_slist_free_all(names);
}

TEST_F(HttpServerTest, IsNotTrustedThroughAnotherAuthority)
{
    ArrayServer other(testOptions());
    other.start();
    HttpsClient client(url(), other.caFile());
    EXPECT_EQ(logIn(client).result, CURLE_PEER_FAILED_VERIFICATION);
}

TEST_F(HttpServerTest, RefusesOldVersionsOfTls)
{
    constexpr long kOldest = CURL_SSLVERSION_TLSv1_0;
    constexpr long kNewest = 5L << 16;  // CURL_SSLVERSION_MAX_TLSv1_1, which is no value of the enumeration that it is in
    m_client.set(CURLOPT_SSLVERSION, kOldest | kNewest);
    EXPECT_EQ(logIn(m_client).result, CURLE_SSL_CONNECT_ERROR);
}

TEST_F(HttpServerTest, BoundsBodiesAndHeaders)
{
    const HttpsReply body =
        m_client.send("POST", "/deviceManager/rest/xxxx/sessions", std::string(2000000, 'x'), {"Expect:"});
    EXPECT_TRUE(body.status == 413 || body.result == CURLE_SEND_ERROR) << body.status << " " << body.result;
    HttpsClient second(url(), m_server.caFile());
    const HttpsReply header = second.send("GET", "/x", "", {"X-Long: " + std::string(20000, 'x')});
    EXPECT_EQ(header.status, 431);
    EXPECT_EQ(codeOf(header), kBadHttp);
}

TEST_F(HttpServerTest, AnswersPathsOutsideTheInterface)
{
    const HttpsReply reply = m_client.send("GET", "/index.html");
    EXPECT_EQ(reply.status, 404);
    EXPECT_EQ(codeOf(reply), kUnknownOperation);
}

TEST_F(HttpServerTest, ServesManyConnectionsAtOnceOnFewThreads)
{
    std::atomic<int> answered{0};
    std::vector<std::thread> threads;
    for (int index = 0; index < 8; ++index) {
        threads.emplace_back([this, &answered] {
            HttpsClient client(url(), m_server.caFile());
            for (int request = 0; request < 20; ++request) {
                answered += client.send("GET", "/nosuch").status == 404 ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(answered, 160);
    EXPECT_EQ(m_server.requestCount(), 160u);
}

TEST_F(HttpServerTest, KeepsFiveHundredConnectionsAtOnce)
{
    // Both ends of each connection are in this process.
    rlimit descriptors{};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    const rlimit before = descriptors;
    descriptors.rlim_cur = descriptors.rlim_max;
    setrlimit(RLIMIT_NOFILE, &descriptors);
    std::vector<std::unique_ptr<HttpsClient>> clients;
    for (int index = 0; index < 500; ++index) {
        clients.push_back(std::make_unique<HttpsClient>(url(), m_server.caFile()));
        ASSERT_EQ(clients.back()->send("GET", "/nosuch").status, 404) << index;
    }
    long opened = 0;
    for (const auto& client : clients) {
        const HttpsReply reply = client->send("GET", "/nosuch");
        EXPECT_EQ(reply.status, 404);
        opened += reply.newConnections;
    }
    EXPECT_EQ(opened, 0) << "connections that the server did not keep";
    clients.clear();
    setrlimit(RLIMIT_NOFILE, &before);
}

TEST_F(HttpServerTest, IsNotHeldUpByClientsThatSayNothing)
{
    std::vector<int> silent;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(m_server.port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    for (int index = 0; index < 50; ++index) {
        silent.push_back(socket(AF_INET, SOCK_STREAM, 0));
        ASSERT_EQ(connect(silent.back(), reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    }
    EXPECT_EQ(logIn(m_client).result, CURLE_OK);
    for (const int descriptor : silent) {
        close(descriptor);
    }
}

TEST_F(HttpServerTest, TellsConnectionsAndSessionsApartInTheJournal)
{
    ServedClient first(m_server);
    ServedClient second(m_server);
    first.get("/lun/count?");
    second.client().set(CURLOPT_FRESH_CONNECT, 1L);
    second.get("/lun/count?");
    m_client.send("GET", "/nosuch");
    const auto entries = m_server.journal();
    ASSERT_EQ(entries.size(), 5u);
    const std::uint64_t kConnections[] = {1, 2, 1, 3, 4};
    const std::uint64_t kSessions[] = {1, 2, 1, 2, 0};
    for (std::size_t index = 0; index < entries.size(); ++index) {
        EXPECT_EQ(entries[index].number, index + 1);
        EXPECT_EQ(entries[index].connection, kConnections[index]) << index;
        EXPECT_EQ(entries[index].session, kSessions[index]) << index;
        EXPECT_GE(entries[index].time, entries[0].time);
        EXPECT_GT(entries[index].duration.count(), 0);
    }
    EXPECT_EQ(entries[0].body, R"({"username":"admin","password":"***","scope":0})");
}

TEST_F(HttpServerTest, WritesWhatItRefusesIntoTheJournal)
{
    EXPECT_EQ(m_client.send("GET", "/x", "", {"X-Long: " + std::string(20000, 'x')}).status, 431);
    const auto entries = m_server.journal();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].status, 431u);
    EXPECT_EQ(entries[0].code, kBadHttp);
    EXPECT_EQ(entries[0].connection, 1u);
    EXPECT_EQ(entries[0].operation, "");
}

TEST(HttpServer, AnswersWithACodeOfItsOwnWhenItIsFull)
{
    ServerOptions options = testOptions();
    options.limits.connections = 1;
    const StartedServer server(options);
    ServedClient first(server);
    HttpsClient second(httpsUrl(server), server.caFile());
    const HttpsReply reply = second.send("GET", "/nosuch");
    EXPECT_EQ(reply.status, 503);
    EXPECT_EQ(codeOf(reply), kOverloaded);
    EXPECT_EQ(codeOf(first.get("/lun/count?")), kDone);
}

TEST(HttpServer, ListensOnIpv6)
{
    ServerOptions options = testOptions();
    options.address = "::1";
    ArrayServer server(options);
    try {
        server.start();
    } catch (const std::exception& error) {
        GTEST_SKIP() << "no IPv6 loopback here: " << error.what();
    }
    HttpsClient client("https://[::1]:" + std::to_string(server.port()), server.caFile());
    EXPECT_EQ(client.send("GET", "/nosuch").status, 404);
}

TEST(HttpServer, StopsWhileConnectionsAreOpen)
{
    ArrayServer server(testOptions());
    server.start();
    HttpsClient client("https://127.0.0.1:" + std::to_string(server.port()), server.caFile());
    EXPECT_EQ(client.send("GET", "/nosuch").status, 404);
    server.stop();
    EXPECT_NE(client.send("GET", "/nosuch").result, CURLE_OK);
}
