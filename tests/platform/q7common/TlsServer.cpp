#include "TlsServer.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <stdexcept>

namespace brevan::test {

namespace {

/// The test process leaves SIGPIPE at its default, so that the library's own care is tested; the server's threads must not
/// die of it.
void blockSigPipe()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

bool readMore(SSL* tls, std::string& bytes)
{
    char part[16 * 1024];
    const int count = SSL_read(tls, part, sizeof part);
    if (count > 0) {
        bytes.append(part, static_cast<std::size_t>(count));
    }
    return count > 0;
}

std::size_t bodyLength(const std::string& head)
{
    const std::size_t place = head.find("Content-Length: ");
    return place == std::string::npos ? 0 : std::stoul(head.substr(place + 16));
}

bool readRequest(SSL* tls, std::string& bytes, Received& request)
{
    std::size_t headEnd = 0;
    while ((headEnd = bytes.find("\r\n\r\n")) == std::string::npos) {
        if (!readMore(tls, bytes)) {
            return false;
        }
    }
    request.head = bytes.substr(0, headEnd + 2);
    const std::size_t length = bodyLength(request.head);
    while (bytes.size() < headEnd + 4 + length) {
        if (!readMore(tls, bytes)) {
            return false;
        }
    }
    request.body = bytes.substr(headEnd + 4, length);
    bytes.erase(0, headEnd + 4 + length);
    const std::size_t blank = request.head.find(' ');
    request.method = request.head.substr(0, blank);
    request.target = request.head.substr(blank + 1, request.head.find(" HTTP/1.1") - blank - 1);
    return true;
}

int openListener(const TlsServer::Options& options)
{
    const bool isIpv6 = options.address.find(':') != std::string::npos;
    const int listener = socket(isIpv6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in6 v6{};
    v6.sin6_family = AF_INET6;
    v6.sin6_port = htons(options.port);
    inet_pton(AF_INET6, options.address.c_str(), &v6.sin6_addr);
    sockaddr_in v4{};
    v4.sin_family = AF_INET;
    v4.sin_port = htons(options.port);
    inet_pton(AF_INET, options.address.c_str(), &v4.sin_addr);
    const int bound = isIpv6 ? bind(listener, reinterpret_cast<const sockaddr*>(&v6), sizeof v6)
                             : bind(listener, reinterpret_cast<const sockaddr*>(&v4), sizeof v4);
    if (bound != 0 || listen(listener, 256) != 0) {
        throw std::runtime_error(std::string("test server: ") + std::strerror(errno));
    }
    return listener;
}

unsigned short portOf(int listener)
{
    sockaddr_in6 address{};
    socklen_t size = sizeof address;
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin6_port);  // at the same place in the IPv4 form
}

}  // namespace

bool Peer::write(const std::string& bytes)
{
    m_isOpen = m_isOpen && (bytes.empty() || SSL_write(m_tls, bytes.data(), static_cast<int>(bytes.size())) > 0);
    return m_isOpen;
}

bool Peer::answer(const std::string& body, int status, const std::string& headers)
{
    return write("HTTP/1.1 " + std::to_string(status) + " Text\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
                 headers + "\r\n" + body);
}

void Peer::close()
{
    m_isOpen = false;
}

void Peer::reset()
{
    const linger abort{1, 0};
    setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
    SSL_set_quiet_shutdown(m_tls, 1);
    m_isOpen = false;
}

void Peer::stall()
{
    pollfd watched{m_socket, POLLIN | POLLRDHUP, 0};
    while (!m_isStopping && poll(&watched, 1, 20) == 0) {
    }
    m_isOpen = false;
}

void TlsServer::answerAlways(Peer& peer, const Received&)
{
    peer.answer(kSuccess);
}

TlsServer::TlsServer(const Identity& identity, Handler handler) : TlsServer(identity, std::move(handler), Options()) {}

TlsServer::TlsServer(const Identity& identity, Handler handler, const Options& options)
    : m_options(options), m_handler(std::move(handler)), m_context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free)
{
    SSL_CTX_use_certificate(m_context.get(), identity.certificate.get());
    SSL_CTX_use_PrivateKey(m_context.get(), identity.key.get());
    if (options.largestTlsVersion != 0) {
        SSL_CTX_set_security_level(m_context.get(), 0);
        SSL_CTX_set_min_proto_version(m_context.get(), TLS1_VERSION);
        SSL_CTX_set_max_proto_version(m_context.get(), options.largestTlsVersion);
    }
    if (options.wantsCertificate) {
        SSL_CTX_set_verify(m_context.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
    }
    m_listener = openListener(options);
    m_port = portOf(m_listener);
    m_acceptor = std::thread(&TlsServer::acceptAll, this);
}

TlsServer::~TlsServer()
{
    m_isStopping = true;
    shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    ::close(m_listener);
    closeConnections();
    for (Link& link : m_links) {
        link.thread.join();
    }
}

void TlsServer::closeConnections()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const Link& link : m_links) {
        if (link.socket >= 0) {
            shutdown(link.socket, SHUT_RDWR);
        }
    }
}

std::string TlsServer::url() const
{
    return "https://" + m_options.address + ":" + std::to_string(m_port);
}

std::vector<Received> TlsServer::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

std::vector<std::string> TlsServer::serverNames() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_serverNames;
}

void TlsServer::acceptAll()
{
    blockSigPipe();
    while (!m_isStopping) {
        const int socket = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) {
            continue;
        }
        const int on = 1;
        setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        const std::lock_guard<std::mutex> lock(m_mutex);
        const int number = ++m_connectionCount;
        m_links.push_back({socket, std::thread(&TlsServer::serve, this, socket, number)});
    }
}

void TlsServer::serve(int socket, int number)
{
    const std::unique_ptr<SSL, decltype(&SSL_free)> tls(SSL_new(m_context.get()), &SSL_free);
    SSL_set_fd(tls.get(), socket);
    if (!m_options.answersHandshake) {
        Peer(tls.get(), socket, m_isStopping).stall();
    } else if (SSL_accept(tls.get()) == 1) {
        const char* name = SSL_get_servername(tls.get(), TLSEXT_NAMETYPE_host_name);
        m_fullHandshakes += SSL_session_reused(tls.get()) == 1 ? 0 : 1;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_serverNames.emplace_back(name == nullptr ? "" : name);
        }
        serveRequests(tls.get(), socket, number);
        SSL_shutdown(tls.get());
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_links[static_cast<std::size_t>(number) - 1].socket = -1;
    ::close(socket);
}

void TlsServer::serveRequests(SSL* tls, int socket, int number)
{
    Peer peer(tls, socket, m_isStopping);
    std::string bytes;
    Received request{number, {}, {}, {}, {}};
    if (m_options.resetsAtFirstByte) {
        char byte = 0;
        SSL_peek(tls, &byte, 1);
        peer.reset();
    }
    while (peer.isOpen() && readRequest(tls, bytes, request)) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_requests.push_back(request);
        }
        m_handler(peer, request);
    }
}

}  // namespace brevan::test
