#include "TransportFixture.h"

#include <openssl/bio.h>
#include <openssl/ssl.h>

#include <cstdlib>
#include <memory>

namespace brevan::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// Before OpenSSL reads it: on most machines OpenSSL refuses TLS 1.1 by itself, and nobody would see that the transport does.
const int kIsPermissive = setenv("OPENSSL_CONF", BREVAN_ROOT "/tests/platform/q7common/permissive-openssl.cnf", 1);

class Trust : public TransportTest {
protected:
    /// A server with an identity of its own and what becomes of a GET to it.
    static int resultFor(const Identity& of)
    {
        const TlsServer server(of);
        const int result = get(server.url()).result;
        EXPECT_EQ(server.requestCount(), result == REST_ANSWERED ? 1U : 0U);
        return result;
    }
};

TEST_F(Trust, IsGivenToACertificateOfTheCaFile)
{
    EXPECT_EQ(resultFor(identity()), REST_ANSWERED);
}

TEST_F(Trust, IsRefusedToAnUnknownAuthority)
{
    EXPECT_EQ(resultFor(makeIdentity(makeAuthority())), REST_NOT_TRUSTED);
    EXPECT_THAT(RunLogRecorder::text(), AllOf(HasSubstr("certificate"), HasSubstr("Set ca_file")));
}

TEST_F(Trust, IsRefusedToASelfSignedCertificate)
{
    EXPECT_EQ(resultFor(makeSelfSigned()), REST_NOT_TRUSTED);
}

TEST_F(Trust, IsRefusedToAWrongAddressInTheCertificate)
{
    EXPECT_EQ(resultFor(makeIdentity(authority(), {"IP:127.0.0.2,DNS:localhost"})), REST_NOT_TRUSTED);
}

TEST_F(Trust, IsRefusedToAnExpiredCertificate)
{
    EXPECT_EQ(resultFor(makeIdentity(authority(), {"IP:127.0.0.1", -7200, -3600})), REST_NOT_TRUSTED);
}

TEST_F(Trust, IsRefusedToACertificateThatIsNotYetValid)
{
    EXPECT_EQ(resultFor(makeIdentity(authority(), {"IP:127.0.0.1", 3600, 7200})), REST_NOT_TRUSTED);
}

TEST_F(Trust, ComesFromTheSystemStoreWithoutACaFile)
{
    writeSettings("");
    send("https://127.0.0.1:1", REST_POST, "/sessions");  // a login, which reads the settings again
    EXPECT_EQ(resultFor(identity()), REST_NOT_TRUSTED);
}

TEST_F(Trust, TakesTheServerNameForTheCertificateAndTheAddressForTheConnection)
{
    useSettings("server_name = array-1.example.com");
    const TlsServer server(makeIdentity(authority(), {"DNS:array-1.example.com"}));
    EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
    EXPECT_THAT(server.serverNames(), ElementsAre("array-1.example.com"));
}

TEST_F(Trust, IsRefusedToAnotherServerName)
{
    useSettings("server_name = array-2.example.com");
    EXPECT_EQ(resultFor(makeIdentity(authority(), {"DNS:array-1.example.com,IP:127.0.0.1"})), REST_NOT_TRUSTED);
}

TEST_F(Trust, CanBeSetForOneArray)
{
    useSettings("[tls 127.0.0.1]\nserver_name = array-1.example.com\n[tls 127.0.0.9]\nserver_name = array-2.example.com");
    EXPECT_EQ(resultFor(makeIdentity(authority(), {"DNS:array-1.example.com"})), REST_ANSWERED);
}

TEST_F(Trust, NeedsThePinnedKeyAsWellAsTheCertificate)
{
    useSettings("pin_sha256 = " + identity().pin());
    EXPECT_EQ(resultFor(identity()), REST_ANSWERED);
    EXPECT_EQ(resultFor(makeIdentity(authority())), REST_NOT_TRUSTED);
}

TEST_F(Trust, AcceptsAnyOfSeveralPins)
{
    useSettings("pin_sha256 = " + makeSelfSigned().pin() + " " + identity().pin());
    EXPECT_EQ(resultFor(identity()), REST_ANSWERED);
}

TEST_F(Trust, CanRestOnThePinAlone)
{
    const Identity selfSigned = makeSelfSigned();
    useSettings("verify = off\npin_sha256 = " + selfSigned.pin());
    EXPECT_EQ(resultFor(selfSigned), REST_ANSWERED);
    EXPECT_EQ(resultFor(makeSelfSigned()), REST_NOT_TRUSTED);
}

