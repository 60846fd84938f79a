#ifndef BREVAN_SIMULATOR_REQUESTBODY_H
#define BREVAN_SIMULATOR_REQUESTBODY_H

#include <nlohmann/json.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace brevan::sim {

/// The JSON object that a request carries: flat, at most 64 keys, each once. Everything else is an ApiError (kBadBody), and
/// so is a value of another type than asked for (kBadParameter). Keys that an operation does not ask for are ignored.
class RequestBody {
public:
    RequestBody() = default;
    explicit RequestBody(const std::string& text);

    bool has(const std::string& key) const;
    /// Empty where the key is absent. Longer than `longest` bytes, or with control characters: an ApiError.
    std::string text(const std::string& key, std::size_t longest = 255) const;
    /// An ApiError (kMissingParameter) where the key is absent or its text empty.
    std::string requireText(const std::string& key, std::size_t longest = 255) const;
    /// A JSON number or decimal text, from 0 to `largest`.
    std::optional<std::uint64_t> number(const std::string& key, std::uint64_t largest) const;
    std::uint64_t requireNumber(const std::string& key, std::uint64_t largest) const;
    /// A JSON boolean, or the text "true" or "false"; false where the key is absent.
    bool flag(const std::string& key) const;

private:
    std::map<std::string, nlohmann::json> m_values;
};

}  // namespace brevan::sim

#endif
