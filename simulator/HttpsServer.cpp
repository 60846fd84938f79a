#include "HttpsServer.h"

#include "ErrorCodes.h"
#include "RequestPipeline.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>

#include <atomic>
#include <iostream>
#include <optional>
#include <thread>

namespace brevan::sim {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace ssl = boost::asio::ssl;
using tcp = boost::asio::ip::tcp;

constexpr std::uint32_t kLargestHeader = 16 * 1024;
constexpr std::uint64_t kLargestBody = 1024 * 1024;
constexpr unsigned kMostConnections = 4096;
constexpr std::chrono::seconds kHandshakeTime{15};
constexpr std::chrono::seconds kReadTime{120};  // a whole request, or the pause before it
constexpr std::chrono::seconds kWriteTime{60};
constexpr std::chrono::milliseconds kAcceptPause{100};

using Handler = HttpsServer::RequestHandler;

/// Counts a connection as long as it lives.
class ConnectionCount {
public:
    explicit ConnectionCount(std::atomic<unsigned>& count) : m_count(count) { ++m_count; }
    ~ConnectionCount() { --m_count; }
    ConnectionCount(const ConnectionCount&) = delete;
    ConnectionCount& operator=(const ConnectionCount&) = delete;

private:
    std::atomic<unsigned>& m_count;
};

WireRequest wireRequest(const http::request<http::string_body>& message)
{
    const auto text = [](const auto& view) { return std::string(view.data(), view.size()); };
    return {text(message.method_string()), text(message.target()), text(message["iBaseToken"]),
            text(message[http::field::cookie]), message.body()};
}

/// The reply to bytes that are no request; nothing where the connection simply ended.
std::optional<WireReply> replyToBrokenRequest(const beast::error_code& error)
{
    if (error == http::error::body_limit) {
        return errorReply(413, kBadHttp, "The request body is larger than " + std::to_string(kLargestBody) + " bytes.");
    }
    if (error == http::error::header_limit) {
        return errorReply(431, kBadHttp,
                          "The request headers are larger than " + std::to_string(kLargestHeader) + " bytes.");
    }
    const bool ended = error == http::error::end_of_stream || error == http::error::partial_message;
    if (error.category() != http::make_error_code(http::error::bad_method).category() || ended) {
        return std::nullopt;
    }
    return errorReply(400, kBadHttp, "This is no HTTP request: " + error.message() + ".");
}

class Connection : public std::enable_shared_from_this<Connection> {
public:
    Connection(tcp::socket&& socket, ssl::context& context, const Handler& handler, std::atomic<unsigned>& count)
        : m_count(count), m_stream(std::move(socket), context), m_handler(handler)
    {
    }

    void start()
    {
        asio::dispatch(m_stream.get_executor(), [self = shared_from_this()] { self->shakeHands(); });
    }

private:
    void shakeHands()
    {
        beast::get_lowest_layer(m_stream).expires_after(kHandshakeTime);
        m_stream.async_handshake(ssl::stream_base::server, [self = shared_from_this()](beast::error_code error) {
            if (!error) {
                self->read();
            }
        });
    }

    void read()
    {
        m_parser.emplace();
        m_parser->header_limit(kLargestHeader);
        m_parser->body_limit(kLargestBody);
        beast::get_lowest_layer(m_stream).expires_after(kReadTime);
        http::async_read(m_stream, m_buffer, *m_parser,
                         [self = shared_from_this()](beast::error_code error, std::size_t) { self->onRead(error); });
    }

    void onRead(beast::error_code error)
    {
        if (!error) {
            const auto& message = m_parser->get();
            write(m_handler(wireRequest(message)), message.keep_alive(), message.method() == http::verb::head);
        } else if (const std::optional<WireReply> reply = replyToBrokenRequest(error)) {
            write(*reply, false, false);
        } else {
            close();
        }
    }

    void write(const WireReply& reply, bool keepAlive, bool headersOnly)
    {
        m_reply = {};
        m_reply.version(11);
        m_reply.result(reply.status);
        m_reply.set(http::field::content_type, "application/json; charset=utf-8");
        m_reply.set(http::field::cache_control, "no-store");
        for (const auto& [name, value] : reply.headers) {
            m_reply.insert(name, value);
        }
        m_reply.keep_alive(keepAlive);
        m_reply.body() = headersOnly ? std::string() : reply.body;
        m_reply.prepare_payload();
        beast::get_lowest_layer(m_stream).expires_after(kWriteTime);
        http::async_write(m_stream, m_reply, [self = shared_from_this(), keepAlive](beast::error_code error, std::size_t) {
            if (!error && keepAlive) {
                self->read();
            } else if (!error) {
                self->close();
            }
        });
    }

    void close()
    {
        beast::get_lowest_layer(m_stream).expires_after(kHandshakeTime);
        m_stream.async_shutdown([self = shared_from_this()](beast::error_code) {});
    }

    ConnectionCount m_count;
    beast::ssl_stream<beast::tcp_stream> m_stream;
    const Handler& m_handler;
    beast::flat_buffer m_buffer;
    std::optional<http::request_parser<http::string_body>> m_parser;
    http::response<http::string_body> m_reply;
};

}  // namespace

class HttpsServer::Implementation {
public:
    Implementation(const ServerIdentity& identity, unsigned threads, RequestHandler handler)
        : m_handler(std::move(handler)),
          m_threadCount(threads == 0 ? 1 : threads),
          m_tls(ssl::context::tls_server),
          m_context(static_cast<int>(m_threadCount)),
          m_acceptor(asio::make_strand(m_context)),
          m_pause(m_acceptor.get_executor())
    {
        m_tls.set_options(ssl::context::default_workarounds | ssl::context::no_compression);
        SSL_CTX_set_min_proto_version(m_tls.native_handle(), TLS1_2_VERSION);
        SSL_CTX_set_options(m_tls.native_handle(), SSL_OP_NO_RENEGOTIATION);
        m_tls.use_certificate_chain(asio::buffer(identity.certificate));
        m_tls.use_private_key(asio::buffer(identity.key), ssl::context::pem);
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
            if (m_connections < kMostConnections) {
                beast::error_code ignored;
                socket.set_option(tcp::no_delay(true), ignored);
                std::make_shared<Connection>(std::move(socket), m_tls, m_handler, m_connections)->start();
            }
            accept();
        });
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

    RequestHandler m_handler;
    unsigned m_threadCount;
    std::atomic<unsigned> m_connections{0};
    ssl::context m_tls;
    asio::io_context m_context;
    tcp::acceptor m_acceptor;
    asio::steady_timer m_pause;
    std::vector<std::thread> m_threads;
};

HttpsServer::HttpsServer(const ServerIdentity& identity, unsigned threads, RequestHandler handler)
    : m_implementation(std::make_unique<Implementation>(identity, threads, std::move(handler)))
{
}

HttpsServer::~HttpsServer() = default;

std::uint16_t HttpsServer::start(const std::string& address, std::uint16_t port)
{
    return m_implementation->start(address, port);
}

void HttpsServer::stop()
{
    m_implementation->stop();
}

}  // namespace brevan::sim
