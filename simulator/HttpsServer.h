#ifndef BREVAN_SIMULATOR_HTTPSSERVER_H
#define BREVAN_SIMULATOR_HTTPSSERVER_H

#include "Certificates.h"
#include "Wire.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace brevan::sim {

/// HTTP/1.1 over TLS on a few threads: kept-alive connections, time limits, bounded headers and bodies. It knows nothing of
/// arrays; every request goes to one function, which several threads call at once.
class HttpsServer {
public:
    using RequestHandler = std::function<WireReply(const WireRequest&)>;

    HttpsServer(const ServerIdentity& identity, unsigned threads, RequestHandler handler);
    ~HttpsServer();
    HttpsServer(const HttpsServer&) = delete;
    HttpsServer& operator=(const HttpsServer&) = delete;

    /// Listens and returns the port. `port` 0: one that the system chooses. A failure is a std::exception.
    std::uint16_t start(const std::string& address, std::uint16_t port);
    /// Ends all connections. Requests that are being answered are carried out to their end. May be repeated.
    void stop();

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

}  // namespace brevan::sim

#endif
