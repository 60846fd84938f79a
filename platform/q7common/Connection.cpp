#include "Connection.h"

#include "HeaderLines.h"
#include "SigPipeGuard.h"

#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace brevan {

namespace {

constexpr std::size_t kLargestHead = 256 * 1024;
constexpr std::size_t kKeptReplyRoom = 256 * 1024;

/// Why the certificate of the handshake that runs in this thread was not accepted (an X509_V_ERR number), 0: it was.
thread_local int trustFaultOfHandshake = 0;

/// libcurl takes some rejected certificates, one with a wrong signature among them, for a broken handshake.
int noteTrustFault(int isGood, X509_STORE_CTX* store) noexcept
{
    if (isGood == 0) {
        trustFaultOfHandshake = X509_STORE_CTX_get_error(store);
    }
    return isGood;
}

CURLcode prepareTls(CURL*, void* data, void*) noexcept
{
    auto* context = static_cast<SSL_CTX*>(data);
    // libcurl hands TLS keys to the file that $SSLKEYLOGFILE names. They are secrets of the array's sessions.
    SSL_CTX_set_keylog_callback(context, nullptr);
    SSL_CTX_set_verify(context, SSL_CTX_get_verify_mode(context), &noteTrustFault);
    return CURLE_OK;
}

}  // namespace

void Connection::HandleCloser::operator()(CURL* handle) const noexcept
{
    const SigPipeGuard quiet;  // closing says goodbye to the array, which may be gone
    curl_easy_cleanup(handle);
}

template <typename Value>
void Connection::set(CURLoption option, Value value)
{
    const CURLcode result = curl_easy_setopt(m_handle.get(), option, value);
    if (result == CURLE_OUT_OF_MEMORY) {
        throw std::bad_alloc();
    }
    if (result != CURLE_OK) {
        throw std::runtime_error(std::string("libcurl does not take a setting: ") + curl_easy_strerror(result));
    }
}

Connection::Connection(const Server& server, const Settings& settings, std::shared_ptr<TlsSessions> tlsSessions)
    : m_tlsSessions(std::move(tlsSessions)), m_handle(curl_easy_init()), m_replyLimit(settings.replyBytes)
{
    if (m_handle == nullptr) {
        throw std::bad_alloc();
    }
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_ERRORBUFFER, static_cast<char*>(m_errorText));
    set(CURLOPT_PROTOCOLS_STR, "https");
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_PROXY, settings.proxy.c_str());  // an empty text also turns off proxies from the environment
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(settings.connectTime.count()));
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(settings.requestTime.count()));
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(settings.replyBytes));
    set(CURLOPT_MAXCONNECTS, 1L);
    set(CURLOPT_TCP_KEEPALIVE, 1L);
    set(CURLOPT_SHARE, m_tlsSessions->handle());
    setTls(server, settings.tlsFor(server.host));
    setCallbacks();
}

Connection::~Connection() = default;

void Connection::setTls(const Server& server, const TlsSettings& tls)
{
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_SSL_VERIFYPEER, tls.verify ? 1L : 0L);
    set(CURLOPT_SSL_VERIFYHOST, tls.verify ? 2L : 0L);
    set(CURLOPT_SSL_CTX_FUNCTION, &prepareTls);
    if (!tls.caFile.empty()) {
        set(CURLOPT_CAINFO, tls.caFile.c_str());
        set(CURLOPT_CAPATH, static_cast<char*>(nullptr));  // only these authorities, not the system's as well
    }
    if (!tls.pin.empty()) {
        set(CURLOPT_PINNEDPUBLICKEY, tls.pin.c_str());
    }
    if (!tls.serverName.empty()) {
        m_connectTo = "::" + urlHost(server.host) + ":" + server.port;
        m_connectToList.add(m_connectTo.c_str());
        set(CURLOPT_CONNECT_TO, m_connectToList.list());
    }
}

void Connection::setCallbacks()
{
    set(CURLOPT_HEADERFUNCTION, &Connection::onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &Connection::onReply);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_PREREQFUNCTION, &Connection::onSending);
    set(CURLOPT_PREREQDATA, this);
    set(CURLOPT_OPENSOCKETFUNCTION, &Connection::onOpenSocket);
    set(CURLOPT_OPENSOCKETDATA, this);
}

void Connection::setMessage(const Message& message)
{
    constexpr const char* kMethods[] = {"GET", "POST", "PUT", "DELETE"};
    set(CURLOPT_URL, message.url);
    set(CURLOPT_HTTPHEADER, message.headers);
    if (message.body == nullptr) {
        set(CURLOPT_HTTPGET, 1L);
    } else {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(message.body->size()));
        set(CURLOPT_POSTFIELDS, message.body->data());  // not copied
    }
    set(CURLOPT_CUSTOMREQUEST, kMethods[message.mode]);
    set(CURLOPT_FRESH_CONNECT, isStale() ? 1L : 0L);
}

