#ifndef BREVAN_SIMULATOR_HTTPSERVER_H
#define BREVAN_SIMULATOR_HTTPSERVER_H

#include "Certificates.h"
#include "HttpService.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace brevan::sim {

/// HTTP/1.1 on a few threads, over TLS or plain: kept-alive connections, and limits for everything. It knows nothing of arrays.
class HttpServer {
public:
    /// Without an identity it speaks plain HTTP. The service must live longer than the server.
    HttpServer(HttpService& service, const HttpLimits& limits, unsigned threads,
               const std::optional<ServerIdentity>& identity);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

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
