#include "ConnectionPool.h"

#include "ForkGate.h"

#include <algorithm>
#include <iterator>
#include <thread>
#include <utility>

namespace brevan {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kLongestIdle = std::chrono::seconds(90);
constexpr auto kSweepPause = std::chrono::seconds(10);

std::string keyOf(const Server& server, const Settings& settings)
{
    return std::to_string(settings.generation) + " " + server.host + " " + server.port;
}

void initialiseCurl()
{
    const ForkGate::Pass pass;
    static const CURLcode kResult = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (kResult != CURLE_OK) {
        throw std::bad_alloc();
    }
}

}  // namespace

ConnectionPool& ConnectionPool::instance()
{
    static ConnectionPool* const kPool = std::make_unique<ConnectionPool>().release();
    return *kPool;
}

ConnectionPool::Lease::Lease(ConnectionPool& pool, std::string key, std::unique_ptr<Connection> connection)
    : m_pool(pool), m_key(std::move(key)), m_connection(std::move(connection))
{
}

ConnectionPool::Lease::~Lease()
{
    if (!m_isGood) {
        return;
    }
    try {
        m_pool.giveBack(m_key, std::move(m_connection));
    } catch (const std::exception&) {
        // No memory to keep it: it has been closed instead.
    }
}

/// The last used, of those that this thread has used if there are any: what a connection keeps lies in the memory of that thread.
std::unique_ptr<Connection> ConnectionPool::takeIdle(std::vector<std::unique_ptr<Connection>>& idle)
{
    const auto isOurs = [self = std::this_thread::get_id()](const auto& connection) {
        return connection->lastThread == self;
    };
    const auto ours = std::find_if(idle.rbegin(), idle.rend(), isOurs);
    const auto place = ours == idle.rend() ? idle.end() - 1 : ours.base() - 1;
    std::unique_ptr<Connection> connection = std::move(*place);
    idle.erase(place);
    return connection;
}

ConnectionPool::Lease ConnectionPool::take(const Server& server, const Settings& settings)
{
    initialiseCurl();
    std::string key = keyOf(server, settings);
    std::shared_ptr<TlsSessions> tlsSessions;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ServerPool& pool = m_pools[key];
        if (!pool.idle.empty()) {
            return Lease(*this, std::move(key), takeIdle(pool.idle));
        }
        if (pool.tlsSessions == nullptr) {
            pool.tlsSessions = std::make_shared<TlsSessions>();
        }
        tlsSessions = pool.tlsSessions;
    }
    const ForkGate::Pass pass;  // making a handle takes locks of libcurl's
    return Lease(*this, std::move(key), std::make_unique<Connection>(server, settings, std::move(tlsSessions)));
}

void ConnectionPool::giveBack(const std::string& key, std::unique_ptr<Connection> connection)
{
    const Clock::time_point now = Clock::now();
    bool isSweepDue = false;
    connection->idleSince = now;
    connection->lastThread = std::this_thread::get_id();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_pools[key].idle.push_back(std::move(connection));
        isSweepDue = isTimeToSweep(now);
    }
    if (isSweepDue) {
        closeIdle(kLongestIdle);
    }
}

bool ConnectionPool::isTimeToSweep(Clock::time_point now)
{
    if (now - m_lastSweep < kSweepPause) {
        return false;
    }
    m_lastSweep = now;
    return true;
}

void ConnectionPool::closeIdle(Clock::duration limit)
{
    std::vector<std::unique_ptr<Connection>> closing;  // closed after the lock is given back
    const Clock::time_point now = Clock::now();
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (auto pool = m_pools.begin(); pool != m_pools.end();) {
        auto& idle = pool->second.idle;
        auto young = idle.begin();
        while (young != idle.end() && now - (*young)->idleSince > limit) {
            ++young;
        }
        closing.insert(closing.end(), std::make_move_iterator(idle.begin()), std::make_move_iterator(young));
        idle.erase(idle.begin(), young);
        pool = idle.empty() && pool->second.tlsSessions.use_count() <= 1 ? m_pools.erase(pool) : std::next(pool);
    }
}

void ConnectionPool::lockForFork()
{
    m_mutex.lock();
}

void ConnectionPool::unlockInParent()
{
    m_mutex.unlock();
}

void ConnectionPool::unlockInChild() noexcept
{
    for (auto& [key, pool] : m_pools) {
        for (std::unique_ptr<Connection>& connection : pool.idle) {
            Connection::abandon(std::move(connection));
        }
        pool.idle.clear();
    }
    m_mutex.unlock();
}

}  // namespace brevan