/// The socket of the connection that is kept, CURL_SOCKET_BAD where there is none.
curl_socket_t Connection::openSocket() const
{
    curl_socket_t socket = CURL_SOCKET_BAD;
    return curl_easy_getinfo(m_handle.get(), CURLINFO_ACTIVESOCKET, &socket) == CURLE_OK ? socket : CURL_SOCKET_BAD;
}

/// Whether the connection that is kept has been closed by the array, or has something to say that nobody asked for.
bool Connection::isStale() const
{
    pollfd watched{openSocket(), POLLIN, 0};
    return watched.fd != CURL_SOCKET_BAD && poll(&watched, 1, 0) != 0;
}

Delivery Connection::perform(const Message& message)
{
    m_delivery = Delivery{};
    m_headerBytes = 0;
    m_isRepeatable = message.mode == REST_GET;
    m_headerLines = message.headerLines;
    m_errorText[0] = '\0';
    wipe(m_reply);
    const SigPipeGuard quiet;
    setMessage(message);
    trustFaultOfHandshake = 0;
    m_delivery.result = curl_easy_perform(m_handle.get());
    m_delivery.trustFault = m_delivery.result == CURLE_SSL_CONNECT_ERROR ? trustFaultOfHandshake : 0;
    curl_easy_setopt(m_handle.get(), CURLOPT_POSTFIELDS, nullptr);
    curl_easy_setopt(m_handle.get(), CURLOPT_HTTPHEADER, nullptr);
    curl_easy_getinfo(m_handle.get(), CURLINFO_RESPONSE_CODE, &m_delivery.httpStatus);
    curl_easy_getinfo(m_handle.get(), CURLINFO_OS_ERRNO, &m_delivery.systemError);
    m_headerLines = nullptr;
    return m_delivery;
}

void Connection::forgetReply() noexcept
{
    wipe(m_reply);
    if (m_reply.capacity() > kKeptReplyRoom) {
        m_reply = SecretBytes();
    }
}

void Connection::abandon(std::unique_ptr<Connection> connection) noexcept
{
    const curl_socket_t socket = connection->openSocket();
    if (socket != CURL_SOCKET_BAD) {
        close(socket);
    }
    static_cast<void>(connection.release());
}

const char* Connection::failureText() const
{
    return m_errorText[0] != '\0' ? m_errorText : curl_easy_strerror(m_delivery.result);
}

bool Connection::keepHeader(std::string_view line)
{
    m_headerBytes += line.size();
    if (m_headerBytes > kLargestHead) {
        m_delivery.isTooLarge = true;
        return false;
    }
    if (isStatusLine(line)) {  // a reply begins, perhaps after an interim one
        m_delivery.hasReplyHead = false;
        if (m_headerLines != nullptr) {
            m_headerLines->clear();
        }
    } else if (isEndOfHead(line)) {
        m_delivery.hasReplyHead = true;
    } else if (m_headerLines != nullptr) {
        addHeaderLine(line, *m_headerLines);
    }
    return true;
}

bool Connection::keepReply(std::string_view part)
{
    if (part.size() > m_replyLimit - m_reply.size()) {
        m_delivery.isTooLarge = true;
        return false;
    }
    append(m_reply, part);
    return true;
}

std::size_t Connection::onHeader(char* data, std::size_t size, std::size_t count, void* self) noexcept
{
    try {
        return static_cast<Connection*>(self)->keepHeader({data, size * count}) ? size * count : 0;
    } catch (const std::exception&) {
        return 0;
    }
}

std::size_t Connection::onReply(char* data, std::size_t size, std::size_t count, void* self) noexcept
{
    try {
        return static_cast<Connection*>(self)->keepReply({data, size * count}) ? size * count : 0;
    } catch (const std::exception&) {
        return 0;
    }
}

// Called before each sending, libcurl's own repetitions included: when a reused connection dies before the reply, libcurl
// connects anew and sends whatever it was, because it cannot know whether the server has acted already. We do not let it.
int Connection::onSending(void* self, char*, char*, int, int) noexcept
{
    auto& connection = *static_cast<Connection*>(self);
    if (!connection.maySendAgain()) {
        return CURL_PREREQFUNC_ABORT;
    }
    ++connection.m_delivery.timesSent;
    return CURL_PREREQFUNC_OK;
}

// A request that must not be sent again needs no new connection either. What is opened is closed when the application
// runs another program.
curl_socket_t Connection::onOpenSocket(void* self, curlsocktype, curl_sockaddr* address) noexcept
{
    if (!static_cast<Connection*>(self)->maySendAgain()) {
        return CURL_SOCKET_BAD;
    }
    return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

}  // namespace brevan
