#ifndef BREVAN_SIMULATOR_WIRE_H
#define BREVAN_SIMULATOR_WIRE_H

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
};

struct WireReply {
    unsigned status = 200;
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;  ///< besides those of every reply
};

}  // namespace brevan::sim

#endif
