#include "Secrets.h"

#include <openssl/crypto.h>
#include <openssl/rand.h>
#include <openssl/sha.h>

#include <array>
#include <stdexcept>
#include <vector>

namespace brevan::sim {

namespace {

constexpr std::size_t kSaltDigits = 32;

std::string hex(const unsigned char* bytes, std::size_t count)
{
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (std::size_t index = 0; index < count; ++index) {
        text += kDigits[bytes[index] >> 4];
        text += kDigits[bytes[index] & 15];
    }
    return text;
}

}  // namespace

std::string randomHex(std::size_t bytes)
{
    std::vector<unsigned char> random(bytes);
    if (RAND_bytes(random.data(), static_cast<int>(bytes)) != 1) {
        throw std::runtime_error("the system gives no random bytes");
    }
    return hex(random.data(), bytes);
}

std::string sha256(const std::string& text)
{
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data());
    return hex(digest.data(), digest.size());
}

bool equalInConstantTime(const std::string& left, const std::string& right)
{
    return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

std::string sealed(const std::string& secret)
{
    const std::string salt = randomHex(kSaltDigits / 2);
    return salt + sha256(salt + secret);
}

bool opens(const std::string& seal, const std::string& secret)
{
    return seal.size() > kSaltDigits &&
           equalInConstantTime(seal.substr(kSaltDigits), sha256(seal.substr(0, kSaltDigits) + secret));
}

}  // namespace brevan::sim
