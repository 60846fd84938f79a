#include "HttpServer.h"

#include "HttpConnection.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/strand.hpp>

#include <iostream>
#include <thread>

namespace brevan::sim {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace ssl = boost::asio::ssl;
using tcp = boost::asio::ip::tcp;

// So many beyond the limit are told so; further ones are closed without a word.
constexpr unsigned kToldOfTheLimit = 64;
constexpr std::chrono::milliseconds kAcceptPause{100};

using PlainConnection = HttpConnection<beast::tcp_stream>;
using TlsConnection = HttpConnection<beast::ssl_stream<beast::tcp_stream>>;

ssl::context tlsContext(const ServerIdentity& identity)
{
    ssl::context context(ssl::context::tls_server);
    context.set_options(ssl::context::default_workarounds | ssl::context::no_compression);
    SSL_CTX_set_min_proto_version(context.native_handle(), TLS1_2_VERSION);
    SSL_CTX_set_options(context.native_handle(), SSL_OP_NO_RENEGOTIATION);
    context.use_certificate_chain(asio::buffer(identity.certificate));
    context.use_private_key(asio::buffer(identity.key), ssl::context::pem);
    return context;
}

}  // namespace

class HttpServer::Implementation {
public:
    Implementation(HttpService& service, const HttpLimits& limits, unsigned threads,
                   const std::optional<ServerIdentity>& identity)
        : m_shared{service, limits},
          m_threadCount(threads == 0 ? 1 : threads),
          m_context(static_cast<int>(m_threadCount)),
          m_acceptor(asio::make_strand(m_context)),
          m_pause(m_acceptor.get_executor())
    {
        if (identity) {
            m_tls.emplace(tlsContext(*identity));
        }
    }

    ~Implementation() { stop(); }

    std::uint16_t start(const std::string& address, std::uint16_t port)
    {
        const tcp::endpoint endpoint(asio::ip::make_address(address), port);
        m_acceptor.open(endpoint.protocol());
        m_acceptor.set_option(asio::socket_base::reuse_address(true));
        m_acceptor.bind(endpoint);
        m_acceptor.listen(asio::socket_base::max_listen_connections);
        const std::uint16_t bound = m_acceptor.local_endpoint().port();
        accept();
        for (unsigned index = 0; index < m_threadCount; ++index) {
            m_threads.emplace_back([this] { run(); });
        }
        return bound;
    }

    void stop()
    {
        m_context.stop();
        for (std::thread& thread : m_threads) {
            thread.join();
        }
        m_threads.clear();
    }

private:
    void run()
    {
        while (!m_context.stopped()) {
            try {
                m_context.run();
            } catch (const std::exception& error) {
                // One request that fails badly (no memory) ends its own connection and nothing else.
                std::cerr << "a request failed: " << error.what() << std::endl;
            }
        }
    }

    void accept()
    {
        m_acceptor.async_accept(asio::make_strand(m_context), [this](beast::error_code error, tcp::socket socket) {
            if (error) {
                waitAndAccept();
                return;
            }
            if (m_shared.connections < m_shared.limits.connections + kToldOfTheLimit) {
                serve(std::move(socket));
            }
            accept();
        });
    }

    void serve(tcp::socket&& socket)
    {
        beast::error_code ignored;
        socket.set_option(tcp::no_delay(true), ignored);
        const bool refused = m_shared.connections >= m_shared.limits.connections;
        ++m_connectionNumber;
        if (m_tls) {
            std::make_shared<TlsConnection>(m_shared, m_connectionNumber, refused, std::move(socket), *m_tls)->start();
        } else {
            std::make_shared<PlainConnection>(m_shared, m_connectionNumber, refused, std::move(socket))->start();
        }
    }

    /// After a failure such as "no free file descriptor", trying again at once would only burn time.
    void waitAndAccept()
    {
        m_pause.expires_after(kAcceptPause);
        m_pause.async_wait([this](beast::error_code error) {
            if (!error) {
                accept();
            }
        });
    }

    HttpShared m_shared;
    unsigned m_threadCount;
    std::uint64_t m_connectionNumber = 0;
    std::optional<ssl::context> m_tls;
    asio::io_context m_context;
    tcp::acceptor m_acceptor;
    asio::steady_timer m_pause;
    std::vector<std::thread> m_threads;
};

HttpServer::HttpServer(HttpService& service, const HttpLimits& limits, unsigned threads,
                       const std::optional<ServerIdentity>& identity)
    : m_implementation(std::make_unique<Implementation>(service, limits, threads, identity))
{
}

HttpServer::~HttpServer() = default;

std::uint16_t HttpServer::start(const std::string& address, std::uint16_t port)
{
    return m_implementation->start(address, port);
}

void HttpServer::stop()
{
    m_implementation->stop();
}

}  // namespace brevan::sim
