#ifndef BREVAN_Q7COMMON_TESTS_CERTIFICATES_H
#define BREVAN_Q7COMMON_TESTS_CERTIFICATES_H

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <string>

namespace brevan::test {

using KeyPointer = std::shared_ptr<EVP_PKEY>;
using CertificatePointer = std::shared_ptr<X509>;

/// A certificate with its key, made in memory.
struct Identity {
    KeyPointer key;
    CertificatePointer certificate;

    std::string pem() const;
    /// SHA-256 of the public key in base64, as a pin names it.
    std::string pin() const;
};

struct Subject {
    std::string alternativeNames = "IP:127.0.0.1,IP:::1";  ///< as OpenSSL writes subjectAltName
    long validFromSeconds = -3600;                         ///< from now
    long validForSeconds = 3600;
};

/// A certificate authority of its own, or one that signs itself for a single server.
Identity makeAuthority();
Identity makeIdentity(const Identity& authority, const Subject& subject = {});
Identity makeSelfSigned(const Subject& subject = {});

}  // namespace brevan::test

#endif
