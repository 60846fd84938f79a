#ifndef BREVAN_SIMULATOR_SECRETS_H
#define BREVAN_SIMULATOR_SECRETS_H

#include <string>

namespace brevan::sim {

/// `bytes` random bytes of the system, as lower-case hex.
std::string randomHex(std::size_t bytes);

std::string sha256(const std::string& text);

/// How long it takes depends on the lengths only.
bool equalInConstantTime(const std::string& left, const std::string& right);

/// A secret as it may be kept: salt and hash, from which it cannot be read back.
std::string sealed(const std::string& secret);
bool opens(const std::string& seal, const std::string& secret);

}  // namespace brevan::sim

#endif