TEST_F(Trust, OfAPinStaysWhereASessionIsResumed)
{
    useSettings("pin_sha256 = " + identity().pin());
    TlsServer server(identity(), [](Peer& peer, const Received&) {
        peer.answer(kSuccess, 200, "Connection: close\r\n");
        peer.close();
    });
    EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
    EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
    EXPECT_EQ(server.connectionCount(), 2);
    EXPECT_EQ(server.fullHandshakes(), 1);
}

TEST_F(Trust, ThatIsOffIsWarnedOfAtEveryLogin)
{
    useSettings("verify = off");
    const TlsServer server(makeSelfSigned());
    EXPECT_EQ(send(server.url(), REST_POST, "/deviceManager/rest/xxxx/sessions").result, REST_ANSWERED);
    EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
    EXPECT_EQ(send(server.url(), REST_POST, "/deviceManager/rest/xxxx/sessions").result, REST_ANSWERED);
    EXPECT_THAT(RunLogRecorder::lines(), ElementsAre(HasSubstr("W TLS verification is off for https://127.0.0.1:"),
                                                     HasSubstr("W TLS verification is off for https://127.0.0.1:")));
}

TEST_F(Trust, ThatIsOffIsNotBlamedForABrokenHandshake)
{
    useSettings("verify = off");
    TlsServer::Options options;
    options.largestTlsVersion = TLS1_2_VERSION;  // from TLS 1.3 on the client has sent its request by then
    options.wantsCertificate = true;
    const TlsServer server(makeSelfSigned(), TlsServer::answerAlways, options);
    EXPECT_EQ(get(server.url()).result, REST_NO_CONNECTION);
    EXPECT_THAT(RunLogRecorder::text(), AllOf(HasSubstr("handshake failure"), Not(HasSubstr("certificate not accepted"))));
}

TEST_F(Trust, IsNotWarnedOfWhereItIsOn)
{
    const TlsServer server(identity());
    EXPECT_EQ(send(server.url(), REST_POST, "/deviceManager/rest/xxxx/sessions").result, REST_ANSWERED);
    EXPECT_THAT(RunLogRecorder::lines(), IsEmpty());
}

/// Whether a client that takes any version of TLS comes to terms with the server.
bool othersShakeHandsWith(const TlsServer& server)
{
    const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_client_method()), &SSL_CTX_free);
    SSL_CTX_set_security_level(context.get(), 0);
    SSL_CTX_set_min_proto_version(context.get(), TLS1_VERSION);
    const std::unique_ptr<BIO, decltype(&BIO_free_all)> peer(BIO_new_ssl_connect(context.get()), &BIO_free_all);
    BIO_set_conn_hostname(peer.get(), ("127.0.0.1:" + std::to_string(server.port())).c_str());
    return BIO_do_handshake(peer.get()) == 1;
}

TEST_F(Trust, IsRefusedToTls11)
{
    TlsServer::Options options;
    options.largestTlsVersion = TLS1_1_VERSION;
    ASSERT_EQ(kIsPermissive, 0);
    const TlsServer server(identity(), TlsServer::answerAlways, options);
    EXPECT_TRUE(othersShakeHandsWith(server)) << "nobody could, so that the refusal shows nothing";
    EXPECT_EQ(get(server.url()).result, REST_NO_CONNECTION);
    EXPECT_EQ(server.requestCount(), 0U);
}

TEST_F(Trust, IsGivenToTls12)
{
    TlsServer::Options options;
    options.largestTlsVersion = TLS1_2_VERSION;
    const TlsServer server(identity(), TlsServer::answerAlways, options);
    EXPECT_EQ(get(server.url()).result, REST_ANSWERED);
}

TEST_F(Trust, InAReplacedCaFileComesWithTheNextLogin)
{
    const TemporaryFolder folder;
    const Identity other = makeAuthority();
    writeSettings("[tls]\nca_file = " + folder.write("ca.pem", authority().pem()) + "\n");
    const TlsServer server(makeIdentity(other));
    EXPECT_EQ(send(server.url(), REST_POST, "/sessions").result, REST_NOT_TRUSTED);
    folder.write("ca.pem", other.pem() + "\n");
    EXPECT_EQ(send(server.url(), REST_POST, "/sessions").result, REST_ANSWERED);
}

}  // namespace
}  // namespace brevan::test
