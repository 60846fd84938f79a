#include "Connection.h"

#include "ForkGate.h"
#include "PlimTool.h"
#include "SigPipeGuard.h"
#include "StandardDescriptors.h"

#include <openssl/ssl.h>
#include <poll.h>
#include <unistd.h>

#include <optional>
#include <stdexcept>

namespace brevan {

namespace {

constexpr int kLongestWaitMs = 1000;  // libcurl's own time limits end a wait sooner

/// From 7.88 on libcurl writes to its sockets with MSG_NOSIGNAL, TLS included: three system calls a request are saved.
bool raisesSigPipe() noexcept
{
    static const bool kRaises = curl_version_info(CURLVERSION_NOW)->version_num < 0x075800;
    return kRaises;
}

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

/// Null where libcurl comes to the right method by itself.
const char* methodToName(const Message& message) noexcept
{
    constexpr const char* kMethods[] = {"GET", "POST", "PUT", "DELETE"};
    const REST_REQUEST_MODE_E usual = message.body == nullptr ? REST_GET : REST_POST;
    return message.mode == usual ? nullptr : kMethods[message.mode];
}

/// It opens the descriptors by which it could be woken.
CURLM* newMulti() noexcept
{
    const StandardDescriptors held;
    return curl_multi_init();
}

CURLcode prepareTls(CURL*, void* data, void*) noexcept
{
    auto* context = static_cast<SSL_CTX*>(data);
    // libcurl hands TLS keys to the file that $SSLKEYLOGFILE names. They are secrets of the array's sessions.
    SSL_CTX_set_keylog_callback(context, nullptr);
    if (SSL_CTX_get_verify_mode(context) != SSL_VERIFY_NONE) {  // else OpenSSL would tell of faults that nobody minds
        SSL_CTX_set_verify(context, SSL_CTX_get_verify_mode(context), &noteTrustFault);
    }
    return CURLE_OK;
}

}  // namespace

void Connection::HandleCloser::operator()(CURL* handle) const noexcept
{
    const ForkGate::Pass pass;
    curl_easy_cleanup(handle);
}

void Connection::MultiCloser::operator()(CURLM* multi) const noexcept
{
    const ForkGate::Pass pass;
    const SigPipeGuard quiet(raisesSigPipe());  // closing says goodbye to the array, which may be gone
    curl_multi_cleanup(multi);
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
    : m_tlsSessions(std::move(tlsSessions)),
      m_url(server, settings.tlsFor(server.host).serverName),
      m_multi(newMulti()),
      m_handle(curl_easy_init()),
      m_replyLimit(settings.replyBytes)
{
    if (m_multi == nullptr || m_handle == nullptr ||
        curl_multi_setopt(m_multi.get(), CURLMOPT_MAXCONNECTS, 1L) != CURLM_OK) {
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
    set(CURLOPT_TCP_KEEPALIVE, 1L);
    set(CURLOPT_QUICK_EXIT, 1L);  // a time limit does not wait for the look-up of a proxy's name
    if (settings.proxy.empty() && PlimTool::CheckIPValid(server.host) == 1) {
        set(CURLOPT_DNS_CACHE_TIMEOUT, -1L);  // an address never changes: no search for outdated ones after each request
    }
    set(CURLOPT_SHARE, m_tlsSessions->handle());
    setTls(server, settings.tlsFor(server.host));
    set(CURLOPT_CURLU, m_url.handle());
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
    set(CURLOPT_CLOSESOCKETFUNCTION, &Connection::onCloseSocket);
    set(CURLOPT_CLOSESOCKETDATA, this);
}

void Connection::setMessage(const Message& message)
{
    m_url.setPath(*message.path);
    set(CURLOPT_HTTPHEADER, message.headers);
    if (message.body == nullptr) {
        set(CURLOPT_HTTPGET, 1L);
    } else {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(message.body->size()));
        set(CURLOPT_POSTFIELDS, message.body->data());  // not copied
    }
    set(CURLOPT_CUSTOMREQUEST, methodToName(message));
    // libcurl looks before it uses a connection again, and a GET gets a second chance. What must not be sent twice, we look
    // once more for, as late as we can.
    set(CURLOPT_FRESH_CONNECT, message.mode != REST_GET && isStale() ? 1L : 0L);
}

/// Whether the connection that is kept has been closed by the array, or has something to say that nobody asked for.
bool Connection::isStale() const
{
    pollfd watched{m_socket, POLLIN, 0};
    return watched.fd != CURL_SOCKET_BAD && poll(&watched, 1, 0) != 0;
}

Delivery Connection::perform(const Message& message)
{
    m_delivery = Delivery{};
    m_headerBytes = 0;
    m_isRepeatable = message.mode == REST_GET;
    m_headerLines = message.headerLines;
    m_errorText[0] = '\0';
    m_reply = SecretBytes();
    const SigPipeGuard quiet(raisesSigPipe());
    setMessage(message);
    trustFaultOfHandshake = 0;
    m_delivery.result = transfer();
    m_delivery.trustFault = m_delivery.result == CURLE_SSL_CONNECT_ERROR ? trustFaultOfHandshake : 0;
    curl_easy_setopt(m_handle.get(), CURLOPT_POSTFIELDS, nullptr);
    curl_easy_setopt(m_handle.get(), CURLOPT_HTTPHEADER, nullptr);
    curl_easy_getinfo(m_handle.get(), CURLINFO_RESPONSE_CODE, &m_delivery.httpStatus);
    curl_easy_getinfo(m_handle.get(), CURLINFO_OS_ERRNO, &m_delivery.systemError);
    m_headerLines = nullptr;
    return m_delivery;
}

/// What curl_easy_perform does, except that a fork may take place while it waits for the array.
CURLcode Connection::transfer()
{
    std::optional<ForkGate::Pass> pass(std::in_place);
    int running = 0;
    CURLMcode fault = curl_multi_add_handle(m_multi.get(), m_handle.get());
    while (fault == CURLM_OK) {
        fault = curl_multi_perform(m_multi.get(), &running);
        if (fault != CURLM_OK || running == 0) {
            break;
        }
        pass.reset();
        fault = curl_multi_poll(m_multi.get(), nullptr, 0, kLongestWaitMs, nullptr);
        pass.emplace();
    }
    const CURLcode result = fault == CURLM_OK ? resultOfTransfer() : CURLE_OUT_OF_MEMORY;
    curl_multi_remove_handle(m_multi.get(), m_handle.get());
    return result;
}

CURLcode Connection::resultOfTransfer()
{
    int waiting = 0;
    const CURLMsg* message = curl_multi_info_read(m_multi.get(), &waiting);
    return message != nullptr && message->msg == CURLMSG_DONE ? message->data.result : CURLE_OUT_OF_MEMORY;
}

void Connection::abandon(std::unique_ptr<Connection> connection) noexcept
{
    if (connection->m_socket != CURL_SOCKET_BAD) {
        close(connection->m_socket);
    }
    static_cast<void>(connection.release());
}

const char* Connection::failureText() const
{
    return m_errorText[0] != '\0' ? m_errorText : curl_easy_strerror(m_delivery.result);
}

}  // namespace brevan
