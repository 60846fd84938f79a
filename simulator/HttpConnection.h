#ifndef BREVAN_SIMULATOR_HTTPCONNECTION_H
#define BREVAN_SIMULATOR_HTTPCONNECTION_H

#include "HttpMessages.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/ssl.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <type_traits>

namespace brevan::sim {

/// What the connections of one server share.
struct HttpShared {
    HttpService& service;
    HttpLimits limits;
    std::atomic<unsigned> connections{0};
    std::atomic<std::size_t> waitingBytes{0};
};

/// Counts into a total as long as it lives.
template <typename Number>
class Share {
public:
    explicit Share(std::atomic<Number>& total, Number amount = 0) : m_total(total), m_amount(amount) { m_total += amount; }
    ~Share() { m_total -= m_amount; }
    Share(const Share&) = delete;
    Share& operator=(const Share&) = delete;

    void set(Number amount)
    {
        m_total += amount - m_amount;
        m_amount = amount;
    }

private:
    std::atomic<Number>& m_total;
    Number m_amount;
};

/// TCP on a context that one thread runs: its type is known down to the executor, which costs less than one that may be any.
using TcpStream = boost::beast::basic_stream<boost::asio::ip::tcp, boost::asio::io_context::executor_type>;

// One step of a connection names the next, and the last the first: not a recursion, because each is begun by the context.
// NOLINTBEGIN(misc-no-recursion)

/// One client, request after request, always on the one thread of its context. Nothing here ever waits: a client that is slow,
/// silent or stalled by a fault costs some memory, and holds up nobody.
template <typename Stream>
class HttpConnection : public std::enable_shared_from_this<HttpConnection<Stream>> {
public:
    /// `refused`: told why it is not served, and closed. `arguments`: of the stream.
    template <typename... Arguments>
    HttpConnection(HttpShared& shared, std::uint64_t number, bool refused, Arguments&&... arguments)
        : m_shared(shared),
          m_count(shared.connections, 1),
          m_bytes(shared.waitingBytes),
          m_number(number),
          m_refused(refused),
          m_stream(std::forward<Arguments>(arguments)...),
          m_timer(m_stream.get_executor())
    {
    }

    void start()
    {
        boost::asio::dispatch(m_stream.get_executor(), [self = this->shared_from_this()] { self->shakeHands(); });
    }

private:
    using Error = boost::beast::error_code;
    static constexpr bool kTls = !std::is_same_v<Stream, TcpStream>;
    static constexpr std::chrono::seconds kHandshakeTime{15};
    static constexpr std::chrono::seconds kClosingTime{5};
    static constexpr std::size_t kKeptBytes = 16 * 1024;  // a larger buffer is not kept for the next answer
    static constexpr std::size_t kMostDrained = 64 * 1024 * 1024;

    auto& lowest() { return boost::beast::get_lowest_layer(m_stream); }

    void shakeHands()
    {
        if constexpr (kTls) {
            lowest().expires_after(kHandshakeTime);
            m_stream.async_handshake(boost::asio::ssl::stream_base::server, [self = this->shared_from_this()](Error error) {
                if (!error) {
                    self->readHeader();
                }
            });
        } else {
            readHeader();
        }
    }

    void readHeader()
    {
        m_parser.emplace();
        limit(*m_parser, m_shared.limits);
        lowest().expires_after(m_shared.limits.idle);
        boost::beast::http::async_read_header(
            m_stream, m_buffer, *m_parser,
            [self = this->shared_from_this()](Error error, std::size_t) { self->onHeader(error); });
    }

    void onHeader(Error error)
    {
        if (error) {
            giveUp(error);
        } else if (m_refused) {
            refuse({503, "The server has " + std::to_string(m_shared.limits.connections) + " connections, and no more are " +
                             "allowed: try again later."});
        } else if (m_shared.waitingBytes > m_shared.limits.waitingBytes) {
            refuse({503, "Clients have not taken " + std::to_string(m_shared.limits.waitingBytes) +
                             " bytes of their answers yet: try again later."});
        } else if (m_parser->is_done()) {
            answer();
        } else {
            m_bytes.set(static_cast<std::size_t>(m_parser->content_length().value_or(m_shared.limits.bodyBytes)));
            inviteBody();
        }
    }

    /// Some clients wait with a long body until they are told to go on.
    void inviteBody()
    {
        const auto expect = m_parser->get()[boost::beast::http::field::expect];
        if (!boost::beast::iequals(expect, "100-continue")) {
            readBody();
            return;
        }
        m_out = "HTTP/1.1 100 Continue\r\n\r\n";
        boost::asio::async_write(m_stream, boost::asio::buffer(m_out),
                                 [self = this->shared_from_this()](Error error, std::size_t) {
                                     if (!error) {
                                         self->readBody();
                                     }
                                 });
    }

