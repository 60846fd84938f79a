// What libcurl calls while a request is on its way.
#include "Connection.h"
#include "HeaderLines.h"
#include "StandardDescriptors.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

namespace brevan {

namespace {

constexpr std::size_t kLargestHead = 256 * 1024;
constexpr std::size_t kUsualHeaderLines = 16;
constexpr std::size_t kUsualReply = 4096;
constexpr curl_off_t kLargestRoom = 256 * 1024;

/// How much room a reply will need. What the array announces is believed up to a bound: it may announce anything.
std::size_t expectedReply(CURL* handle) noexcept
{
    curl_off_t announced = -1;
    curl_easy_getinfo(handle, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
    return announced < 0 ? kUsualReply : static_cast<std::size_t>(std::min<curl_off_t>(announced, kLargestRoom));
}

}  // namespace

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
            m_headerLines->reserve(kUsualHeaderLines);
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
    if (m_reply.empty()) {
        m_reply.reserve(expectedReply(m_handle.get()));
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

// A request that must not be sent again needs no new connection either. The connection is closed when the application runs
// another program; the socket pair by which libcurl could be woken, which carries nothing, is libcurl's own and stays.
curl_socket_t Connection::onOpenSocket(void* self, curlsocktype, curl_sockaddr* address) noexcept
{
    if (!static_cast<Connection*>(self)->maySendAgain()) {
        return CURL_SOCKET_BAD;
    }
    auto& connection = *static_cast<Connection*>(self);
    const StandardDescriptors held;
    connection.m_socket = socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    return connection.m_socket;
}

int Connection::onCloseSocket(void* self, curl_socket_t socket) noexcept
{
    auto& connection = *static_cast<Connection*>(self);
    if (socket == connection.m_socket) {
        connection.m_socket = CURL_SOCKET_BAD;
    }
    return close(socket);
}

}  // namespace brevan
