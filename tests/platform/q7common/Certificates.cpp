#include "Certificates.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <array>
#include <atomic>
#include <stdexcept>

namespace brevan::test {

namespace {

void require(bool isGood)
{
    if (!isGood) {
        throw std::runtime_error("OpenSSL could not make a certificate");
    }
}

void addExtension(X509* certificate, X509* issuer, int type, const std::string& value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
        X509V3_EXT_conf_nid(nullptr, &context, type, value.c_str()), &X509_EXTENSION_free);
    require(extension != nullptr && X509_add_ext(certificate, extension.get(), -1) == 1);
}

CertificatePointer makeCertificate(const KeyPointer& key, const std::string& name, const Subject& subject)
{
    static std::atomic<long> nextSerial{1};
    CertificatePointer certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), nextSerial++);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), subject.validFromSeconds);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), subject.validForSeconds);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    return certificate;
}

void sign(const Identity& subject, const Identity& issuer)
{
    X509_set_issuer_name(subject.certificate.get(), X509_get_subject_name(issuer.certificate.get()));
    require(X509_sign(subject.certificate.get(), issuer.key.get(), EVP_sha256()) > 0);
}

KeyPointer makeKey()
{
    return KeyPointer(EVP_EC_gen("P-256"), EVP_PKEY_free);
}

}  // namespace

std::string Identity::pem() const
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), &BIO_free);
    require(PEM_write_bio_X509(memory.get(), certificate.get()) == 1);
    char* data = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &data);
    return std::string(data, static_cast<std::size_t>(size));
}

std::string Identity::pin() const
{
    unsigned char* der = nullptr;
    const int size = i2d_PUBKEY(key.get(), &der);
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int digestSize = 0;
    EVP_Digest(der, static_cast<std::size_t>(size), digest.data(), &digestSize, EVP_sha256(), nullptr);
    OPENSSL_free(der);
    std::array<unsigned char, 64> text{};
    const int length = EVP_EncodeBlock(text.data(), digest.data(), static_cast<int>(digestSize));
    return std::string(text.begin(), text.begin() + length);
}

Identity makeAuthority()
{
    const KeyPointer key = makeKey();
    const Identity authority{key, makeCertificate(key, "Test authority", {})};
    addExtension(authority.certificate.get(), authority.certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    sign(authority, authority);
    return authority;
}

Identity makeIdentity(const Identity& authority, const Subject& subject)
{
    const KeyPointer key = makeKey();
    const Identity identity{key, makeCertificate(key, "Test array", subject)};
    addExtension(identity.certificate.get(), authority.certificate.get(), NID_subject_alt_name, subject.alternativeNames);
    sign(identity, authority);
    return identity;
}

Identity makeSelfSigned(const Subject& subject)
{
    const KeyPointer key = makeKey();
    const Identity identity{key, makeCertificate(key, "Test array", subject)};
    addExtension(identity.certificate.get(), identity.certificate.get(), NID_subject_alt_name, subject.alternativeNames);
    sign(identity, identity);
    return identity;
}

}  // namespace brevan::test
