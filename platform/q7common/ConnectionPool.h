#ifndef BREVAN_Q7COMMON_CONNECTIONPOOL_H
#define BREVAN_Q7COMMON_CONNECTIONPOOL_H

#include "Connection.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace brevan {

/// The connections that are not in use, by server and settings; the one that was used last goes out first, so that one
/// thread stays on one warm connection and N threads open at most N. The lock is held to take and to give back only.
class ConnectionPool {
public:
    /// Lives as long as the process.
    static ConnectionPool& instance();

    /// A connection that is this thread's until the lease ends. It goes back to the pool where `keep` was called, and is
    /// closed otherwise: after a failure nobody knows what state it is in.
    class Lease {
    public:
        Lease(ConnectionPool& pool, std::string key, std::unique_ptr<Connection> connection);
        ~Lease();
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;

        Connection* operator->() const { return m_connection.get(); }
        void keep() noexcept { m_isGood = true; }

    private:
        ConnectionPool& m_pool;
        std::string m_key;
        std::unique_ptr<Connection> m_connection;
        bool m_isGood = false;
    };

    /// Throws std::bad_alloc, or std::runtime_error where libcurl refuses a setting.
    Lease take(const Server& server, const Settings& settings);

    /// Closes connections that have been idle for longer than `limit`. Called now and then by whoever gives one back.
    void closeIdle(std::chrono::steady_clock::duration limit);

    /// Around a fork. The child starts with an empty pool and touches no connection of its parent, not even to close it,
    /// because closing would say goodbye to the array in the parent's name.
    void lockForFork();
    void unlockInParent();
    void unlockInChild() noexcept;

private:
    struct ServerPool {
        std::shared_ptr<TlsSessions> tlsSessions;
        std::vector<std::unique_ptr<Connection>> idle;  // the last used is the last
    };
    using Pools = std::unordered_map<std::string, ServerPool>;

    static std::unique_ptr<Connection> takeIdle(std::vector<std::unique_ptr<Connection>>& idle);
    void giveBack(const std::string& key, std::unique_ptr<Connection> connection);
    bool isTimeToSweep(std::chrono::steady_clock::time_point now);

    std::mutex m_mutex;
    Pools m_pools;
    std::chrono::steady_clock::time_point m_lastSweep{};
};

}  // namespace brevan

#endif
