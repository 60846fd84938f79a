#ifndef BREVAN_SIMULATOR_CERTIFICATES_H
#define BREVAN_SIMULATOR_CERTIFICATES_H

#include <string>
#include <vector>

namespace brevan::sim {

/// The array's identity for TLS, all as PEM.
struct ServerIdentity {
    std::string caCertificate;  ///< what clients trust
    std::string certificate;    ///< the array's own, signed by that authority
    std::string key;
};

/// Makes a certificate authority and, signed by it, a certificate for these addresses and names (IP literals and DNS names).
/// The authority's key is forgotten at once. A failure is a std::runtime_error.
ServerIdentity makeServerIdentity(const std::vector<std::string>& names);

}  // namespace brevan::sim

#endif
