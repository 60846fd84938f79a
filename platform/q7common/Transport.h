#ifndef BREVAN_Q7COMMON_TRANSPORT_H
#define BREVAN_Q7COMMON_TRANSPORT_H

#include "Body.h"
#include "RestRequest.h"
#include "Url.h"

#include <optional>
#include <string>
#include <vector>

namespace brevan {

/// One request with everything that belongs to it.
struct Order {
    REST_REQUEST_MODE_E mode = REST_GET;
    std::string path;              ///< raw, absolute, with its query
    std::optional<Server> server;  ///< empty where the address is not usable
    std::string address;           ///< the server as it was given, for log lines
    const char* token = nullptr;   ///< whole header lines, null: none
    const char* cookie = nullptr;
    const Body* body = nullptr;
    bool isTextValid = true;  ///< false where a header or the body cannot be sent as it is
};

/// Sends it, reads the reply, and writes one line to the run log where it failed. Throws std::bad_alloc and other standard
/// exceptions only before anything was sent.
REST_SEND_RESULT_E transact(const Order& order, RestResponse& response, std::vector<std::string>* headerLines);

/// Writes the line of a request that failed.
void logFailure(const Order& order, REST_SEND_RESULT_E result, const std::string& reason) noexcept;

}  // namespace brevan

#endif
