#ifndef BREVAN_Q7COMMON_CONNECTION_H
#define BREVAN_Q7COMMON_CONNECTION_H

#include "HeaderList.h"
#include "RequestUrl.h"
#include "RestRequest.h"
#include "Secret.h"
#include "Settings.h"
#include "TlsSessions.h"
#include "Url.h"

#include <curl/curl.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace brevan {

/// One request as it goes out. Everything it points at outlives the request.
struct Message {
    REST_REQUEST_MODE_E mode = REST_GET;
    const std::string* path = nullptr;  ///< encoded, with its query
    curl_slist* headers = nullptr;
    const SecretBytes* body = nullptr;                ///< null: none
    std::vector<std::string>* headerLines = nullptr;  ///< null: not wanted
};

/// What came of it.
struct Delivery {
    CURLcode result = CURLE_FAILED_INIT;
    int timesSent = 0;          ///< how often the request may have left; 0: certainly not
    bool isTooLarge = false;    ///< the reply exceeded the limit
    bool hasReplyHead = false;  ///< the reply's headers were complete
    long httpStatus = 0;
    int trustFault = 0;    ///< X509_V_ERR number of a certificate that broke the handshake, 0: none
    long systemError = 0;  ///< errno of a connection that could not be made, 0: none
};

/// One easy handle, which keeps one connection to one server warm. One thread at a time.
class Connection {
public:
    /// Throws std::bad_alloc, or std::runtime_error where libcurl refuses a setting.
    Connection(const Server& server, const Settings& settings, std::shared_ptr<TlsSessions> tlsSessions);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Sends and receives. Only a GET is ever sent a second time, and only when a reused connection turned out to be dead
    /// before the first byte of a reply.
    Delivery perform(const Message& message);

    /// The body of the last reply, which is the caller's from now on.
    SecretBytes takeReply() noexcept { return std::move(m_reply); }

    /// In the child of a fork: lets go of a connection of the parent without a word to the array. Its memory stays behind
    /// on purpose, because freeing it would close the TLS session properly, in the parent's name; and with it the two ends
    /// of a socket pair by which libcurl could be woken.
    static void abandon(std::unique_ptr<Connection> connection) noexcept;

    /// libcurl's words for the last failure.
    const char* failureText() const;

    std::chrono::steady_clock::time_point idleSince{};
    std::thread::id lastThread;  ///< that used it last; whoever frees what another has allocated waits for it

private:
    struct HandleCloser {
        void operator()(CURL* handle) const noexcept;
    };
    struct MultiCloser {
        void operator()(CURLM* multi) const noexcept;
    };

    template <typename Value>
    void set(CURLoption option, Value value);
    void setCallbacks();
    void setTls(const Server& server, const TlsSettings& tls);
    void setMessage(const Message& message);
    bool isStale() const;
    CURLcode transfer();
    CURLcode resultOfTransfer();
    bool maySendAgain() const { return m_isRepeatable ? m_delivery.timesSent < 2 : m_delivery.timesSent < 1; }

    bool keepHeader(std::string_view line);
    bool keepReply(std::string_view part);

    static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* self) noexcept;
    static std::size_t onReply(char* data, std::size_t size, std::size_t count, void* self) noexcept;
    static int onSending(void* self, char*, char*, int, int) noexcept;
    static curl_socket_t onOpenSocket(void* self, curlsocktype purpose, curl_sockaddr* address) noexcept;
    static int onCloseSocket(void* self, curl_socket_t socket) noexcept;

    std::shared_ptr<TlsSessions> m_tlsSessions;  // outlives the handle, which uses it while it closes
    std::string m_connectTo;
    HeaderList m_connectToList;
    RequestUrl m_url;                             // the handle uses it
    curl_socket_t m_socket = CURL_SOCKET_BAD;     // of the connection that is kept; closing it, below, writes here
    std::unique_ptr<CURLM, MultiCloser> m_multi;  // keeps the connection between requests
    std::unique_ptr<CURL, HandleCloser> m_handle;
    char m_errorText[CURL_ERROR_SIZE] = {};
    std::size_t m_replyLimit;
    std::size_t m_headerBytes = 0;
    bool m_isRepeatable = false;
    std::vector<std::string>* m_headerLines = nullptr;
    SecretBytes m_reply;
    Delivery m_delivery;
};

}  // namespace brevan

#endif
