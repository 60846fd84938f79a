#ifndef BREVAN_SIMULATOR_WIRE_H
#define BREVAN_SIMULATOR_WIRE_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brevan::sim {

/// A request as it arrived, whatever carried it.
struct WireRequest {
    std::string method;  ///< "GET", "POST", "PUT", "DELETE"
    std::string target;  ///< path and query, as sent
    std::string token;   ///< header iBaseToken
    std::string cookie;  ///< header Cookie
    std::string body;
    std::uint64_t connection = 0;  ///< number of the connection, from 1; 0: no network
    std::string host{};            ///< header Host
    std::string accept{};          ///< header Accept
};

/// How a reply leaves, where that is not as it should be.
struct Delivery {
    std::chrono::microseconds wait{0};  ///< so long after it was made
    bool reset = false;                 ///< not at all: the connection is reset
    std::optional<std::size_t>
        cutAfter;  ///< the connection ends after so many bytes of the body, at the latest before its end
};

struct WireReply {
    unsigned status = 200;
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;  ///< besides those of every reply
    std::string contentType = "application/json; charset=utf-8";
    Delivery delivery{};
};

}  // namespace brevan::sim

#endif
