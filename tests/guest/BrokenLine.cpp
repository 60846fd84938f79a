#include "BrokenLine.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace brevan::test {
namespace {

constexpr int kLookMs = 5;
constexpr int kNarrow = 4096;  // so that a long request is still being written while its beginning arrives

sockaddr_in loopback(unsigned int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int newSocket()
{
    return socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

void closeWith(int socket, bool withReset)
{
    const linger abort{withReset ? 1 : 0, 0};
    setsockopt(socket, SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
    close(socket);
}

bool sendAll(int socket, const char* bytes, ssize_t count)
{
    while (count > 0) {
        const ssize_t sent = send(socket, bytes, static_cast<std::size_t>(count), MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        bytes += sent;
        count -= sent;
    }
    return true;
}

}  // namespace

BrokenLine::BrokenLine(unsigned int arrayPort) : m_arrayPort(arrayPort), m_listener(newSocket())
{
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    setsockopt(m_listener, SOL_SOCKET, SO_RCVBUF, &kNarrow, sizeof kNarrow);
    bind(m_listener, reinterpret_cast<sockaddr*>(&address), size);
    listen(m_listener, 16);
    getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
    m_port = ntohs(address.sin_port);
    m_acceptor = std::thread(&BrokenLine::acceptAll, this);
}

BrokenLine::~BrokenLine()
{
    m_isOver = true;
    shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    for (std::thread& carrier : m_carriers) {
        carrier.join();
    }
    close(m_listener);
}

void BrokenLine::breakNow(bool withReset)
{
    m_breaksWithReset = withReset;
    ++m_breaks;
    while (m_open > 0) {
        std::this_thread::yield();
    }
}

void BrokenLine::acceptAll()
{
    while (!m_isOver) {
        const int client = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0) {
            ++m_open;
            m_carriers.emplace_back(&BrokenLine::carry, this, client);
        }
    }
}

/// Carries both ways until either side ends, or the line breaks.
void BrokenLine::carry(int client)
{
    const int breaks = m_breaks;
    const int array = newSocket();
    const sockaddr_in address = loopback(m_arrayPort);
    bool isWhole = connect(array, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    while (isWhole && !m_isOver && m_breaks == breaks) {
        pollfd watched[] = {{client, POLLIN, 0}, {array, POLLIN, 0}};
        if (poll(watched, 2, kLookMs) > 0) {
            isWhole = (watched[0].revents == 0 || pass(client, array, true)) &&
                      (watched[1].revents == 0 || pass(array, client, false));
        }
    }
    close(array);
    closeWith(client, m_breaksWithReset);
    --m_open;
}

bool BrokenLine::pass(int from, int to, bool isToArray)
{
    char bytes[4096];
    const ssize_t count = read(from, bytes, sizeof bytes);
    if (count <= 0) {
        return false;
    }
    if (isToArray && m_bytesLeft >= 0) {
        m_bytesLeft -= count;
        if (m_bytesLeft < 0) {
            m_breaksWithReset = true;
            return false;
        }
    }
    return sendAll(to, bytes, count);
}

}  // namespace brevan::test
