// An array that is too busy to take a connection: the kernel drops what begins one, so that nothing is refused and nothing comes.
#include "TransportFixture.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace brevan::test {
namespace {

using ::testing::AllOf;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::SizeIs;

/// A listener that accepts nothing, whose queue is filled by connections of its own.
class FullListener {
public:
    FullListener()
    {
        m_address.sin_family = AF_INET;
        m_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof m_address;
        EXPECT_EQ(bind(m_listener, place(), size), 0);
        EXPECT_EQ(listen(m_listener, 0), 0);
        EXPECT_EQ(getsockname(m_listener, place(), &size), 0);
        while (m_sockets.size() < 100 && fill()) {
        }
    }
    ~FullListener()
    {
        for (const int socket : m_sockets) {
            close(socket);
        }
        close(m_listener);
    }
    FullListener(const FullListener&) = delete;
    FullListener& operator=(const FullListener&) = delete;

    bool isFull() const { return m_isFull; }
    std::string url() const { return "https://127.0.0.1:" + std::to_string(ntohs(m_address.sin_port)); }

    /// Takes what waits; how many bytes came over these connections.
    std::size_t bytesThatArrived() const
    {
        std::size_t bytes = 0;
        for (int taken = 0; (taken = accept4(m_listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC)) >= 0;) {
            char buffer[1024];
            const ssize_t count = read(taken, buffer, sizeof buffer);
            bytes += count > 0 ? static_cast<std::size_t>(count) : 0;
            close(taken);
        }
        return bytes;
    }

private:
    sockaddr* place() { return reinterpret_cast<sockaddr*>(&m_address); }

    /// One more connection; false when it does not come about.
    bool fill()
    {
        m_sockets.push_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        connect(m_sockets.back(), place(), sizeof m_address);
        pollfd watched{m_sockets.back(), POLLOUT, 0};
        m_isFull = poll(&watched, 1, 200) == 0;
        return !m_isFull;
    }

    int m_listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_in m_address{};
    std::vector<int> m_sockets;
    bool m_isFull = false;
};

class FullBacklog : public TransportTest {};

TEST_F(FullBacklog, EndsARequestWithTheTimeLimitForConnecting)
{
    useSettings("", "[time]\nconnect_seconds = 0.3\nrequest_seconds = 3600\n");
    const FullListener server;
    ASSERT_TRUE(server.isFull());
    for (const REST_REQUEST_MODE_E mode : {REST_GET, REST_POST, REST_PUT, REST_DELETE}) {
        EXPECT_EQ(send(server.url(), mode).result, REST_NO_CONNECTION);
    }
    EXPECT_THAT(RunLogRecorder::lines(), AllOf(SizeIs(4), Each(HasSubstr("nothing was sent"))));
    EXPECT_EQ(server.bytesThatArrived(), 0U);
}

}  // namespace
}  // namespace brevan::test
