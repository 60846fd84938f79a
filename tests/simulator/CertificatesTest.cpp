#include "simulator/Certificates.h"

#include <gtest/gtest.h>

#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>

using namespace brevan::sim;

namespace {

std::shared_ptr<X509> parse(const std::string& pem)
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())), BIO_free);
    return {PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr), X509_free};
}

int verify(const std::string& authority, const std::string& certificate)
{
    const std::unique_ptr<X509_STORE, decltype(&X509_STORE_free)> store(X509_STORE_new(), X509_STORE_free);
    X509_STORE_add_cert(store.get(), parse(authority).get());
    const auto leaf = parse(certificate);
    const std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)> context(X509_STORE_CTX_new(), X509_STORE_CTX_free);
    X509_STORE_CTX_init(context.get(), store.get(), leaf.get(), nullptr);
    X509_STORE_CTX_set_purpose(context.get(), X509_PURPOSE_SSL_SERVER);
    X509_STORE_CTX_set_flags(context.get(), X509_V_FLAG_X509_STRICT);
    X509_verify_cert(context.get());
    return X509_STORE_CTX_get_error(context.get());
}

}  // namespace

TEST(Certificates, AreTrustedThroughTheirOwnAuthorityOnly)
{
    const ServerIdentity identity = makeServerIdentity({"127.0.0.1"});
    const ServerIdentity other = makeServerIdentity({"127.0.0.1"});
    EXPECT_EQ(verify(identity.caCertificate, identity.certificate), X509_V_OK);
    EXPECT_NE(verify(other.caCertificate, identity.certificate), X509_V_OK);
}

TEST(Certificates, AreValidForTheAddressesAndNamesAskedForAndNoOthers)
{
    const auto certificate = parse(makeServerIdentity({"127.0.0.1", "::1", "localhost", "array.lab"}).certificate);
    EXPECT_EQ(X509_check_ip_asc(certificate.get(), "127.0.0.1", 0), 1);
    EXPECT_EQ(X509_check_ip_asc(certificate.get(), "::1", 0), 1);
    EXPECT_EQ(X509_check_ip_asc(certificate.get(), "127.0.0.2", 0), 0);
    EXPECT_EQ(X509_check_host(certificate.get(), "array.lab", 0, 0, nullptr), 1);
    EXPECT_EQ(X509_check_host(certificate.get(), "other.lab", 0, 0, nullptr), 0);
}
