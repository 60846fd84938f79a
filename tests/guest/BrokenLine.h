#ifndef BREVAN_TESTS_GUEST_BROKENLINE_H
#define BREVAN_TESTS_GUEST_BROKENLINE_H

#include <atomic>
#include <list>
#include <thread>

namespace brevan::test {

/// A line on loopback to the array that breaks when the test says so. It carries bytes as they are, so that TLS is the array's own.
class BrokenLine {
public:
    explicit BrokenLine(unsigned int arrayPort);
    ~BrokenLine();
    BrokenLine(const BrokenLine&) = delete;
    BrokenLine& operator=(const BrokenLine&) = delete;

    unsigned int port() const { return m_port; }

    /// Ends all connections, with a reset or properly; returns when they are closed.
    void breakNow(bool withReset);
    /// Resets whatever connection carries that many further bytes to the array, while the client may still be writing. Once.
    void breakAfter(long bytes) { m_bytesLeft = bytes; }

private:
    void acceptAll();
    void carry(int client);
    bool pass(int from, int to, bool isToArray);

    unsigned int m_arrayPort;
    int m_listener;
    unsigned int m_port = 0;
    std::atomic<bool> m_isOver{false};
    std::atomic<int> m_open{0};
    std::atomic<int> m_breaks{0};
    std::atomic<bool> m_breaksWithReset{true};
    std::atomic<long> m_bytesLeft{-1};  ///< below 0: no limit
    std::list<std::thread> m_carriers;
    std::thread m_acceptor;
};

}  // namespace brevan::test

#endif
