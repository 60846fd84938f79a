#include "HttpServer.h"

#include "HttpConnection.h"

#include <deque>
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

using Socket = asio::basic_stream_socket<tcp, asio::io_context::executor_type>;
using PlainConnection = HttpConnection<TcpStream>;
using TlsConnection = HttpConnection<beast::ssl_stream<TcpStream>>;

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
          m_contexts(makeContexts(threads)),
          m_acceptor(m_contexts.front()),
          m_pause(m_contexts.front())
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
        for (asio::io_context& context : m_contexts) {
            m_threads.emplace_back([&context] { run(context); });
        }
        return bound;
    }

    void stop()
    {
        for (asio::io_context& context : m_contexts) {
            context.stop();
        }
        for (std::thread& thread : m_threads) {
            thread.join();
        }
        m_threads.clear();
    }

private:
    static std::deque<asio::io_context> makeContexts(unsigned threads)
    {
        constexpr int kRunByOneThread = 1;
        std::deque<asio::io_context> contexts;
        for (unsigned index = 0; index < std::max(threads, 1U); ++index) {
            contexts.emplace_back(kRunByOneThread);
        }
        return contexts;
    }

    static void run(asio::io_context& context)
    {
        // What is run must not end for want of work: the connections come later.
        const auto work = asio::make_work_guard(context);
        while (!context.stopped()) {
            try {
                context.run();
            } catch (const std::exception& error) {
                // One request that fails badly (no memory) ends its own connection and nothing else.
                std::cerr << "a request failed: " << error.what() << std::endl;
            }
        }
    }

    void accept()
    {
        // Connections are dealt out to the threads in turn.
        asio::io_context& context = m_contexts[m_connectionNumber % m_contexts.size()];
        m_acceptor.async_accept(context, [this](beast::error_code error, Socket socket) {
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

    void serve(Socket&& socket)
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
    std::uint64_t m_connectionNumber = 0;
    std::optional<ssl::context> m_tls;
    std::deque<asio::io_context> m_contexts;  ///< one a thread
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
