#ifndef BREVAN_SIMULATOR_HTTPSERVICE_H
#define BREVAN_SIMULATOR_HTTPSERVICE_H

#include "HttpLimits.h"
#include "Wire.h"

#include <string>
#include <string_view>

namespace brevan::sim {

/// What the server itself does not answer but refuse, because it is no HTTP or too much of it.
struct Refusal {
    unsigned status = 400;
    std::string text;
    std::uint64_t connection = 0;
};

/// What stands behind an HTTP server. Several threads call it at once; it must not throw but for want of memory.
class HttpService {
public:
    virtual ~HttpService() = default;
    virtual WireReply answer(const WireRequest& request) = 0;
    /// The reply that goes with a refusal.
    virtual WireReply refuse(const Refusal& refusal) = 0;
};

/// Takes bytes as a client's connection would bring them, without a network: reads one request from them, has it answered and
/// returns the bytes of the reply. Empty where the bytes end before the request does.
std::string exchange(HttpService& service, const HttpLimits& limits, std::string_view bytes);

}  // namespace brevan::sim

#endif
