#ifndef BREVAN_Q7COMMON_TESTS_TLSSERVER_H
#define BREVAN_Q7COMMON_TESTS_TLSSERVER_H

#include "Certificates.h"

#include <openssl/ssl.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace brevan::test {

/// One request as it arrived.
struct Received {
    int connection;  ///< counted from 1
    std::string method;
    std::string target;
    std::string head;  ///< all header lines
    std::string body;
};

/// The server's side of a connection, in the hands of a handler.
class Peer {
public:
    Peer(SSL* tls, int socket, const std::atomic<bool>& isStopping) : m_tls(tls), m_socket(socket), m_isStopping(isStopping)
    {
    }

    /// Writes bytes as they are; false when the client has gone.
    bool write(const std::string& bytes);
    /// A reply with a Content-Length.
    bool answer(const std::string& body, int status = 200, const std::string& headers = "");
    /// Ends the connection: properly, or with a reset.
    void close();
    void reset();
    /// Waits until the client has gone or the server stops.
    void stall();
    bool isOpen() const { return m_isOpen; }
    bool isStopping() const { return m_isStopping; }

private:
    SSL* m_tls;
    int m_socket;
    const std::atomic<bool>& m_isStopping;
    bool m_isOpen = true;
};

/// Answers every request with success and one record.
inline const std::string kSuccess = R"({"data":{"ID":"7"},"error":{"code":0,"description":"0"}})";

/// A TLS server on loopback that hands each request to a handler and counts what it sees.
class TlsServer {
public:
    using Handler = std::function<void(Peer&, const Received&)>;
    struct Options {
        std::string address = "127.0.0.1";
        unsigned short port = 0;         ///< 0: any
        int largestTlsVersion = 0;       ///< 0: the newest
        bool wantsCertificate = false;   ///< of the client
        bool answersHandshake = true;    ///< false: accepts and says nothing
        bool resetsAtFirstByte = false;  ///< resets each connection while the client may still be writing
    };

    explicit TlsServer(const Identity& identity, Handler handler = answerAlways);
    TlsServer(const Identity& identity, Handler handler, const Options& options);
    ~TlsServer();
    TlsServer(const TlsServer&) = delete;
    TlsServer& operator=(const TlsServer&) = delete;

    unsigned short port() const { return m_port; }
    std::string url() const;
    /// Ends all connections that are open now, properly.
    void closeConnections();

    std::vector<Received> requests() const;
    std::size_t requestCount() const { return requests().size(); }
    int connectionCount() const { return m_connectionCount; }
    int fullHandshakes() const { return m_fullHandshakes; }
    /// Server names that clients asked for, in the order of the handshakes.
    std::vector<std::string> serverNames() const;

    static void answerAlways(Peer& peer, const Received& request);

private:
    struct Link {
        int socket;
        std::thread thread;
    };

    void acceptAll();
    void serve(int socket, int number);
    void serveRequests(SSL* tls, int socket, int number);

    Options m_options;
    Handler m_handler;
    std::shared_ptr<SSL_CTX> m_context;
    int m_listener = -1;
    unsigned short m_port = 0;
    std::atomic<bool> m_isStopping{false};
    std::atomic<int> m_connectionCount{0};
    std::atomic<int> m_fullHandshakes{0};
    mutable std::mutex m_mutex;
    std::vector<Received> m_requests;
    std::vector<std::string> m_serverNames;
    std::vector<Link> m_links;
    std::thread m_acceptor;
};

}  // namespace brevan::test

#endif
