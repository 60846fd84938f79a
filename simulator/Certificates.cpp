#include "Certificates.h"

#include "Text.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <array>
#include <memory>
#include <stdexcept>

namespace brevan::sim {

namespace {

constexpr long kDay = 24L * 3600;
constexpr long kLifetime = 3650 * kDay;

struct Freer {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(X509* certificate) const { X509_free(certificate); }
    void operator()(X509_EXTENSION* extension) const { X509_EXTENSION_free(extension); }
    void operator()(BIO* bio) const { BIO_free(bio); }
};
using Key = std::unique_ptr<EVP_PKEY, Freer>;
using Certificate = std::unique_ptr<X509, Freer>;

void require(bool done, const char* what)
{
    if (!done) {
        throw std::runtime_error(std::string("certificate: ") + what + ": " + ERR_error_string(ERR_get_error(), nullptr));
    }
}

Key newKey()
{
    Key key(EVP_EC_gen("P-256"));
    require(key != nullptr, "key");
    return key;
}

void setSerial(X509* certificate)
{
    std::array<unsigned char, 16> bytes{};
    require(RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) == 1, "random serial number");
    bytes[0] = static_cast<unsigned char>((bytes[0] & 0x3f) | 0x40);  // positive, and never shorter than its bytes
    const std::unique_ptr<BIGNUM, decltype(&BN_free)> number(
        BN_bin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr), BN_free);
    require(number && BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)) != nullptr, "serial number");
}

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    const std::unique_ptr<X509_EXTENSION, Freer> extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()));
    require(extension && X509_add_ext(certificate, extension.get(), -1) == 1, "extension");
}

Certificate blankCertificate(const std::string& commonName, EVP_PKEY* key)
{
    Certificate certificate(X509_new());
    require(certificate != nullptr, "memory");
    X509* raw = certificate.get();
    setSerial(raw);
    X509_NAME* subject = X509_get_subject_name(raw);
    const auto* text = reinterpret_cast<const unsigned char*>(commonName.c_str());
    require(X509_set_version(raw, X509_VERSION_3) == 1 && X509_set_pubkey(raw, key) == 1 &&
                X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8, text, -1, -1, 0) == 1 &&
                X509_gmtime_adj(X509_getm_notBefore(raw), -kDay) != nullptr &&
                X509_gmtime_adj(X509_getm_notAfter(raw), kLifetime) != nullptr,
            "fields");
    return certificate;
}

void sign(X509* certificate, X509* issuer, EVP_PKEY* issuerKey)
{
    require(X509_set_issuer_name(certificate, X509_get_subject_name(issuer)) == 1 &&
                X509_sign(certificate, issuerKey, EVP_sha256()) > 0,
            "signature");
}

std::string alternativeNames(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ",") + std::string(isAddress(name) ? "IP:" : "DNS:") + name;
    }
    return text;
}

std::string textOf(BIO* bio)
{
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    return std::string(data, static_cast<std::size_t>(size));
}

std::string pem(X509* certificate)
{
    const std::unique_ptr<BIO, Freer> bio(BIO_new(BIO_s_mem()));
    require(bio && PEM_write_bio_X509(bio.get(), certificate) == 1, "PEM");
    return textOf(bio.get());
}

std::string pem(EVP_PKEY* key)
{
    const std::unique_ptr<BIO, Freer> bio(BIO_new(BIO_s_mem()));
    require(bio && PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1, "PEM");
    return textOf(bio.get());
}

}  // namespace

ServerIdentity makeServerIdentity(const std::vector<std::string>& names)
{
    const Key caKey = newKey();
    const Certificate ca = blankCertificate("brevan simulated array authority", caKey.get());
    require(X509_set_issuer_name(ca.get(), X509_get_subject_name(ca.get())) == 1, "issuer");
    addExtension(ca.get(), ca.get(), NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
    addExtension(ca.get(), ca.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
    addExtension(ca.get(), ca.get(), NID_subject_key_identifier, "hash");
    sign(ca.get(), ca.get(), caKey.get());

    const Key key = newKey();
    const Certificate server = blankCertificate("brevan simulated array", key.get());
    addExtension(server.get(), ca.get(), NID_basic_constraints, "critical,CA:FALSE");
    addExtension(server.get(), ca.get(), NID_key_usage, "critical,digitalSignature");
    addExtension(server.get(), ca.get(), NID_ext_key_usage, "serverAuth");
    addExtension(server.get(), ca.get(), NID_subject_key_identifier, "hash");
    addExtension(server.get(), ca.get(), NID_authority_key_identifier, "keyid");
    addExtension(server.get(), ca.get(), NID_subject_alt_name, alternativeNames(names));
    sign(server.get(), ca.get(), caKey.get());
    return {pem(ca.get()), pem(server.get()), pem(key.get())};
}

}  // namespace brevan::sim