    void readBody()
    {
        boost::beast::http::async_read(m_stream, m_buffer, *m_parser,
                                       [self = this->shared_from_this()](Error error, std::size_t) {
                                           if (error) {
                                               self->giveUp(error);
                                           } else {
                                               self->answer();
                                           }
                                       });
    }

    void answer()
    {
        const auto& message = m_parser->get();
        m_keepAlive = message.keep_alive();
        m_headersOnly = message.method() == boost::beast::http::verb::head;
        deliver(m_shared.service.answer(wireRequest(*m_parser, m_number)));
    }

    void giveUp(Error error)
    {
        if (const std::optional<Refusal> refusal = refusalOf(error, m_shared.limits)) {
            refuse(*refusal);
        } else {
            close();
        }
    }

    void refuse(Refusal refusal)
    {
        refusal.connection = m_number;
        m_refused = true;
        m_keepAlive = false;
        deliver(m_shared.service.refuse(refusal));
    }

    void deliver(WireReply reply)
    {
        m_bytes.set(reply.body.size());
        if (reply.delivery.wait.count() == 0) {
            write(reply);
            return;
        }
        lowest().expires_never();
        m_timer.expires_after(reply.delivery.wait);
        m_timer.async_wait([self = this->shared_from_this(), reply = std::move(reply)](Error error) {
            if (!error) {
                self->write(reply);
            }
        });
    }

    void write(const WireReply& reply)
    {
        if (reply.delivery.reset) {
            reset();
            return;
        }
        ReplyBytes bytes = replyBytes(reply, m_keepAlive, m_headersOnly);
        m_out = std::move(bytes.text);
        const bool cut = reply.delivery.cutAfter && m_out.size() > bytes.bodyBegin;
        if (cut) {
            m_out.resize(std::min(bytes.bodyBegin + *reply.delivery.cutAfter, m_out.size() - 1));
        }
        lowest().expires_after(m_shared.limits.write);
        boost::asio::async_write(m_stream, boost::asio::buffer(m_out),
                                 [self = this->shared_from_this(), cut](Error error, std::size_t) {
                                     if (!error) {
                                         self->onWritten(cut);
                                     }
                                 });
    }

    void onWritten(bool cut)
    {
        m_bytes.set(0);
        if (m_out.capacity() > kKeptBytes) {
            m_out = {};
        }
        if (cut) {
            lowest().close();
        } else if (m_refused) {
            Error ignored;
            lowest().socket().shutdown(boost::asio::socket_base::shutdown_send, ignored);
            drain(0);
        } else if (m_keepAlive) {
            readHeader();
        } else {
            close();
        }
    }

    /// Whoever closes while bytes are still coming in resets the connection, and the client may lose the refusal over it.
    void drain(std::size_t drained)
    {
        if (drained == 0) {
            lowest().expires_after(kClosingTime);
        }
        m_stream.async_read_some(boost::asio::buffer(m_waste),
                                 [self = this->shared_from_this(), drained](Error error, std::size_t count) {
                                     if (!error && drained < kMostDrained) {
                                         self->drain(drained + count);
                                     } else {
                                         self->lowest().close();
                                     }
                                 });
    }

    void close()
    {
        if constexpr (kTls) {
            lowest().expires_after(kClosingTime);
            m_stream.async_shutdown([self = this->shared_from_this()](Error) {});
        } else {
            lowest().close();
        }
    }

    void reset()
    {
        Error ignored;
        lowest().socket().set_option(boost::asio::socket_base::linger(true, 0), ignored);
        lowest().close();
    }

    HttpShared& m_shared;
    Share<unsigned> m_count;
    Share<std::size_t> m_bytes;
    std::uint64_t m_number;
    bool m_refused;
    bool m_keepAlive = true;
    bool m_headersOnly = false;
    Stream m_stream;
    boost::asio::basic_waitable_timer<std::chrono::steady_clock, boost::asio::wait_traits<std::chrono::steady_clock>,
                                      boost::asio::io_context::executor_type>
        m_timer;
    boost::beast::flat_buffer m_buffer;
    std::optional<RequestParser> m_parser;
    std::string m_out;
    std::array<char, 4096> m_waste;
};

// NOLINTEND(misc-no-recursion)

}  // namespace brevan::sim

#endif
